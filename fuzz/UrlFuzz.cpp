// Shows arbitrary text as a URL, alone and with secrets before and behind it.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "support/SignedUrl.h"
#include "support/Text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

constexpr wchar_t kSecret = L'\u2620';

void RequireHidden(const std::wstring& url) {
    const std::wstring shown = orvex::ShownUrl(url);
    if (shown.size() > url.size() || shown.find(kSecret) != std::wstring::npos) {
        std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::wstring url = orvex::FromUtf8({reinterpret_cast<const char*>(data), size});
    std::erase(url, kSecret);
    orvex::UrlExpiryMs(url);
    RequireHidden(url + L"?X-Amz-Signature=" + kSecret);
    RequireHidden(url + L"?a&b=%26token%3D" + kSecret + L";%73ig=" + kSecret);
    RequireHidden(L"https://user:" + std::wstring(1, kSecret) + L"@h.example/" + url);
    RequireHidden(L"https://h.example/?sig=" + std::wstring(1, kSecret) + L"&" + url);
    return 0;
}
