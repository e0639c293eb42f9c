#include "fuzz/Seeds.h"

namespace orvex::fuzz {

// Each scheme of signatures once, and the ways to write a URL that is none.
std::vector<std::string> Seeds() {
    return {
        "",
        "https://h.example/a.las",
        "https://h/a?X-Amz-Credential=a%2Fb&X-Amz-Date=20260301T120000Z&X-Amz-Expires=60&X-Amz-Signature=ab",
        "https://h.example/a.las?AWSAccessKeyId=ab&Signature=cd%3D&Expires=1772366400",
        "https://h.example/a.las?sv=2022-11-02&se=2026-03-01T14%3A00%3A00%2B02%3A00&sr=b&sig=ab%2F%3D",
        "https://h/a?X-Goog-Credential=a&X-Goog-Date=20260301T120000Z&X-Goog-Expires=900&X-Goog-Signature=a",
        "https://h.example/a.las?Policy=a_&Signature=b~&Key-Pair-Id=c",
        "https://h.example/a;jsessionid=1;v=2/b.las;token=3%3Fsig%3D4&key=5",
        "https://h.example/a?u=https%253A%252F%252Fu%3Ap%40o.example%252F%253Fsig%253D1&v=2;w=3?x=4#y",
        "HTTPS:\\\\user:pa/ss?w#ord@h.example:8443/a@b.las?X%2DAmz%2dSignature=1",
        "user:password@h.example/a?se=2026-03-01&se=&se",
        "file:///srv/a@b/c%20d.las",
        "http://[::1]:80/%%%2%zz?=&=&?;\xFF\xED\xA0\x80",
    };
}

}  // namespace orvex::fuzz
