#include "cloud/page/AddCloudLASFilesPP.h"

#include <gmock/gmock.h>

#include <QAction>
#include <QClipboard>
#include <QMenu>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTableView>
#include <QTextEdit>
#include <QTimer>
#include <atomic>
#include <fstream>
#include <thread>

#include "dialog/testing/PageFixture.h"
#include "las/testing/LasFiles.h"
#include "support/Format.h"

namespace orvex {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;
using Map = std::map<std::wstring, std::wstring>;

constexpr std::int64_t kNoon = 1'790'251'200'000;  // 2026-09-24 12:00 UTC
constexpr std::int64_t kHourMs = 3'600'000;
constexpr const wchar_t* kSigned =
    L"https://store.example/lidar/tile.laz?X-Amz-Date=20260924T110000Z&X-Amz-Expires=7200"
    L"&X-Amz-Credential=KEYID&X-Amz-Signature=c0ffee";

/// Answers of the dialogs and of the network.
struct Script {
    std::deque<std::vector<CloudLayer>> picked;
    std::deque<std::optional<std::wstring>> urls;
    std::vector<std::wstring> typed;  ///< in the field before
    std::deque<std::optional<std::wstring>> names;
    std::wstring failure;  ///< thrown by all of these unless empty
    std::int64_t now = kNoon;
    std::function<RemoteLas(const std::wstring& url, const CloudCall& call)> inspect;

    void Throw() const {
        if (!failure.empty()) {
            throw LDataError(failure);
        }
    }
    CloudSources Sources() {
        CloudSources sources;
        sources.browse = [this] {
            Throw();
            return testing::Next(picked, {});
        };
        sources.askUrl = [this](const std::wstring& before) {
            Throw();
            typed.push_back(before);
            return testing::Next(urls, {});
        };
        sources.askName = [this](const std::wstring&) {
            Throw();
            return testing::Next(names, {});
        };
        sources.inspect = [this](const std::wstring& url, const CloudCall& call) {
            return inspect(url, call);
        };
        sources.now = [this] { return now; };
        return sources;
    }
};

/// Made before the page, whose maker is a plain function.
struct ScriptOfPage {
    ScriptOfPage() { current = &script; }

    static std::unique_ptr<AddFilesPage> Make(const PageContext& context) {
        return std::make_unique<AddCloudLASFilesPP>(context, current->Sources());
    }

    Script script;
    static inline Script* current = nullptr;
};

CloudLayer Layer(const std::wstring& name, const std::wstring& url) {
    CloudLayer layer;
    layer.name = name;
    layer.url = url;
    layer.bytes = 1'610'612'736;
    layer.size = L"1.500";
    layer.points = L"1000";
    layer.crs = L"EPSG:25832";
    layer.modified = L"2026-01-02";
    layer.id = L"id of " + name;
    layer.project = L"p1";
    return layer;
}

class CloudPage : protected ScriptOfPage, public testing::PageFixture {
  protected:
    CloudPage() : PageFixture(ScriptOfPage::Make) {}

    void Choose(const char* command) const {
        page->findChild<QMenu*>("addMenu")->findChild<QAction*>(QLatin1String(command))->trigger();
    }
    void Browse(std::vector<CloudLayer> layers) {
        script.picked = {std::move(layers)};
        Choose("32773");
    }
    void Enter(const std::wstring& url) {
        script.urls = {url};
        Choose("32771");
    }
    void Trigger(const char* action) const { page->findChild<QAction*>(QLatin1String(action))->trigger(); }
    std::wstring Overview() const { return ToWide(Find<QTextEdit>("cloudOverview")->toPlainText()); }
    AddFilesParams Stored() {
        params.presignedUrlLayers.clear();
        params.cloudLasLayers.clear();
        params.cloudLasLayerValues2.clear();
        params.cloudLasLayerValues3.clear();
        EXPECT_TRUE(page->ValidateAndStore());
        return params;
    }
    /// A file that the network has.
    RemoteLas Remote(const std::wstring& url) const {
        RemoteLas remote;
        const testing::LasBuilder file =
            testing::LasBuilder().ProjectedEpsg(25832).AddPoints(5, 500000, 5500000);
        // Several threads ask at a time.
        remote.row = InspectLasFile(las_.Write(file, std::to_wstring(++asked_) + L".las"));
        remote.row.path = url;
        remote.transferred = 65'400;
        remote.status = CloudStatus::Ok;
        return remote;
    }

  private:
    testing::LasFolder las_;
    mutable std::atomic<int> asked_ = 0;
};

TEST_F(CloudPage, IsLaidOutAsPagesAre) {
    ExpectTextsOfControls();
    ExpectLettersOfTheirOwn();
    ExpectEverythingWithinReach({});
    EXPECT_EQ(ToWide(Grid().ShownMessage()), Text(text::kCloudEmptyGrid));
    EXPECT_EQ(Overview(), Text(text::kCloudNoSelection));
    EXPECT_EQ(Find(351)->toolTip(),
              "Add an Orvex Cloud Layer(s) by browsing Orvex Cloud LAS Layers/Packages or by providing the "
              "Pre-signed S3 URL of the layer to be added.");
    QTest::keyClick(Grid().Table(), Qt::Key_F1);
    Click(356);
    EXPECT_THAT(help.shown, ElementsAre(HelpTopic::CloudLas, HelpTopic::CloudLas));
}

TEST_F(CloudPage, TheAddButtonOpensItsMenuWhichKeysChooseFrom) {
    auto* menu = page->findChild<QMenu*>("addMenu");
    Click(351);
    ASSERT_TRUE(menu->isVisible());
    EXPECT_EQ(menu->pos(), page->mapToGlobal(QPoint(0, Find(351)->height())));
    std::vector<std::pair<QString, bool>> entries;
    for (const QAction* action : menu->actions()) {
        entries.emplace_back(action->text(), action->isEnabled());
    }
    const auto text = [](unsigned id) { return ToQString(Text(StringId{id})); };
    EXPECT_THAT(entries, ElementsAre(std::pair(text(3361), true), std::pair(text(3362), true),
                                     std::pair(text(3363), false), std::pair(text(3364), false)));
    script.urls = {L"https://store.example/a.las"};
    QTest::keyClick(menu, Qt::Key_Down);
    QTest::keyClick(menu, Qt::Key_Return);
    EXPECT_FALSE(menu->isVisible());
    EXPECT_THAT(Shown("name"), ElementsAre(L"Cloud LAS_Layer"));
    for (const char* greyed : {"32774", "32776"}) {
        Choose(greyed);
    }
    EXPECT_THAT(pickers.asked, IsEmpty());
    const DialogProgress::Run run(Progress());
    EXPECT_FALSE(Enabled(351));
}

TEST_F(CloudPage, LayersOfTheBrowserAreAddedOncePerUrl) {
    Browse({});
    EXPECT_EQ(Model().rowCount(), 0) << "cancelled";
    Browse({Layer(L"A", L"https://h/a.las"), Layer(L"B", L"https://h/b.las"),
            Layer(L"A again", L"https://h/a.las")});
    EXPECT_THAT(Shown("name"), ElementsAre(L"A", L"B"));
    EXPECT_THAT(Shown("source"), Contains(L"[ OrvexLAS URL ]").Times(2));
    EXPECT_EQ(Outcome(), FormatText(Text(text::kCloudLayersAdded), {2, 1}));
    EXPECT_THAT(Grid().SelectedRows(), IsEmpty());
    Browse({Layer(L"B", L"https://h/b.las"), Layer(L"C", L"https://h/B.las"), Layer(L"D", L"")});
    EXPECT_THAT(Shown("name"), ElementsAre(L"A", L"B", L"C", L"D")) << "letter case counts";
    EXPECT_THAT(Shown("size"), Contains(L"1.500").Times(4));
    EXPECT_EQ(Model().FooterText(ColumnNamed("size")), L"6.000");
    EXPECT_EQ(Model().FooterText(ColumnNamed("name")), FormatText(Text(text::kCloudLayersFooter), {L"4"}));
    const AddFilesParams record = Stored();
    EXPECT_EQ(record.cloudLasLayers,
              (Map{{L"A", L"https://h/a.las"}, {L"B", L"https://h/b.las"}, {L"C", L"https://h/B.las"}}));
    EXPECT_EQ(record.cloudLasLayerValues2, (Map{{L"A", L"id of A"}, {L"B", L"id of B"}, {L"C", L"id of C"}}));
    std::vector<CloudLayer> many;
    for (int i = 0; i < 10'000; ++i) {
        many.push_back(Layer(L"layer " + std::to_wstring(i), L"https://h/" + std::to_wstring(i)));
    }
    Browse(std::move(many));
    EXPECT_EQ(Model().rowCount(), 10'004);
}

TEST_F(CloudPage, AUrlThatIsListedIsAskedForAgain) {
    Browse({Layer(L"A", L"https://h/A.las")});
    script.urls = {L"HTTPS://H/a.LAS", L"https://h/a.las", L"https://h/b.las"};
    Choose("32771");
    EXPECT_THAT(script.typed, ElementsAre(L"", L"HTTPS://H/a.LAS", L"https://h/a.las"));
    ASSERT_THAT(prompts.shown, SizeIs(2));
    EXPECT_EQ(prompts.shown[0].text, Text(text::kCloudUrlAlreadyListed));
    EXPECT_EQ(prompts.shown[0].caption, Text(text::kInvalidInputCaption));
    EXPECT_EQ(prompts.shown[0].icon, PromptIcon::Error);
    EXPECT_THAT(Shown("source"), ElementsAre(L"[ OrvexLAS URL ]", L"[ Pre-Signed URL ]"));
    script.urls = {L"https://h/a.las", std::nullopt};
    Choose("32771");
    EXPECT_EQ(Model().rowCount(), 2) << "cancelled";
}

TEST_F(CloudPage, TheFirstOfANameInTheOrderOfTheGridIsStored) {
    dialog->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    Enter(L"https://h/1.las");
    Enter(L"https://h/2.las");
    EXPECT_THAT(Shown("state"), ElementsAre(Text(text::kCloudNotInspected), HasSubstr(L"Cloud LAS_Layer")));
    Grid().SelectRows({1});
    EXPECT_THAT(Overview(), HasSubstr(L"Cloud LAS_Layer"));
    EXPECT_EQ(Stored().presignedUrlLayers, (Map{{L"Cloud LAS_Layer", L"https://h/1.las"}}));
    Model().sort(ColumnNamed("url"), Qt::DescendingOrder);
    EXPECT_THAT(Shown("state"), ElementsAre(Text(text::kCloudNotInspected), HasSubstr(L"Cloud LAS_Layer")));
    EXPECT_EQ(Stored().presignedUrlLayers, (Map{{L"Cloud LAS_Layer", L"https://h/2.las"}}));
    Grid().SelectRows({1});
    script.names = {std::nullopt, L"", L"Second"};
    Grid().Table()->setFocus();
    for (int i = 0; i < 3; ++i) {
        QTest::keyClick(Grid().Table(), Qt::Key_F2);
    }
    EXPECT_EQ(Stored().presignedUrlLayers,
              (Map{{L"Cloud LAS_Layer", L"https://h/2.las"}, {L"Second", L"https://h/1.las"}}));
    EXPECT_TRUE(Press("ok"));
}

TEST_F(CloudPage, ALinkThatEndsMeanwhileIsToldAndAddedAllTheSame) {
    Enter(kSigned);
    EXPECT_THAT(Shown("expires"), ElementsAre(L"2026-09-24 13:00"));
    EXPECT_EQ(page->findChild<QTimer*>("expiry")->interval(), kHourMs);
    EXPECT_THAT(Shown("state"),
                ElementsAre(FormatText(Text(text::kCloudLinkExpiresSoon), {L"2026-09-24 13:00"})));
    script.now += kHourMs;
    page->findChild<QTimer*>("expiry")->start(0);
    EXPECT_TRUE(QTest::qWaitFor([&] {
        return Shown("state").front() == FormatText(Text(text::kCloudLinkExpired), {L"2026-09-24 13:00"});
    }));
    EXPECT_FALSE(page->findChild<QTimer*>("expiry")->isActive());
    EXPECT_EQ(Stored().presignedUrlLayers, (Map{{L"Cloud LAS_Layer", kSigned}}));
    EXPECT_TRUE(Press("ok"));
    EXPECT_THAT(prompts.shown, IsEmpty());
    EXPECT_THAT(prompts.reportsShown, IsEmpty());
}

TEST_F(CloudPage, ASignatureIsNowhereToBeSeen) {
    script.inspect = [this](const std::wstring& url, const CloudCall& call) {
        call.waiting(L"waiting");
        return url == kSigned ? Remote(L"https://store.example/lidar/tile.laz")
                              : throw LDataError(L"no answer");
    };
    Enter(kSigned);
    Browse({Layer(L"B", std::wstring(kSigned) + L"2")});
    script.urls = {kSigned, std::nullopt};
    Choose("32771");
    std::wstring seen;
    const auto collect = [&] {
        for (int row = 0; row < Model().rowCount(); ++row) {
            for (int column = 0; column < Model().columnCount(); ++column) {
                for (const int role : {int(Qt::DisplayRole), int(Qt::ToolTipRole),
                                       int(Qt::AccessibleTextRole), int(GridModel::kSortRole)}) {
                    seen += ToWide(Model().index(row, column).data(role).toString()) + L"\n";
                }
            }
            Grid().SelectRows({row});
            for (const auto* view : page->findChildren<QTextEdit*>()) {
                seen += ToWide(view->toHtml());
            }
            for (const auto* view : page->findChildren<QPlainTextEdit*>()) {
                seen += ToWide(view->toPlainText());
            }
        }
        for (const auto* label : dialog->findChildren<QLabel*>()) {
            seen += ToWide(label->text() + label->toolTip());
        }
    };
    collect();
    Grid().ClearSelection();
    Click(43550);
    collect();
    Grid().SelectAll();
    for (const char* action : {"copy", "copyRows", "copyPath"}) {
        QGuiApplication::clipboard()->clear();
        Trigger(action);
        const std::wstring copied = ToWide(QGuiApplication::clipboard()->text());
        EXPECT_THAT(copied, HasSubstr(std::string_view(action) == "copyPath" ? L"store.example" : L"B"));
        seen += copied;
    }
    const std::wstring target = folder.Name(L"list.csv");
    pickers.saveFiles = {target};
    Trigger("exportList");
    ASSERT_THAT(pickers.saveAsked, SizeIs(1));
    EXPECT_EQ(pickers.saveAsked[0].path, L"cloud.csv");
    std::ifstream file(ToPath(target), std::ios::binary);
    const std::string table{std::istreambuf_iterator<char>(file), {}};
    EXPECT_THAT(table, HasSubstr("https://store.example/lidar/tile.laz"));
    seen += FromUtf8(table);
    for (const Prompt& prompt : prompts.shown) {
        seen += prompt.text;
    }
    EXPECT_THAT(seen, HasSubstr(L"store.example/lidar/tile.laz"));
    for (const wchar_t* secret : {L"c0ffee", L"KEYID"}) {
        EXPECT_THAT(seen, Not(HasSubstr(secret)));
        EXPECT_THAT(Grid().grab().isNull(), false);
    }
    EXPECT_EQ(Stored().presignedUrlLayers, (Map{{L"Cloud LAS_Layer", kSigned}}));
    EXPECT_EQ(Stored().cloudLasLayers, (Map{{L"B", std::wstring(kSigned) + L"2"}}));
}

TEST_F(CloudPage, ALookInsideShowsWhatTheFileSays) {
    script.inspect = [this](const std::wstring& url, const CloudCall&) {
        RemoteLas remote = Remote(url);
        if (url.ends_with(L"gone.las")) {
            remote.row = UnreadLasFile(url, L"h: the file is not there (404).");
            remote.status = CloudStatus::NotFound;
        } else if (url.ends_with(L"text.las")) {
            remote.row = UnreadLasFile(url, L"This is no LAS file.");
        } else if (url.ends_with(L"odd.las")) {
            throw LDataError(L"unexpected");
        }
        return remote;
    };
    EXPECT_FALSE(Enabled(43550));
    Browse({Layer(L"good", L"https://h/good.las"), Layer(L"gone", L"https://h/gone.las"),
            Layer(L"text", L"https://h/text.las"), Layer(L"odd", L"https://h/odd.las"), Layer(L"none", L"")});
    Grid().SelectRows({0});
    EXPECT_THAT(Overview(), HasSubstr(Text(text::kCloudLookHint)));
    Trigger("lookInside");
    EXPECT_EQ(Outcome(), FormatText(Text(text::kCloudLookedInto), {1, 1, L"65"}));
    EXPECT_THAT(Overview(),
                ::testing::AllOf(HasSubstr(L"5500000"),
                                 HasSubstr(FormatText(Text(text::kCloudReceivedOf), {L"65", L"0.00"}))));
    EXPECT_THAT(ToWide(Find<QTextEdit>("cloudCrs")->toPlainText()), HasSubstr(L"25832"));
    EXPECT_THAT(ToWide(Find<QPlainTextEdit>("cloudRecords")->toPlainText()), HasSubstr(L"LASF_Projection"));
    Grid().ClearSelection();
    Click(43550);
    EXPECT_EQ(Outcome(), FormatText(Text(text::kCloudLookedInto), {3, 3, L"131"}))
        << "the others, but those without a URL";
    EXPECT_THAT(Shown("state"), ElementsAre(Text(text::kInspectionOk), L"h: the file is not there (404).",
                                            L"This is no LAS file.", L"unexpected", Text(text::kCloudNoUrl)));
    Grid().SelectRows({1});
    EXPECT_THAT(Overview(), HasSubstr(L"h: the file is not there (404)."));
    Grid().SelectAll();
    EXPECT_THAT(Overview(), HasSubstr(Text(text::kCloudInspectedLayers)));
    EXPECT_THAT(Stored().cloudLasLayers, SizeIs(4)) << "nothing of this keeps a layer from the project";
}

TEST_F(CloudPage, EscapeStopsALookInsideAndKeepsWhatWasFound) {
    std::atomic<int> asked = 0;
    std::vector<std::wstring> shown;
    QObject::connect(
        dialog->findChild<QProgressBar*>(QStringLiteral("progress")), &QProgressBar::valueChanged,
        dialog.get(), [&] {
            shown.push_back(ToWide(dialog->findChild<QProgressBar*>(QStringLiteral("progress"))->format()));
        });
    script.inspect = [&](const std::wstring& url, const CloudCall& call) {
        if (url.ends_with(L"0.las")) {
            return Remote(url);
        }
        call.waiting(L"h is busy. Next attempt in 4 s.");
        if (++asked == 3) {
            QMetaObject::invokeMethod(dialog.get(), [&] { QTest::keyClick(dialog.get(), Qt::Key_Escape); });
        }
        while (!call.isCancelled()) {
            std::this_thread::yield();
        }
        RemoteLas cancelled;
        cancelled.status = CloudStatus::Cancelled;
        return cancelled;
    };
    std::vector<CloudLayer> layers;
    for (int i = 0; i < 9; ++i) {
        layers.push_back(Layer(std::to_wstring(i), L"https://h/" + std::to_wstring(i) + L".las"));
    }
    Browse(layers);
    Click(43550);
    EXPECT_FALSE(Progress().IsRunning());
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(Outcome(), FormatText(Text(text::kCloudLookedInto), {1, 9, L"65"}));
    EXPECT_EQ(Shown("state")[0], Text(text::kInspectionOk));
    EXPECT_EQ(Shown("state")[1], Text(text::kCloudNotInspected));
    EXPECT_THAT(shown, Contains(HasSubstr(L"h is busy.")));
    EXPECT_EQ(Model().rowCount(), 9);
}

TEST_F(CloudPage, RemovedRowsComeBackToTheirPlaces) {
    dialog->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    Browse({Layer(L"A", L"u1"), Layer(L"B", L"u2"), Layer(L"C", L"u3"), Layer(L"D", L"u4")});
    const auto undo = [this] { QTest::keyClick(Grid().Table(), Qt::Key_Z, Qt::ControlModifier); };
    undo();
    EXPECT_EQ(Model().rowCount(), 4);
    Grid().SelectRows({0, 2});
    Click(352);
    EXPECT_THAT(Shown("name"), ElementsAre(L"B", L"D"));
    Click(355);
    EXPECT_THAT(Grid().SelectedRows(), SizeIs(2));
    Click(353);
    EXPECT_EQ(Model().rowCount(), 0);
    for (const int id : {352, 353, 355, 43550}) {
        EXPECT_FALSE(Enabled(id)) << id;
    }
    undo();
    EXPECT_THAT(Shown("name"), ElementsAre(L"B", L"D"));
    undo();
    EXPECT_THAT(Shown("name"), ElementsAre(L"A", L"B", L"C", L"D"));
    EXPECT_THAT(Grid().SelectedRows(), ElementsAre(0, 2));
    EXPECT_EQ(Stored().cloudLasLayers.at(L"C"), L"u3");
    Click(352);
    Browse({Layer(L"E", L"u5")});
    undo();
    EXPECT_THAT(Shown("name"), ElementsAre(L"B", L"D", L"E")) << "places that are others' now";
    page->Release();
    undo();
    EXPECT_EQ(Model().rowCount(), 0);
}

TEST_F(CloudPage, AFailureIsReportedUnderTheNameOfItsHandler) {
    Enter(L"https://h/a.las");
    Grid().SelectRows({0});
    script.failure = L"no more";
    const std::pair<const char*, std::wstring> handlers[] = {
        {"32773", L"OnBrowseLayersInOrvexCloud"}, {"32771", L"OnPresignedUrl"}, {"rename", L"OnRename"}};
    for (const auto& [action, name] : handlers) {
        page->findChild<QAction*>(QLatin1String(action))->trigger();
        ASSERT_FALSE(prompts.shown.empty());
        EXPECT_EQ(prompts.shown.back().text, L"An exception occurred in " + name + L"():\n\nno more");
    }
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(Model().rowCount(), 1);
}

TEST_F(CloudPage, FilesAreNotAccepted) {
    EXPECT_FALSE(page->acceptDrops());
    EXPECT_FALSE(page->Accepts(L"/data/a.las"));
    page->AddPaths({L"/data/a.las"});
    EXPECT_EQ(Model().rowCount(), 0);
}

}  // namespace
}  // namespace orvex
