#include "fuzz/Seeds.h"

namespace orvex::fuzz {

std::vector<std::string> Seeds() {
    const std::string whole =
        R"({"layers":[{"name":"T\u00fcr \ud83d\ude00","type":"COPC","wkt":"PROJCS[\"x\"]","bytes":1610612736,)"
        R"("points":12345,"crs":"EPSG:25832","modified":"2024-05-17T09:30:00Z",)"
        R"("url":"https://h/a.laz?X-Amz-Signature=ab","id":"l1","project":"p1"}],"next":"p/2"})";
    return {
        whole,
        R"({"layers":[{},null,[],1,{"name":null,"bytes":-1.5e3,"url":{"a":[true]},"name":"b"}],"next":null})",
        R"({"error":{"code":"not_found","message":"gone"}})",
        "\xEF\xBB\xBF{\"layers\":[{\"name\":\"a\\u202eb\xFF\",\"url\":\"x\\n\"}]}",
        "{\"layers\":[{\"name\":\"a",
        "{\"layers\":" + std::string(70, '[') + std::string(70, ']') + "}"};
}

}  // namespace orvex::fuzz
