#include "cloud/CloudListing.h"

#include <gtest/gtest.h>

#include <boost/property_tree/json_parser.hpp>

#include "cloud/CloudBrowserRows.h"
#include "cloud/ListingProgress.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {
namespace {

CloudLayer LayerOf(const std::string& members) {
    const CloudListingPage page = ParseProjectFiles(R"({"layers":[{)" + members + "}]}");
    EXPECT_EQ(page.layers.size(), 1U) << members;
    return page.layers.empty() ? CloudLayer() : page.layers.front();
}

/// What a text that is no listing is refused with; empty if it is none of the two errors.
std::wstring Refusal(const std::string& json) {
    try {
        ParseProjectFiles(json);
    } catch (const LDataError& error) {
        return error.Text();
    } catch (const boost::property_tree::json_parser_error& error) {
        return L"reader: " + FromUtf8(error.what());
    }
    return {};
}

std::string Repeated(const std::string& text, std::size_t times) {
    std::string all;
    all.reserve(text.size() * times);
    for (std::size_t i = 0; i < times; ++i) {
        all += text;
    }
    return all;
}

}  // namespace

TEST(CloudListing, EveryKeyHasItsPlace) {
    const CloudListingPage page = ParseProjectFiles(
        R"({"next":"p/2","extra":{"a":[1]},"layers":[{"name":"T\u00fcr","type":"COPC","wkt":"PROJCS[\"x\"]",
            "bytes":1610612736,"points":12345,"crs":"EPSG:25832","modified":"2024-05-17T09:30:00Z",
            "url":"https://h/a.laz?X-Amz-Signature=ab","id":"l1","project":"p1"}]})");
    ASSERT_EQ(page.layers.size(), 1U);
    const CloudLayer& layer = page.layers.front();
    EXPECT_EQ(page.next, "p/2");
    EXPECT_EQ(layer.name, L"T\u00FCr");
    EXPECT_EQ(layer.type, L"COPC");
    EXPECT_EQ(layer.wkt, L"PROJCS[\"x\"]");
    EXPECT_EQ(layer.bytes, 1610612736U);
    EXPECT_EQ(layer.size, L"1.500");
    EXPECT_EQ(layer.points, L"12345");
    EXPECT_EQ(layer.crs, L"EPSG:25832");
    EXPECT_EQ(layer.modified, L"2024-05-17T09:30:00Z");
    EXPECT_EQ(layer.url, L"https://h/a.laz?X-Amz-Signature=ab");
    EXPECT_EQ(layer.id, L"l1");
    EXPECT_EQ(layer.project, L"p1");
    // The browser's rows keep all of it in less room.
    SharedTexts texts;
    const CloudLayer again = CloudLayerRow(layer, texts).Layer();
    EXPECT_EQ(again.name + again.type + again.wkt + again.size + again.points + again.crs,
              layer.name + layer.type + layer.wkt + layer.size + layer.points + layer.crs);
    EXPECT_EQ(again.modified + again.url + again.id + again.project,
              layer.modified + layer.url + layer.id + layer.project);
}

TEST(CloudListing, WhatIsLackingIsUnknownAndSoIsAnotherTypeOfValue) {
    const std::wstring unknown = Text(text::kUnknown);
    for (const char* members :
         {"", R"("name":null,"url":null,"bytes":null)", R"("name":"","type":"","wkt":"")",
          R"("name":{"a":1},"url":["b"],"id":{},"bytes":[1])",
          R"("name":"\u202e \n","points":"\u0000","url":"https://h/\nx")"}) {
        const CloudLayer layer = LayerOf(members);
        for (const std::wstring& shown :
             {layer.name, layer.type, layer.wkt, layer.size, layer.points, layer.crs, layer.modified}) {
            EXPECT_EQ(shown, unknown) << members;
        }
        EXPECT_EQ(layer.url + layer.id + layer.project, L"") << members;
        EXPECT_FALSE(layer.bytes) << members;
    }
    EXPECT_EQ(LayerOf(R"("name":"null")").name, L"null");
    EXPECT_EQ(LayerOf(R"("name":true,"points":-1.5e3)").points, L"-1.5e3");
    EXPECT_EQ(LayerOf(R"("name":"first","name":"second")").name, L"first");
}

TEST(CloudListing, BytesAreAnUnsignedIntegerOf64Bits) {
    const struct {
        const char* json;
        const wchar_t* size;  // null: unknown
    } cases[] = {{"0", L"0.000"},
                 {"536870", L"0.000"},
                 {"536871", L"0.001"},
                 {"\"1073741824\"", L"1.000"},
                 {"18446744073709551615", L"17179869184.000"},
                 {"18446744073709551616", nullptr},
                 {"-1", nullptr},
                 {"1.5", nullptr},
                 {"1e9", nullptr},
                 {"1e30", nullptr},
                 {"\"12 MB\"", nullptr},
                 {"\" 1\"", nullptr},
                 {"\"\"", nullptr},
                 {"true", nullptr}};
    for (const auto& [json, size] : cases) {
        const CloudLayer layer = LayerOf(std::string("\"bytes\":") + json);
        EXPECT_EQ(layer.size, size == nullptr ? Text(text::kUnknown) : size) << json;
        EXPECT_EQ(layer.bytes.has_value(), size != nullptr) << json;
    }
}

TEST(CloudListing, TextsAreShownWithoutControlsAndNotEndless) {
    EXPECT_EQ(LayerOf(R"("name":"a\u0007b\u202Ec\u2066d\u200Ee\u001B[31m")").name, L"a b c d e [31m");
    EXPECT_EQ(LayerOf("\"name\":\"\xFF\xC3(\"").name, L"\uFFFD\uFFFD(");
    EXPECT_EQ(LayerOf("\"name\":\"" + std::string(100'000, 'n') + "\"").name.size(), 32'771U);
    // What stands for a layer elsewhere is not mended but left out.
    for (const std::string& value :
         {std::string(100'000, 'n'), std::string(R"(a\nb)"), std::string(R"(a\u202Eb)")}) {
        const std::string end = R"(":")" + value + "\"";
        const CloudLayer layer = LayerOf("\"url" + end + ",\"id" + end + ",\"project" + end);
        EXPECT_EQ(layer.url + layer.id + layer.project, L"");
    }
}

TEST(CloudListing, MalformedTextIsToldInTheReadersWords) {
    const struct {
        std::string json;
        const wchar_t* words;
    } cases[] = {{"", L"expected value"},
                 {"{\"layers\":[", L"expected value"},
                 {"{\"layers\":[{\"name\":\"a", L"unterminated string"},
                 {"{\"layers\":[{\"name\":\"a\"", L"expected '}' or ','"},
                 {"{\"layers\":[{\"name\" \"a\"}]}", L"expected ':'"},
                 {"{layers:[]}", L"expected key string"},
                 {"{\"layers\":[]} x", L"garbage after data"},
                 {"{\"layers\":[{\"name\":\"\\ud800\"}]}", L"stray high surrogate"},
                 {"{\"layers\":[{\"name\":\"a\nb\"}]}", L"invalid code sequence"},
                 {"<html>503</html>", L"expected value"},
                 {std::string("\0\0", 2), L"expected value"},
                 {Repeated("]", 100'000), L"expected value"}};
    for (const auto& [json, words] : cases) {
        const std::wstring told = Refusal(json);
        EXPECT_TRUE(told.starts_with(L"reader: ") && told.find(words) != std::wstring::npos)
            << json.substr(0, 50) << ": " << ToUtf8(told);
    }
}

TEST(CloudListing, WhatIsNoListingIsRefused) {
    const std::wstring none = Text(text::kCloudListingNoLayers);
    for (const char* json : {"{}", "[]", "\"text\"", "12", R"({"projects":[]})", R"({"layers":"none"})",
                             R"({"layers":5})", R"({"error":{"code":"x","message":"y"}})"}) {
        EXPECT_EQ(Refusal(json), none) << json;
    }
    EXPECT_EQ(ParseProjectFiles(R"({"layers":[]})").layers.size(), 0U);
    EXPECT_EQ(ParseProjectFiles(R"({"layers":[1,"a",{},null,{"name":"b"}],"next":null})").layers.size(), 2U);
}

TEST(CloudListing, HostileTextsCostLittle) {
    const std::wstring deep = FormatText(Text(text::kCloudListingTooDeep), {64});
    EXPECT_EQ(Refusal(Repeated("[", 100'000)), deep);
    EXPECT_EQ(Refusal(Repeated("{\"a\":", 100'000)), deep);
    EXPECT_EQ(Refusal("{\"layers\":" + Repeated("[", 64) + Repeated("]", 64) + "}"), deep);
    const std::wstring large = FormatText(Text(text::kCloudListingTooLarge), {8});
    EXPECT_EQ(Refusal(std::string(std::size_t{100} << 20U, '[')), large);
    const std::wstring many = FormatText(Text(text::kCloudListingTooMany), {250'000});
    EXPECT_EQ(Refusal("{\"layers\":[" + Repeated("{},", 1'000'000) + "{}]}"), many);
    // Brackets in texts are no depth, whatever is escaped before them.
    EXPECT_EQ(LayerOf("\"name\":\"" + Repeated("\\\"[", 1000) + "\"").name.size(), 2000U);
    EXPECT_EQ(LayerOf("\"name\":\"null\\\\\",\"type\":null").name, L"null\\");
}

TEST(CloudListing, ArchivesOfTheCycleAreTheServicesOwn) {
    EXPECT_TRUE(IsCycleArchive("Cycle - Archive"));
    EXPECT_TRUE(IsCycleArchive("Bay Cycle - Archive 2"));
    EXPECT_FALSE(IsCycleArchive("Cycle - Archiv"));
    EXPECT_FALSE(IsCycleArchive("cycle - archive of 2020"));
}

TEST(ListingProgress, EndsWhateverTheServiceSays) {
    ListingProgress repeats;
    repeats.IsNew("a");
    repeats.Advance("2", 10);
    EXPECT_EQ(repeats.Next(), "2");
    EXPECT_FALSE(repeats.IsNew("a"));
    EXPECT_TRUE(repeats.IsNew(""));
    EXPECT_TRUE(repeats.IsNew(""));
    EXPECT_THROW(repeats.Advance("2", 10), LDataError);
    EXPECT_EQ(repeats.Next(), "") << "it can be read anew";
    EXPECT_FALSE(repeats.IsComplete());
    repeats.Advance("", 10);
    EXPECT_TRUE(repeats.IsComplete());

    ListingProgress empty;
    int pages = 0;
    EXPECT_THROW(
        for (; pages < 1000; ++pages) { empty.Advance(std::to_string(pages), 2); }, LDataError);
    EXPECT_EQ(pages, 99);
    EXPECT_TRUE(empty.IsComplete());

    ListingProgress large;
    large.IsNew("a");
    EXPECT_THROW(large.Advance("2", std::size_t{513} << 20U), LDataError);
    EXPECT_TRUE(large.IsComplete());

    ListingProgress longNames;
    longNames.IsNew("a");
    longNames.Advance(std::string(4096, 'a'), 2);
    longNames.IsNew("b");
    EXPECT_THROW(longNames.Advance(std::string(4097, 'b'), 2), LDataError);
    EXPECT_TRUE(longNames.IsComplete());
    EXPECT_EQ(longNames.Next(), std::string(4096, 'a')) << "the page that was read";
}

}  // namespace orvex
