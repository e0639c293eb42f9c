// The account in a folder, in a process without Qt's application; what both kinds of account have in common.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "orvexcommon/CloudAccount.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::TemporaryFolder;

ArchivingProjectList Projects(const TemporaryFolder& folder, const std::wstring& filter = {},
                              const std::string& page = {}) {
    ArchivingProjectList list;
    list.next = page;
    listArchivingProjects({L"", FromPath(folder.Path()), L""}, list, filter);
    return list;
}

CloudOutcome Files(const TemporaryFolder& folder, const std::string& id, const std::string& page,
                   std::string& json) {
    return getArchivingProjectFiles({L"", FromPath(folder.Path()), L""}, id, page, json);
}

/// A listing with `count` elements.
std::string Listing(const std::string& key, int count) {
    std::string json = "{ \"version\" : {\"a\":[1,\"]}\"]}, \"" + key + "\" : [";
    for (int i = 0; i < count; ++i) {
        const std::string number = std::to_string(i);
        json += i == 0 ? "\n" : ",\n";
        json.append(R"({"id":"p)").append(number).append(R"(","name":"Projekt )").append(number);
        json += R"(","url":"files/a b.las"})";
    }
    return json + "], \"more\":1}";
}

TEST(FolderAccount, GivesPagesOfLargeListings) {
    const TemporaryFolder folder;
    folder.Write(L"projects.json", Listing("projects", 10'000));
    folder.Write(L"projects/p1.json", Listing("layers", 2'000));
    int count = 0;
    int pages = 0;
    std::string page;
    do {
        const ArchivingProjectList list = Projects(folder, {}, page);
        ASSERT_EQ(list.outcome.status, CloudStatus::Ok) << ToUtf8(list.outcome.message);
        for (const ArchivingProject& project : list.projects) {
            EXPECT_EQ(project.id, "p" + std::to_string(count++));
        }
        page = list.next;
        ++pages;
    } while (!page.empty() && pages < 20);
    EXPECT_EQ(count, 10'000);
    EXPECT_EQ(pages, 10);

    std::string json;
    ASSERT_EQ(Files(folder, "p1", {}, json).status, CloudStatus::Ok);
    const auto first = nlohmann::json::parse(json);
    EXPECT_EQ(first["layers"].size(), 1000u);
    ASSERT_EQ(Files(folder, "p1", first["next"], json).status, CloudStatus::Ok);
    const auto last = nlohmann::json::parse(json);
    EXPECT_EQ(last["layers"][999]["name"], "Projekt 1999");
    EXPECT_FALSE(last.contains("next"));
}

TEST(FolderAccount, FiltersByPartsOfNamesInAnyLetterCase) {
    const TemporaryFolder folder;
    folder.Write(
        L"projects.json",
        R"({"projects":[{"id":"a","name":"ÜBERSICHT Nord"},{"id":"b"},{"name":"übersicht ohne Id"}]})");
    EXPECT_EQ(Projects(folder, L"übersicht").projects.size(), 1u);
    EXPECT_EQ(Projects(folder, L"b").projects.size(), 2u);
    EXPECT_EQ(Projects(folder).projects[1].name, "b");
    EXPECT_THAT(Projects(folder, L"sonst").projects, IsEmpty());
}

TEST(FolderAccount, MakesUrlsAbsoluteThatStayInTheFolder) {
    const TemporaryFolder folder;
    const std::wstring path = ToPath(FromPath(folder.Path())).generic_wstring();  // no escape in JSON
    const std::string root = (path.starts_with(L"/") ? "file://" : "file:///") + ToUtf8(path);
    folder.Write(L"projects/p1.json",
                 R"({"layers":[{"url":"files/a b.las"},{"url":"files/%C3%BC.las"},{"url":"https://h/x"},
        {"bytes":18446744073709551615,"url":"files/c"},{"url":")" +
                     root +
                     R"(/files/d.las"},{"url":"../x.las"},{"url":"/etc/passwd"},{"url":"//server/share"},
        {"url":"files/..%2f..%2Fx.las"},{"url":"files/..%5c..%5Cx.las"},{"url":"files/%2e%2e/%2e%2e/x.las"},
        {"url":"file:///etc/passwd"},{"url":")" +
                     root + R"(/../x.las"},{"url":"ftp://h/x.las"}]})");
    std::string json;
    ASSERT_EQ(Files(folder, "p1", {}, json).status, CloudStatus::Ok);
    const auto layers = nlohmann::json::parse(json)["layers"];
    EXPECT_THAT(layers[0]["url"].get<std::string>(), HasSubstr("/files/a%20b.las"));
    EXPECT_THAT(layers[0]["url"].get<std::string>(), ::testing::StartsWith("file:///"));
    EXPECT_THAT(layers[1]["url"].get<std::string>(), HasSubstr("/files/%C3%BC.las"));
    EXPECT_EQ(layers[2]["url"], "https://h/x");
    EXPECT_EQ(layers[3]["bytes"], 18446744073709551615u);
    EXPECT_THAT(layers[4]["url"].get<std::string>(), ::testing::EndsWith("/files/d.las"));
    EXPECT_EQ(layers.size(), 14u);
    for (std::size_t i = 5; i < layers.size(); ++i) {
        EXPECT_EQ(layers[i]["url"], "") << i;
    }

    folder.Write(L"projects/p2.json", "{\"layers\":[{\"name\":\"M\xFCller\",\"url\":\"files/a\"}]}");
    ASSERT_EQ(Files(folder, "p2", {}, json).status, CloudStatus::Ok) << "a name in another encoding";
    EXPECT_THAT(nlohmann::json::parse(json)["layers"][0]["url"].get<std::string>(),
                ::testing::EndsWith("/files/a"));
}

TEST(FolderAccount, LeavesItToTheReaderOfAPageToSayWhatIsMalformed) {
    const TemporaryFolder folder;
    for (const char* listing : {"", "[]", R"({"layers":[{"id":"a)", R"({"layers":[,{"id":"a"}]})"}) {
        folder.Write(L"projects/p1.json", listing);
        std::string json;
        EXPECT_EQ(Files(folder, "p1", {}, json).status, CloudStatus::Ok) << listing;
        EXPECT_EQ(json, std::string(listing) + "?");
    }
    // A number that is too large is JSON to some readers.
    for (const char* text : {R"({"id":})", R"({"url":"file:///etc/passwd","bytes":1e999})"}) {
        const std::string layer = text;
        folder.Write(L"projects/p1.json", "{\"layers\":[" + layer + "]}");
        std::string json;
        EXPECT_EQ(Files(folder, "p1", {}, json).status, CloudStatus::Ok) << layer;
        EXPECT_EQ(json, "{\"layers\":[" + layer + "?]}");
    }
}

TEST(FolderAccount, RefusesIdsThatLeadOutOfTheFolder) {
    const TemporaryFolder folder;
    folder.Write(L"projects.json", Listing("layers", 1));
    std::string json = "old";
    for (const char* id : {"../projects", "", ".", "..", "a/b", "..\\projects", "C:x", "a\nb"}) {
        EXPECT_EQ(Files(folder, id, {}, json).status, CloudStatus::NotFound) << id;
        EXPECT_THAT(json, IsEmpty());
    }
}

TEST(FolderAccount, NamesTheFileAndThePlaceOfAFault) {
    struct Case {
        const char* name;
        std::string bytes;
        StringId text;
        int number = 0;
    };
    const TemporaryFolder folder;
    const std::wstring path = NativePath(folder.Name(L"projects.json"));
    const ArchivingProjectList missing = Projects(folder);
    EXPECT_EQ(missing.outcome.status, CloudStatus::NotFound);
    EXPECT_EQ(missing.outcome.message,
              FormatText(Text(text::kCloudFileUnreadable), {path, Text(text::kFileMissing)}));

    for (const Case& c :
         {Case{"empty", "", text::kCloudListMalformed, 1},
          Case{"no object", "[]", text::kCloudListMalformed, 1},
          Case{"no list", R"({"a":1})", text::kCloudListLacks},
          Case{"a truncated list", R"({"projects":[{"id":"a)", text::kCloudListMalformed, 14},
          Case{"a broken element", R"({"projects":[{"id":}]})", text::kCloudListMalformed, 20},
          Case{"no comma", R"({"projects":[,{"id":"a"}]})", text::kCloudListMalformed, 14},
          Case{"depth", R"({"projects":[)" + std::string(100'000, '[') + std::string(100'000, ']') + "]}",
               text::kCloudListTooDeep},
          Case{"too many values", R"({"projects":[[)" + std::string(250'000, ',') + "]]}",
               text::kCloudListingTooMany, 250'000},
          Case{"a huge element", R"({"projects":[")" + std::string(9 << 20, 'x') + "\"]}",
               text::kCloudTooLarge, 8}}) {
        SCOPED_TRACE(c.name);
        folder.Write(L"projects.json", c.bytes);
        const ArchivingProjectList list = Projects(folder);
        EXPECT_EQ(list.outcome.status, CloudStatus::BadAnswer);
        const bool lacks = c.text.value == text::kCloudListLacks.value;
        const bool isUnnamed = c.text.value == text::kCloudListingTooMany.value;
        EXPECT_EQ(list.outcome.message, lacks       ? FormatText(Text(c.text), {path, L"projects"})
                                        : isUnnamed ? FormatText(Text(c.text), {c.number})
                                                    : FormatText(Text(c.text), {path, c.number}));
    }
}

TEST(FolderAccount, FindsOutThatAListingHasChangedBetweenPages) {
    const TemporaryFolder folder;
    folder.Write(L"projects.json", Listing("projects", 1'500));
    const std::string next = Projects(folder).next;
    folder.Write(L"projects.json", Listing("projects", 1'400));
    for (const std::string& page :
         {next, std::string("x"), std::string("99999999999999999999:1"), std::string("-1:5")}) {
        const ArchivingProjectList list = Projects(folder, {}, page);
        EXPECT_EQ(list.outcome.status, CloudStatus::BadAnswer) << page;
        EXPECT_EQ(list.next, page);
    }
}

TEST(CloudAccount, TakesNoAddressForAFolder) {
    for (const wchar_t* service : {L" https:/user:SECRET@h/", L"ftp://user:SECRET@h/", L"\thttps://\n"}) {
        ArchivingProjectList list;
        listArchivingProjects({L"", service, L""}, list, {});
        EXPECT_EQ(list.outcome.status, CloudStatus::Unreachable);
        EXPECT_EQ(list.outcome.message, Text(text::kCloudServiceInvalid));
    }
}

TEST(CloudAccount, SaysThatAServerNeedsQt) {
    ArchivingProjectList list;
    listArchivingProjects({L"", L" http://127.0.0.1:1", L""}, list, {});
    EXPECT_EQ(list.outcome.status, CloudStatus::Unreachable);
    EXPECT_EQ(list.outcome.message, Text(text::kCloudWithoutApplication));
    std::byte buffer[4];
    std::size_t read = 1;
    EXPECT_EQ(openUrl(L"http://127.0.0.1:1/a.las")->Read(0, buffer, read).status, CloudStatus::Unreachable);
    EXPECT_EQ(read, 0u);
}

}  // namespace
}  // namespace orvex
