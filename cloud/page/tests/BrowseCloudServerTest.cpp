// The browser over real sockets, through the host's account library.
#include <gmock/gmock.h>

#include "cloud/page/tests/BrowserFixture.h"
#include "host/cloudserver/CloudServer.h"
#include "support/Format.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using Names = std::vector<std::wstring>;

std::string LayersJson(int count) {
    std::string json = R"({"layers":[)";
    for (int i = 0; i < count; ++i) {
        const std::string number = std::to_string(i);
        json += (i == 0 ? "" : ",") + (R"({"name":"t)" + number) + R"(","url":"files/t)" + number +
                R"(.laz","bytes":1073741824,"id":"l)" + number + R"("})";
    }
    return json + "]}";
}

class BrowseCloudServer : public BrowserFixture {
  protected:
    BrowseCloudServer() {
        folder.Write(L"projects.json", R"({"projects":[{"name":"Bay","id":"p1"},{"name":"Coast","id":"p2"},)"
                                       R"({"name":"Cycle - Archive","id":"p3"}]})");
        folder.Write(L"projects/p1.json", LayersJson(1100));
        folder.Write(L"projects/p2.json", LayersJson(3));
        server = std::make_unique<CloudServer>(CloudServerSettings{.folder = folder.Path(), .token = kToken});
        hostObjects.account = FakeAccount{L"anna", FromUtf8(server->Address()), FromUtf8(kToken)};
    }
    ~BrowseCloudServer() override { dialog.reset(); }

    void OpenAndRead() {
        Open();
        ASSERT_TRUE(Until([this] { return Layers().size() == 1100 && IsIdle("layers"); }));
        EXPECT_EQ(Column("projects", 0), (Names{L"Bay", L"Coast"}));
    }
    /// Shows the second project, whose layers fail.
    std::wstring FailureOf(const CloudFault& fault) {
        prompts.shown.clear();
        server->SetFault("/v1/projects/p2", fault);
        ClickRow("projects", 1);
        EXPECT_TRUE(Until([this] { return HasFailed("layers"); }));
        server->ClearFaults();
        EXPECT_EQ(prompts.shown.size(), 1U);
        const std::wstring told = Status("layers");
        EXPECT_EQ(prompts.shown.front().text, L"An exception occurred in PopulateLayers():\n\n" + told);
        EXPECT_THAT(told, Not(HasSubstr(FromUtf8(kToken))));
        Click("layersContinue");
        EXPECT_TRUE(Until([this] { return Layers().size() == 3 && IsIdle("layers"); }));
        ClickRow("projects", 0);
        EXPECT_TRUE(Until([this] { return Layers().size() == 1100 && IsIdle("layers"); }));
        return told;
    }

    static constexpr const char* kToken = "5ec4e7-t0ken";
    TemporaryFolder folder;
    std::unique_ptr<CloudServer> server;
};

TEST_F(BrowseCloudServer, PicksLayersOfAServerAndOfAFolder) {
    for (const bool isFolder : {false, true}) {
        if (isFolder) {
            hostObjects.account->service = FromPath(folder.Path());
        }
        OpenAndRead();
        ClickRow("layers", 1);
        ClickRow("projects", 1);
        ASSERT_TRUE(Until([this] { return Layers().size() == 3; }));
        ClickRow("layers", 2);
        Click("ok");
        ASSERT_EQ(Selected(), (Names{L"t1", L"t2"}));
        const CloudLayer layer = dialog->SelectedLayers().front();
        EXPECT_THAT(layer.url, HasSubstr(isFolder ? L"file:" : L"http://127.0.0.1"));
        EXPECT_THAT(layer.url, HasSubstr(L"t1.laz"));
        EXPECT_EQ(layer.size, L"1.000");
        EXPECT_THAT(prompts.shown, IsEmpty());
    }
}

TEST_F(BrowseCloudServer, WhatGoesWrongIsToldAndNothingIsLost) {
    OpenAndRead();
    const struct {
        const char* what;
        CloudFault fault;
        const wchar_t* words;  ///< of the reader; empty: the library's own
    } cases[] = {
        {"401", {.status = 401}, L""},
        {"403", {.status = 403}, L""},
        {"404", {.status = 404}, L""},
        {"429", {.status = 429, .retryAfter = "0"}, L""},
        {"500", {.status = 500}, L""},
        {"cut off", {.cutAfter = 60}, L""},
        {"redirect", {.redirect = "http://localhost:9/v1/projects"}, L""},
        {"malformed", {.body = "{\"layers\":[}"}, L"expected value"},
        {"truncated", {.body = "{\"layers\":[{\"name\":\"t"}, L"unterminated string"},
        {"no listing", {.body = "{}"}, L""},
        {"100 MB", {.body = "{\"layers\":[\"" + std::string(std::size_t{100} << 20U, 'x')}, L""},
        {"depth 100,000", {.body = std::string(100'000, '[')}, L""},
    };
    for (const auto& [what, fault, words] : cases) {
        SCOPED_TRACE(what);
        EXPECT_THAT(FailureOf(fault), HasSubstr(words));
    }
}

TEST_F(BrowseCloudServer, SlowAnswersFreezeNothing) {
    OpenAndRead();
    server->SetFault("/v1/projects/p2", {.delayMs = 600'000});
    ClickRow("projects", 1);
    const auto asked = [this] { return server->Requests().back() == "GET /v1/projects/p2/files"; };
    ASSERT_TRUE(Until(asked));
    ClickRow("projects", 0);
    EXPECT_TRUE(Until([this] { return Layers().size() == 1100 && IsIdle("layers"); }));
    ClickRow("projects", 1);
    ASSERT_TRUE(Until(asked));
    Click("cancel");
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_THAT(prompts.shown, IsEmpty());
}

TEST_F(BrowseCloudServer, AnAccountThatIsNotThere) {
    server.reset();
    Open();
    ASSERT_TRUE(Until([this] { return HasFailed("projects"); }));
    EXPECT_EQ(Message("projects"), Status("projects"));
    EXPECT_THAT(Status("projects"), HasSubstr(L"127.0.0.1"));
}

}  // namespace
}  // namespace orvex::testing
