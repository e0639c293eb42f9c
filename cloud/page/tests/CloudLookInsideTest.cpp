// What the cloud page shows of the files behind its rows, and of their URLs.
#include <gmock/gmock.h>

#include <QAction>
#include <QClipboard>
#include <QDeadlineTimer>
#include <QGuiApplication>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QTextEdit>
#include <QTimer>
#include <fstream>
#include <thread>

#include "cloud/page/tests/CloudPageFixture.h"
#include "support/Format.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::SizeIs;

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
    const auto* bar = dialog->findChild<QProgressBar*>(QStringLiteral("progress"));
    bool isTold = false;
    const QDeadlineTimer patience(20'000);
    QTimer watch;  // Escape comes when the bar says why it takes longer
    QObject::connect(&watch, &QTimer::timeout, dialog.get(), [&] {
        isTold = ToWide(bar->format()).find(L"h is busy.") != std::wstring::npos;
        if (isTold || patience.hasExpired()) {
            watch.stop();
            QTest::keyClick(dialog.get(), Qt::Key_Escape);
        }
    });
    watch.start(0);
    script.inspect = [&](const std::wstring& url, const CloudCall& call) {
        if (url.ends_with(L"0.las")) {
            return Remote(url);
        }
        call.waiting(L"h is busy. Next attempt in 4 s.");
        while (!call.isCancelled()) {
            std::this_thread::yield();
        }
        RemoteLas cancelled;
        cancelled.status = CloudStatus::Cancelled;
        return cancelled;
    };
    std::vector<CloudLayer> layers;
    layers.reserve(9);
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
    EXPECT_TRUE(isTold);
    EXPECT_EQ(Model().rowCount(), 9);
}

}  // namespace
}  // namespace orvex
