#include "support/JsonText.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "support/JsonLimits.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {
namespace {

TEST(JsonText, AnyFileNameSurvives) {
    const std::wstring umlautAndEmoji = FromUtf8("\xC3\xBC \xF0\x9F\x98\x80");
    for (const std::wstring& name :
         {std::wstring(L"C:\\a\"b\n\x01"), umlautAndEmoji, FromUtf8("caf\xE9.las"), std::wstring(L"\xDC80"),
          std::wstring(L"a\xD800z"), umlautAndEmoji + L"\xDFFF", std::wstring(L"\xE480")}) {
        const std::string quoted = JsonQuoted(name);
        EXPECT_EQ(ValidUtf8(quoted), quoted);
        EXPECT_EQ(JsonWide(ParseCallersJson(quoted).get<std::string>()), name) << quoted;
    }
    EXPECT_EQ(JsonQuoted(FromUtf8("caf\xE9")), R"("caf\udce9")");
    const std::string pair = ParseCallersJson(R"("\ud83d\ude00")").get<std::string>();
    EXPECT_EQ(JsonWide(pair), FromUtf8("\xF0\x9F\x98\x80"));
    EXPECT_EQ(JsonWide(ParseCallersJson(R"("\ud83d\ud83d\ude00\\ud800")").get<std::string>()),
              L"\xD83D" + FromUtf8("\xF0\x9F\x98\x80\\ud800"));
}

TEST(JsonText, HostileTextsAreRefused) {
    const std::string deep(kMostJsonDepth + 1, '[');
    const std::string many = '[' + std::string(kMostJsonValues + 1, ',') + ']';
    const std::string large = '"' + std::string(kMostJsonBytes, 'a') + '"';
    const struct {
        std::string text;
        const wchar_t* reason;
    } cases[] = {{"", L"byte 1"},
                 {"{\"a\":1", L"byte 7"},
                 {"\"\xFF\"", L"byte 2"},
                 {R"("\u00)", L"not well-formed"},
                 {R"("\ud8zz")", L"not well-formed"},
                 {"\"\\", L"not well-formed"},
                 {R"("a\u0000b")", L"U+0000"},
                 {"1 \\ud800", L"not well-formed"},
                 {"1e999", L"out of range"},
                 {deep, L"more than 64 deep"},
                 {many, L"more than 250000 values"},
                 {large, L"longer than 8388608 bytes"}};
    for (const auto& [text, reason] : cases) {
        try {
            ParseCallersJson(text);
            ADD_FAILURE() << text.substr(0, 20);
        } catch (const LDataError& error) {
            EXPECT_NE(error.Text().find(reason), std::wstring::npos) << text.substr(0, 20) << error.what();
        }
    }
}

}  // namespace
}  // namespace orvex
