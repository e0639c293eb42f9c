// How the browser reads lists: page by page, cancelled, failing, endless.
#include <gmock/gmock.h>

#include "cloud/page/tests/FakeCloud.h"
#include "support/Format.h"

namespace orvex::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Names = std::vector<std::wstring>;

TEST_F(BrowseCloudLayers, NobodyIsSignedIn) {
    for (const std::int32_t result : {kHostOk, kHostNotImplemented}) {
        hostObjects.account.reset();
        hostObjects.accountResult = result;
        Open();
        ASSERT_TRUE(Until([this] { return !Message("projects").empty(); }));
        EXPECT_EQ(Message("projects"), Text(text::kCloudNotSignedIn));
        EXPECT_EQ(Message("layers"), L"");
        EXPECT_FALSE(CanAdd());
        EXPECT_THAT(prompts.shown, IsEmpty());
        EXPECT_THAT(cloud->Asked(), IsEmpty());
    }
    // A host that fails is another matter.
    hostObjects.accountResult = kHostFail;
    Open();
    ASSERT_TRUE(Until([this] { return !prompts.shown.empty(); }));
    EXPECT_EQ(prompts.shown.front().text,
              L"An exception occurred in PopulateFolders():\n\n" +
                  FormatText(Text(text::kCloudAccountFailed), {static_cast<std::uint32_t>(kHostFail)}));
    hostObjects.createApplicationResult = kHostClassNotRegistered;
    Click("projectsContinue");
    ASSERT_EQ(prompts.shown.size(), 2U);
    EXPECT_THAT(prompts.shown.back().text, HasSubstr(L"0x80040154"));
    // Signed in meanwhile.
    hostObjects.createApplicationResult = kHostOk;
    hostObjects.accountResult = kHostOk;
    hostObjects.account = FakeAccount{L"anna", L"https://cloud.example/v", L"t0ken"};
    Click("projectsContinue");
    EXPECT_TRUE(Until([this] { return Layers().size() == 3; }));
}

TEST_F(BrowseCloudLayers, AnotherUserHasOtherProjects) {
    OpenAndRead();
    ClickRow("layers", 0);
    hostObjects.account->userName = L"ben";
    cloud->Set("projects", {.projects = {{"Eyot", "p3"}, {"Coast", "p2"}}});
    ClickRow("projects", 1);
    ASSERT_TRUE(Until([this] { return Column("projects", 0) == Names{L"Eyot", L"Coast"}; }));
    ASSERT_TRUE(Until([this] { return IsIdle("layers") && cloud->Asked().back() == "p3"; }));
    EXPECT_FALSE(CanAdd());
    // Where users have no names, their tokens tell them apart.
    for (const wchar_t* token : {L"one", L"two"}) {
        hostObjects.account->userName.clear();
        hostObjects.account->token = token;
        cloud->Set("projects", {.projects = {{ToUtf8(token), "p3"}, {"Coast", "p2"}}});
        ClickRow("projects", 1);
        ASSERT_TRUE(Until([&] { return Column("projects", 0) == Names{token, L"Coast"}; }));
        ASSERT_TRUE(Until([this] { return IsIdle("layers") && cloud->Asked().back() == "p3"; }));
    }
    // Signed out.
    hostObjects.account.reset();
    ClickRow("projects", 1);
    ASSERT_TRUE(Until([this] { return Message("projects") == Text(text::kCloudNotSignedIn); }));
    EXPECT_THAT(prompts.shown, IsEmpty());
}

TEST_F(BrowseCloudLayers, RowsAppearPageByPage) {
    cloud->Set("projects", {.projects = {{"Bay", "p1"}}, .next = "2"});
    cloud->Set("projects@2", {.projects = {{"Bay", "p1"}, {"Coast", "p2"}}, .isHeld = true});
    cloud->Set("p1", {.json = Listing({"a", "b"}, "2")});
    cloud->Set("p1@2", {.json = Listing({"b", "c"}), .waiting = L"h is busy.", .isHeld = true});
    Open();
    // A listing may change while it is read: what was there already is not there twice.
    ASSERT_TRUE(Until([this] { return Layers() == Names{L"a", L"b"} && Status("layers") == L"h is busy."; }));
    EXPECT_EQ(Column("projects", 0), Names{L"Bay"});
    EXPECT_EQ(Status("projects"), FormatText(Text(text::kCloudSoFar), {Text(text::kCloudOneProject)}));
    EXPECT_TRUE(Find<QWidget>("layersBusy").isVisible());
    ClickRow("layers", 1);
    cloud->Release("p1@2");
    cloud->Release("projects@2");
    ASSERT_TRUE(Until([this] { return IsIdle("layers") && IsIdle("projects"); }));
    EXPECT_EQ(Layers(), (Names{L"a", L"b", L"c"}));
    EXPECT_EQ(Column("projects", 0), (Names{L"Bay", L"Coast"}));
    EXPECT_THAT(Grid("layers").SelectedRows(), ElementsAre(1));
    EXPECT_FALSE(Find<QWidget>("layersBusy").isVisible());
}

TEST_F(BrowseCloudLayers, FailuresAreToldOnceAndReadingGoesOn) {
    const struct Case {
        const char* page;
        const char* list;
        const wchar_t* step;
        FakeCloud::Reply failure;
        std::wstring message;
    } cases[] = {
        {"projects@2",
         "projects",
         L"PopulateFolders",
         {.outcome = {CloudStatus::NotSignedIn, L"h: 401."}},
         L"h: 401."},
        {"p1@2", "layers", L"PopulateLayers", {.outcome = {CloudStatus::Busy, L"h is busy."}}, L"h is busy."},
        {"p1@2",
         "layers",
         L"PopulateLayers",
         {.json = "{\"layers\":[{\"name\":\"a"},
         L"<unspecified file>(1): unterminated string"},
        {"p1@2",
         "layers",
         L"PopulateLayers",
         {.json = std::string(100'000, '[')},
         FormatText(Text(text::kCloudListingTooDeep), {64})},
        {"p1@2",
         "layers",
         L"PopulateLayers",
         {.json = Listing({"z"}, "2")},
         Text(text::kCloudListingRepeats)},
        {"p1@2",
         "layers",
         L"PopulateLayers",
         {.outcome = {CloudStatus::Cancelled, {}}},
         Text(text::kCloudNotRead)},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(ToUtf8(c.message));
        prompts.shown.clear();
        cloud->Set("projects", {.projects = {{"Bay", "p1"}}, .next = "2"});
        cloud->Set("projects@2", {.projects = {{"Coast", "p2"}}});
        cloud->Set("p1", {.json = Listing({"a", "b"}, "2")});
        cloud->Set("p1@2", {.json = Listing({"c"})});
        cloud->Set(c.page, c.failure);
        Open();
        ASSERT_TRUE(Until([&] { return HasFailed(c.list) && Model("layers").rowCount() > 1; }));
        ASSERT_EQ(prompts.shown.size(), 1U);
        EXPECT_EQ(prompts.shown[0].text,
                  std::wstring(L"An exception occurred in ") + c.step + L"():\n\n" + c.message);
        EXPECT_EQ(prompts.shown[0].caption, Text(text::kCloudErrorCaption));
        EXPECT_EQ(prompts.shown[0].icon, PromptIcon::Error);
        EXPECT_EQ(Status(c.list), c.message);
        EXPECT_GT(Model(c.list).rowCount(), 0) << "what had arrived stays";
        cloud->Set("projects@2", {.projects = {{"Coast", "p2"}}});
        cloud->Set("p1@2", {.json = Listing({"c"})});
        hostObjects.account->token = L"another";
        Click((std::string(c.list) + "Continue").c_str());
        ASSERT_TRUE(Until([&] { return IsIdle("projects") && IsIdle("layers"); }));
        EXPECT_THAT(Layers(), Contains(L"c"));
        EXPECT_EQ(Column("projects", 0), (Names{L"Bay", L"Coast"}));
        EXPECT_EQ(prompts.shown.size(), 1U);
        EXPECT_THAT(cloud->Tokens(), Contains(L"another")) << "a token that has run out is not used again";
    }
}

TEST_F(BrowseCloudLayers, AFailureOfTheFirstPageStandsInTheList) {
    cloud->Set("projects", {.outcome = {CloudStatus::Unreachable, L"h cannot be reached."}});
    Open();
    ASSERT_TRUE(Until([this] { return HasFailed("projects"); }));
    EXPECT_EQ(Message("projects"), L"h cannot be reached.");
    EXPECT_TRUE(Find<QWidget>("projectsContinue").isVisible());
}

TEST_F(BrowseCloudLayers, AnotherProjectEndsTheRequestAndItsAnswerIsDropped) {
    OpenAndRead();
    cloud->Set("p2", {.json = Listing({"stale"}), .isHeld = true});
    ClickRow("projects", 1);
    ASSERT_TRUE(Until([this] { return cloud->Asked().back() == "p2"; }));
    EXPECT_EQ(Message("layers"), Text(text::kCloudReadingLayers));
    ClickRow("projects", 0);
    ASSERT_TRUE(Until([this] { return cloud->Running() == 0 && Layers().size() == 3; }));
    // One that comes all the same is not shown.
    cloud->Set("p2", {.json = Listing({"stale"}), .isHeld = true, .isDeaf = true});
    ClickRow("projects", 1);
    ASSERT_TRUE(Until([this] { return cloud->Running() == 1; }));
    ClickRow("projects", 0);
    cloud->Release("p2");
    ASSERT_TRUE(Until([this] { return cloud->Running() == 0 && IsIdle("layers"); }));
    EXPECT_EQ(Layers(), (Names{L"a", L"b", L"c"}));
    EXPECT_THAT(prompts.shown, IsEmpty());
}

TEST_F(BrowseCloudLayers, StopAndGoOn) {
    cloud->Set("p1", {.json = Listing({"a"}, "2")});
    cloud->Set("p1@2", {.json = Listing({"b"}), .isHeld = true});
    Open();
    ASSERT_TRUE(Until([this] { return cloud->Running() == 1 && Layers().size() == 1; }));
    Click("layersStop");
    ASSERT_TRUE(Until([this] { return cloud->Running() == 0; }));
    EXPECT_EQ(Status("layers"), FormatText(Text(text::kCloudStoppedAt), {Text(text::kCloudOneLayer)}));
    EXPECT_THAT(prompts.shown, IsEmpty());
    cloud->Release("p1@2");
    Click("layersContinue");
    EXPECT_TRUE(Until([this] { return Layers() == Names{L"a", L"b"} && IsIdle("layers"); }));
    // At once after another project was chosen: that one is not asked for.
    ClickRow("projects", 1);
    Click("layersStop");
    EXPECT_FALSE(Find<QTimer>("layersLater").isActive());
    Click("layersContinue");
    EXPECT_TRUE(Until([this] { return Layers() == Names{L"d", L"e"} && IsIdle("layers"); }));
}

TEST_F(BrowseCloudLayers, LayersOfOneIdAndOtherUrlsAreDifferent) {
    const std::string tiles = R"({"name":"t1","id":"t","url":"https://h/1.laz?s=1"},)"
                              R"({"name":"t2","id":"t","url":"https://h/2.laz?s=1"},)"
                              R"({"name":"t3","id":"t","url":"https://h/2.laz?part=3"})";
    cloud->Set("p1", {.json = R"({"layers":[)" + tiles + R"(],"next":"2"})"});
    cloud->Set("p1@2", {.json = R"({"layers":[{"name":"t2","id":"t","url":"https://h/2.laz?s=2"}]})"});
    Open();
    ASSERT_TRUE(Until([this] { return !Layers().empty() && IsIdle("layers"); }));
    EXPECT_EQ(Layers(), (Names{L"t1", L"t2", L"t3"}));
    Grid("layers").SelectAll();
    ClickRow("projects", 1);
    ASSERT_TRUE(Until([this] { return Layers().size() == 2 && IsIdle("layers"); }));
    Click("ok");
    EXPECT_EQ(Selected(), (Names{L"t1", L"t2", L"t3"}));
}

TEST_F(BrowseCloudLayers, AListThatDidNotEndIsReadAnew) {
    const std::string a = R"({"name":"a","url":"https://h/a.laz"})";
    cloud->Set("p1", {.json = R"({"layers":[)" + a + R"(],"next":"2"})"});
    cloud->Set("p1@2", {.json = Listing({}, "2")});
    Open();
    ASSERT_TRUE(Until([this] { return HasFailed("layers"); }));
    ClickRow("layers", 0);
    cloud->Set("p1", {.json = R"({"layers":[)" + a + "]}"});
    Click("layersContinue");
    ASSERT_TRUE(Until([this] { return IsIdle("layers"); }));
    EXPECT_EQ(Layers(), Names{L"a"});
    EXPECT_TRUE(CanAdd());
}

TEST_F(BrowseCloudLayers, AListThatIsTooLongIsNotReadOn) {
    cloud->Set("p1", {.json = Listing({"a"}, "1")});
    for (int page = 1; page <= 100; ++page) {
        cloud->Set("p1@" + std::to_string(page), {.json = Listing({}, std::to_string(page + 1))});
    }
    Open();
    ASSERT_TRUE(Until([this] { return HasFailed("layers"); }));
    EXPECT_EQ(Status("layers"), Text(text::kCloudListingTooLong));
    EXPECT_FALSE(Find<QWidget>("layersContinue").isVisible());
    ClickRow("projects", 1);
    EXPECT_TRUE(Until([this] { return Layers().size() == 2 && IsIdle("layers"); }));
}

TEST_F(BrowseCloudLayers, AnAccountThatDoesNotAnswerKeepsNothingOpen) {
    cloud->Set("p1", {.isHeld = true, .isDeaf = true});
    Open();
    ASSERT_TRUE(Until([this] { return cloud->Running() == 1; }));
    Click("cancel");
    EXPECT_FALSE(dialog->isVisible());
    dialog.reset();
    EXPECT_EQ(cloud->Running(), 1);  // left behind, until the fixture releases it
}

TEST_F(BrowseCloudLayers, SilentRequestsDoNotPileUp) {
    OpenAndRead();
    for (const char* project : {"p2", "p3"}) {
        cloud->Set(project, {.isHeld = true, .isDeaf = true});
    }
    for (int i = 0; i < 8; ++i) {
        ClickRow("projects", 1 + i % 2);
        ASSERT_TRUE(Until([&] { return cloud->Running() == i + 1; }));
    }
    ClickRow("projects", 0);
    ASSERT_TRUE(Until([this] { return HasFailed("layers"); }));
    EXPECT_EQ(Status("layers"), Text(text::kCloudAccountSilent));
    EXPECT_EQ(cloud->Running(), 8);
    cloud->Release("p2");
    cloud->Release("p3");
    ASSERT_TRUE(Until([this] { return cloud->Running() == 0; }));
    Click("layersContinue");
    EXPECT_TRUE(Until([this] { return Layers().size() == 3; }));
}

TEST_F(BrowseCloudLayers, ProjectsOfAnotherUserThatCannotBeAskedFor) {
    cloud->Set("projects", {.projects = {{"Bay", "p1"}, {"Coast", "p2"}}, .next = "2"});
    cloud->Set("projects@2", {.isHeld = true, .isDeaf = true});
    Open();
    ASSERT_TRUE(Until([this] { return Layers().size() == 3 && IsIdle("layers"); }));
    for (int i = 1; i <= 8; ++i) {
        ASSERT_TRUE(Until([&] { return cloud->Running() == i; }));
        Click("projectsStop");
        if (i < 8) {
            Click("projectsContinue");
        }
    }
    hostObjects.account->userName = L"ben";
    ClickRow("projects", 1);
    EXPECT_TRUE(Until([this] { return HasFailed("projects") && IsIdle("layers"); }));
    EXPECT_EQ(Status("projects"), Text(text::kCloudAccountSilent));
    cloud->Release("projects@2");
}

TEST_F(BrowseCloudLayers, FiltersWorkOnWhatHasArrived) {
    std::vector<ArchivingProject> projects;
    for (int i = 0; i < 10'000; ++i) {
        const std::string number = std::to_string(i);
        projects.push_back({(i < 1234 ? "Bay " : "Coast ") + number, i == 0 ? "p1" : "q" + number});
    }
    cloud->Set("projects", {.projects = projects});
    OpenAndRead();
    Type("projects", "bay");
    ASSERT_TRUE(Until([this] { return Model("projects").rowCount() == 1234; }));
    EXPECT_EQ(Status("projects"), FormatText(Text(text::kCloudProjectsShownOf), {1234, 10'000}));
    // A project that the filter hides keeps its layers in the window.
    for (const char* filter : {"bay 1", "coast 9999"}) {
        Type("projects", filter);
        ASSERT_TRUE(Until([this] { return Column("projects", 0).front() != L"Bay 0"; }));
        EXPECT_EQ(Layers().size(), 3U) << filter;
    }
    EXPECT_EQ(cloud->Asked(), (std::vector<std::string>{"projects", "p1"}));
    EXPECT_THAT(Grid("projects").SelectedRows(), IsEmpty());
    Type("projects", "bay 0");
    ASSERT_TRUE(Until([this] { return Grid("projects").SelectedRows() == std::vector{0}; }));
    EXPECT_EQ(Layers().size(), 3U);
    Type("layers", "name!=b size>1");
    EXPECT_EQ(Layers(), (Names{L"a", L"c"}));
    Type("layers", "none");
    EXPECT_EQ(Message("layers"), Text(text::kFilterNothing));
}

TEST_F(BrowseCloudLayers, AProjectOfAHundredThousandFiles) {
    constexpr int kPages = 20;
    constexpr int kPerPage = 5000;
    for (int page = 0; page < kPages; ++page) {
        std::string json = R"({"layers":[)";
        for (int i = 0; i < kPerPage; ++i) {
            const std::string name = "t" + std::to_string(page * kPerPage + i);
            json += (i == 0 ? "" : ",") + (R"({"name":")" + name) + R"(","url":"https://h/)" + name + R"("})";
        }
        json += R"(],"next":")" + (page + 1 < kPages ? std::to_string(page + 1) : "") + "\"}";
        cloud->Set(page == 0 ? "p1" : "p1@" + std::to_string(page), {.json = json});
    }
    Open();
    qDeleteAll(Model("layers").findChildren<QAbstractItemModelTester*>());  // they look at every row
    ASSERT_TRUE(Until([this] { return Model("layers").rowCount() == kPerPage * kPages; }));
    Model("layers").sort(0, Qt::DescendingOrder);
    EXPECT_EQ(Model("layers").CellText(Model("layers").RecordOfRow(0), 0), L"t99999");
    Grid("layers").SelectAll();
    ClickRow("projects", 1);
    ASSERT_TRUE(Until([this] { return Layers().size() == 2 && IsIdle("layers"); }));
    EXPECT_THAT(Status("layers"),
                HasSubstr(FormatText(Text(text::kCloudSelectedElsewhere), {100'000, 100'000})));
}

}  // namespace
}  // namespace orvex::testing
