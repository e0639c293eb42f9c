// The C interface in a host without Qt, whose part is compiled as C.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QByteArray>
#include <array>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <regex>
#include <thread>

#include "entry/c/tests/HostInC.h"
#include "entry/tests/DialogScript.h"
#include "las/testing/LasFiles.h"
#include "settings/RegistryKey.h"
#include "support/JsonLimits.h"
#include "support/JsonText.h"
#include "support/Text.h"

namespace orvex {

// Also for the tests in C++17, which cannot include what it takes.
std::shared_ptr<void> PrivateSettingsOfTest() {
    struct Kept {
        testing::TemporaryFolder folder;
        PrivateSettings settings{folder.Path()};
    };
    return std::make_shared<Kept>();
}

namespace {

using ::testing::HasSubstr;
using Json = nlohmann::json;
using testing::DialogScript;

/// A text of the library's; null if there is none.
class Given {
  public:
    Given() = default;
    ~Given() { orvex_free(text); }
    Given(const Given&) = delete;
    Given& operator=(const Given&) = delete;

    Json Parsed() const { return ParseCallersJson(text); }

    char* text = nullptr;
};

std::string JsonOf(const std::wstring& text) {
    return JsonQuoted(text);
}

class CInterface : public ::testing::Test {
  protected:
    CInterface() {
        projectFolder_ = ToUtf8(folder.Name(L"project"));
        host.project = projectFolder_.c_str();
    }

    /// Request for the dialog with these files in it.
    static std::string WithFiles(const std::vector<std::wstring>& paths) {
        std::string list;
        for (const std::wstring& path : paths) {
            list += (list.empty() ? "" : ", ") + JsonOf(path);
        }
        return "{\"initialPaths\": [" + list + "], \"showFeatureTab\": true}";
    }

    /// Shows the dialog for a host of one's own; what the script clicks.
    static OrvexStatus Show(const OrvexHost* table, std::deque<std::string> script,
                            const char* request = "{}") {
        DialogScript::Begin(std::move(script));
        Given result;
        result.text = reinterpret_cast<char*>(1);
        const OrvexStatus status = orvex_show_add_files(table, request, &result.text);
        EXPECT_EQ(result.text == nullptr, status != ORVEX_OK);
        EXPECT_EQ(DialogScript::Left(), 0U);
        return status;
    }

    testing::LasFolder folder;
    const std::shared_ptr<void> settings = PrivateSettingsOfTest();
    HostInC host{};

  private:
    std::string projectFolder_;
};

TEST_F(CInterface, GivesAHostInCWhatTheUserHasChosen) {
    std::vector<std::wstring> names{L"a '1'.las", FromUtf8("\xC3\xBC\xF0\x9F\x98\x80.las")};
#if !defined(_WIN32)
    names.push_back(FromUtf8("caf\xE9.las"));
    names.push_back(L"a\\\"1\".las");
#endif
    std::vector<std::wstring> paths;
    paths.reserve(names.size());
    for (const std::wstring& name : names) {
        paths.push_back(folder.Write(testing::LasBuilder().AddPoints(4), name));
    }
    DialogScript::Begin({"click ok", "click yes"});  // they have no CRS
    Given result;
    ASSERT_EQ(host_in_c_add_files(&host, WithFiles(paths).c_str(), &result.text), ORVEX_OK)
        << orvex_last_error();
    EXPECT_STREQ(orvex_last_error(), "");
    EXPECT_EQ(DialogScript::Left(), 0U);
    EXPECT_GT(host.count, 0) << "the dialog's settings";

    const Json record = result.Parsed();
    EXPECT_FALSE(record.contains("initialPaths"));
    EXPECT_EQ(record.at("lasThinning"), 16);
    EXPECT_EQ(record.at("demExtraValues").size(), 5U);
    EXPECT_EQ(record.at("rasterFileDetails"), Json::object());
    std::vector<std::wstring> listed;
    for (const Json& name : record.at("lasFiles").at(ToUtf8(NativePath(folder.Path().wstring())))) {
        listed.push_back(JsonWide(name.get<std::string>()));
    }
    EXPECT_THAT(listed, ::testing::UnorderedElementsAreArray(names));

    const Json& details = record.at("lasFileDetails");
    ASSERT_EQ(details.size(), paths.size());
    for (const auto& [path, file] : details.items()) {
        const std::wstring wide = JsonWide(path);
        EXPECT_THAT(paths, ::testing::Contains(wide));
        Given inspected;
        ASSERT_EQ(orvex_inspect(ToUtf8(wide).c_str(), nullptr, &inspected.text), ORVEX_OK);
        EXPECT_EQ(file, inspected.Parsed());
        EXPECT_EQ(file.at("las").at("pointCount"), 4);
    }
}

TEST_F(CInterface, TheStatusTellsHowTheCallEnded) {
    const OrvexHost table = host_in_c_table(&host);
    EXPECT_EQ(Show(&table, {"click cancel"}), ORVEX_CANCELLED);
    EXPECT_EQ(Show(nullptr, {"click cancel"}), ORVEX_CANCELLED);
    EXPECT_EQ(Show(&table, {"click ok"}), ORVEX_CANCELLED) << "nothing was chosen";
    EXPECT_STREQ(orvex_last_error(), "");

    OrvexHost failing = table;
    failing.project_folder = [](void*, OrvexPut, void*) -> std::int32_t { return 1; };
    EXPECT_EQ(Show(&failing, {"click ok"}), ORVEX_FAILED);
    EXPECT_THAT(orvex_last_error(), HasSubstr("80004005"));

    const int lines = host.lines;
    const QByteArray platform = qgetenv("ORVEX_QT_PLATFORM");
    qputenv("ORVEX_QT_PLATFORM", "nowhere");
    EXPECT_EQ(Show(&table, {}), ORVEX_NOT_SHOWN);
    EXPECT_THAT(orvex_last_error(), HasSubstr("'nowhere'"));
    EXPECT_GT(host.lines, lines) << "the host's log";
    std::int32_t stop = 0;
    EXPECT_EQ(orvex_show_lidar_messages(&table, R"({"inProject": true, "cannotBeOpened": true})", &stop),
              ORVEX_NOT_SHOWN);
    EXPECT_EQ(stop, 1) << "whether or not the user can be told";
    std::int32_t choice = 7;
    EXPECT_EQ(orvex_ask_adding_lidar(&table, 1, &choice), ORVEX_NOT_SHOWN);
    EXPECT_EQ(choice, ORVEX_LIDAR_READ_ONLY);
    qputenv("ORVEX_QT_PLATFORM", platform);
}

TEST_F(CInterface, OneThreadAtATimeShowsWindows) {
    OrvexStatus other = ORVEX_OK;
    DialogScript::Begin({"click cancel"}, [&other] {
        std::thread([&other] {
            Given result;
            other = orvex_show_add_files(nullptr, nullptr, &result.text);
            EXPECT_THAT(orvex_last_error(), HasSubstr("another thread"));
        }).join();
        return true;
    });
    Given result;
    EXPECT_EQ(orvex_show_add_files(nullptr, nullptr, &result.text), ORVEX_CANCELLED);
    EXPECT_EQ(other, ORVEX_NOT_SHOWN);
    EXPECT_STREQ(orvex_last_error(), "");
}

TEST_F(CInterface, HostileRequestsAreRefusedByName) {
    const std::string deep = std::string(250, '[') + std::string(250, ']');
    const std::string objects = "{\"existingLasLayers\":" + deep + "}";
    const struct {
        std::string request;
        const char* reason;
    } cases[] = {
        {"", "byte 1"},
        {"[]", "no object"},
        {deep, "more than 64 deep"},
        {objects, "more than 64 deep"},
        {R"({"initialTab": 1, "colour": 2})", "\"colour\" is not a member"},
        {R"({"lasFiles": {}})", "\"lasFiles\" is a result"},
        {R"({"hostApplication": 4096})", "\"hostApplication\""},
        {R"({"initialTab": "1"})", "\"initialTab\""},
        {R"({"initialTab": 1.5})", "\"initialTab\""},
        {R"({"initialTab": 4294967296})", "\"initialTab\""},
        {R"({"initialTab": 18446744073709551615})", "\"initialTab\""},
        {R"({"showDemTab": 1})", "\"showDemTab\""},
        {R"({"existingLasLayers": {"a": null}})", "\"existingLasLayers\""},
        {R"({"initialPaths": ["a", ["b"]]})", "\"initialPaths\""},
        {R"({"initialFolder": "a\u0000b"})", "U+0000"},
        {"{\"initialFolder\": \"\xC3\"}", "byte"},
    };
    for (const auto& [request, reason] : cases) {
        EXPECT_EQ(Show(nullptr, {}, request.c_str()), ORVEX_INVALID) << request;
        EXPECT_THAT(orvex_last_error(), HasSubstr(reason)) << request;
    }
    // Odd, but what a host may ask.
    for (const char* request :
         {R"({"initialTab": -2147483648})", R"({"initialTab": 2147483647, "initialPaths": []})",
          R"({"existingLasLayers": {"": "", "\udc80": "no WKT"}})"}) {
        EXPECT_EQ(Show(nullptr, {"click cancel"}, request), ORVEX_CANCELLED) << request << orvex_last_error();
    }
    EXPECT_EQ(orvex_show_add_files(nullptr, nullptr, nullptr), ORVEX_INVALID);
    EXPECT_THAT(orvex_last_error(), HasSubstr("result is null"));
}

TEST_F(CInterface, TablesOfOtherVersionsAreTakenAsFarAsTheyGo) {
    OrvexHost table = host_in_c_table(&host);
    table.size = 0;
    EXPECT_EQ(Show(&table, {}), ORVEX_INVALID);
    table.size = offsetof(OrvexHost, set_setting);
    EXPECT_EQ(Show(&table, {}), ORVEX_INVALID) << "it can get settings, and not set them";

    // What lies behind a smaller table is not the host's to call.
    table.size = offsetof(OrvexHost, get_setting) + 3;
    table.set_setting = reinterpret_cast<decltype(table.set_setting)>(0x10);
    table.project_folder = reinterpret_cast<decltype(table.project_folder)>(0x10);
    EXPECT_EQ(Show(&table, {"click cancel"}), ORVEX_CANCELLED);
    EXPECT_EQ(host.count, 0);

    struct {
        OrvexHost known;
        void* later[4];
    } larger{host_in_c_table(&host), {}};
    larger.known.size = sizeof(larger);
    EXPECT_EQ(Show(&larger.known, {"click cancel"}), ORVEX_CANCELLED);
}

TEST_F(CInterface, WhateverTheFunctionsOfTheHostPutTheDialogOpens) {
    using Get = decltype(OrvexHost::get_setting);
    static const std::string large(kMostJsonBytes + 1, ' ');
    const Get answers[] = {
        [](void*, const char*, const char*, OrvexPut, void*) -> std::int32_t { return 0; },
        [](void*, const char*, const char*, OrvexPut put, void* sink) -> std::int32_t {
            put(sink, "-1");
            put(sink, "not JSON");
            return 0;
        },
        [](void*, const char*, const char*, OrvexPut put, void* sink) -> std::int32_t {
            put(sink, "[[1]]");
            return 0;
        },
        [](void*, const char*, const char*, OrvexPut put, void* sink) -> std::int32_t {
            put(sink, "1e999");
            return 0;
        },
        [](void*, const char*, const char*, OrvexPut put, void* sink) -> std::int32_t {
            put(sink, large.c_str());
            return 0;
        },
        [](void*, const char*, const char*, OrvexPut put, void* sink) -> std::int32_t {
            put(sink, "1");
            return -1;
        },
    };
    OrvexHost table = host_in_c_table(&host);
    table.set_setting = [](void*, const char*, const char*, const char*) -> std::int32_t { return 1; };
    table.account = [](void*, OrvexPut put, void* sink) -> std::int32_t {
        put(sink, R"({"token": ["secret"]})");
        return 0;
    };
    for (const Get& answer : answers) {
        table.get_setting = answer;
        const char* const all = R"({"showRasterTab": true, "showDemTab": true, "showPhotoTab": true,
                                    "showFeatureTab": true, "showCloudTab": true})";
        EXPECT_EQ(Show(&table, {"click cancel"}, all), ORVEX_CANCELLED) << &answer - answers;
        EXPECT_EQ(Show(&table, {"click ok"}, all), ORVEX_CANCELLED) << &answer - answers;
    }
}

TEST_F(CInterface, InspectSaysWhyAFileCannotBeLoaded) {
    const std::wstring dem =
        folder.Write(L"dem.asc", "ncols 1\nnrows 1\nxllcorner 0\nyllcorner 0\ncellsize 1\n5\n");
    const struct {
        std::wstring path;
        const char* request;
        OrvexStatus status;
        const char* kind;
        bool loadable;
    } cases[] = {
        {dem, nullptr, ORVEX_OK, "dem", true},
        {dem, R"({"kind": "raster"})", ORVEX_OK, "raster", true},
        {dem, R"({"kind": "las"})", ORVEX_OK, "las", false},
        {folder.Name(L"none.las"), "{}", ORVEX_OK, "las", false},
        {L"", nullptr, ORVEX_OK, "unknown", false},
        {dem, R"({"kind": "dome"})", ORVEX_INVALID, "", false},
        {dem, R"({"kinds": "dem"})", ORVEX_INVALID, "", false},
        {dem, "null", ORVEX_INVALID, "", false},
    };
    for (const auto& c : cases) {
        Given result;
        ASSERT_EQ(orvex_inspect(ToUtf8(c.path).c_str(), c.request, &result.text), c.status)
            << orvex_last_error();
        if (c.status == ORVEX_OK) {
            EXPECT_EQ(result.Parsed().at("kind"), c.kind);
            EXPECT_EQ(result.Parsed().at("loadable"), c.loadable) << result.text;
        }
    }
    Given none;
    EXPECT_EQ(orvex_inspect(nullptr, nullptr, &none.text), ORVEX_INVALID);
    EXPECT_EQ(orvex_inspect("a.las", nullptr, nullptr), ORVEX_INVALID);
}

TEST_F(CInterface, OptionsAreReadAndWrittenByName) {
    const struct {
        const char *name, *json, *stored;
    } good[] = {{"optAddLASThinning", "8", "8"},
                {"optAddLASAppend", "0", "0"},
                {"optLOSObserverHeight", "1.75", "1.75"},
                {"optAddFilesCurTabIndex", "-1", "-1"}};
    for (const auto& [name, json, stored] : good) {
        EXPECT_EQ(orvex_set_option(name, json), ORVEX_OK) << orvex_last_error();
        Given value;
        EXPECT_EQ(orvex_get_option(name, &value.text), ORVEX_OK);
        EXPECT_STREQ(value.text, stored);
    }
    const struct {
        const char *name, *json;
    } bad[] = {
        {"optAddLASThinning", "2147483648"}, {"optAddLASThinning", "1.5"}, {"optAddLASThinning", "\"8\""},
        {"optAddLASAppend", "256"},          {"optAddLASAppend", "-1"},    {"optResellerName", "5"},
        {"optLOSObserverHeight", "1e999"},   {"optNothing", "1"},          {"optAddLASThinning", "8 9"}};
    for (const auto& [name, json] : bad) {
        EXPECT_EQ(orvex_set_option(name, json), ORVEX_INVALID) << name << ' ' << json;
    }
    Given unchanged, unset, none;
    EXPECT_EQ(orvex_get_option("optAddLASThinning", &unchanged.text), ORVEX_OK);
    EXPECT_STREQ(unchanged.text, "8");
    EXPECT_EQ(orvex_get_option("optPointDensity", &unset.text), ORVEX_OK);
    EXPECT_STREQ(unset.text, "null");
    EXPECT_EQ(orvex_get_option("optNothing", &none.text), ORVEX_INVALID);
    EXPECT_EQ(none.text, nullptr);
}

TEST_F(CInterface, TheLidarAnswerAndMessages) {
    std::int32_t choice = -1;
    DialogScript::Begin({"click notAtAll", "click ok"});
    EXPECT_EQ(orvex_ask_adding_lidar(nullptr, 1, &choice), ORVEX_OK);
    EXPECT_EQ(choice, ORVEX_LIDAR_NOT_AT_ALL);
    DialogScript::Begin({"click notAtAll", "click cancel"});
    EXPECT_EQ(orvex_ask_adding_lidar(nullptr, 1, &choice), ORVEX_CANCELLED);
    EXPECT_EQ(choice, ORVEX_LIDAR_READ_ONLY);
    EXPECT_EQ(orvex_ask_adding_lidar(nullptr, 1, nullptr), ORVEX_INVALID);

    std::int32_t stop = 0;
    DialogScript::Begin({"click ok"});
    EXPECT_EQ(orvex_show_lidar_messages(nullptr, R"({"caption": "Adding", "damaged": true})", &stop),
              ORVEX_OK);
    EXPECT_EQ(DialogScript::Left(), 0U);
    EXPECT_EQ(stop, 0);
    EXPECT_EQ(orvex_show_lidar_messages(nullptr, R"({"damaged": 1})", &stop), ORVEX_INVALID);
    EXPECT_EQ(orvex_show_lidar_messages(nullptr, R"({"stop": true})", &stop), ORVEX_INVALID);
}

TEST_F(CInterface, ThreadsHaveTheirOwnErrors) {
    const std::string path = ToUtf8(folder.Write(testing::LasBuilder().AddPoints(2)));
    EXPECT_EQ(orvex_inspect(nullptr, nullptr, nullptr), ORVEX_INVALID);
    std::array<std::thread, 4> threads;
    for (std::thread& thread : threads) {
        thread = std::thread([&path] {
            EXPECT_STREQ(orvex_last_error(), "");
            for (int call = 0; call < 20; ++call) {
                Given result;
                EXPECT_EQ(orvex_inspect(path.c_str(), nullptr, &result.text), ORVEX_OK);
                Given option;
                EXPECT_EQ(orvex_get_option("optNothing", &option.text), ORVEX_INVALID);
                EXPECT_THAT(orvex_last_error(), HasSubstr("optNothing"));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_THAT(orvex_last_error(), HasSubstr("result is null"));
    EXPECT_EQ(orvex_interface_version(), ORVEX_INTERFACE_VERSION);
    EXPECT_TRUE(std::regex_match(orvex_version(), std::regex("[0-9]+(\\.[0-9]+){2}")));
    orvex_free(nullptr);
}

}  // namespace
}  // namespace orvex
