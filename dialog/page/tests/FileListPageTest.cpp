// The shared file page with a tiny page of its own: notes, whose files are listed with their length.
#include <gmock/gmock.h>

#include <QAbstractButton>
#include <QAbstractItemModelTester>
#include <QApplication>
#include <QDropEvent>
#include <QLabel>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QTest>
#include <QTextEdit>
#include <QUrl>

#include "dialog/Images.h"
#include "dialog/details/DetailsHtml.h"
#include "dialog/details/DetailsPanel.h"
#include "dialog/grid/GridView.h"
#include "dialog/page/FileListPageOf.h"
#include "dialog/page/FileRowsModel.h"
#include "dialog/testing/PageFixture.h"
#include "orvexcommon/AddFilesParams.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/QtText.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

struct NoteInspection {
    std::wstring path;
    std::wstring summary;
};

struct NoteRow {
    NoteInspection inspection;
    std::size_t number = 0;  // from 1, given when rows have changed
};

constexpr GridColumn kNoteColumns[] = {{.name = "Name", .width = 200, .basic = true},
                                       {.name = "Summary", .width = 100}};

class NotesModel final : public FileRowsModel<NoteRow> {
  public:
    explicit NotesModel(QObject* parent = nullptr) : FileRowsModel(kNoteColumns, parent) {}

  protected:
    GridCell Cell(std::size_t record, int column) const override {
        const NoteInspection& note = Rows()[record].inspection;
        return column == 0 ? FileNameOf(note.path) : note.summary;
    }
};

NoteInspection ReadNote(const std::wstring& path) {
    return {path, std::to_wstring(FileSizeOf(path).value())};
}

FileAdder<NoteInspection> NoteAdder() {
    AddingDescription adding;
    adding.progressText = text::kRasterReadingProgress;
    return {adding, ReadNote, [](const std::wstring& path, const std::wstring& cause) -> NoteInspection {
                return {path, cause};
            }};
}

// As the page would be described that has the most buttons, literal texts and a folder search of its own.
FileListPageDescription DescribeNotes() {
    FileListPageDescription page;
    page.controls = {.filesCaption = 1,
                     .grid = 2,
                     .addFiles = 3,
                     .addFolder = 4,
                     .remove = 5,
                     .clear = 6,
                     .detailColumns = 7,
                     .selectAll = 8,
                     .refresh = 9,
                     .help = 10};
    page.splitterName = "noteSplitter";
    page.paneStateName = L"NoteDetails";
    page.helpTopic = HelpTopic::RasterFiles;
    page.openFiles = [] { return OpenFilesRequest{}; };
    page.tooManyFiles = {{}, L"There are too many notes."};
    page.folderQuestion = {{}, L"Notes of subfolders too?"};
    page.scanTexts.nothingFound = text::kRasterFolderEmpty;
    page.scanTexts.nothingFoundIcon = PromptIcon::Error;
    page.extensions = {L".TXT", L".OLD"};
    page.folderExtensions = {L".TXT"};
    page.detailsTabs = {{"html", text::kDetailsOverviewTab},
                        {"plain", text::kDetailsRecordsTab, DetailsTab::Kind::PlainText}};
    return page;
}

class NotesPage final : public FileListPageOf<NotesModel> {
  public:
    explicit NotesPage(const PageContext& context, FileListPageDescription description = DescribeNotes())
        : FileListPageOf(context, std::move(description), NoteAdder(), NoteAdder(), nullptr) {
        Start(EditModel(), new QWidget, false);
    }

    std::string journal;
    std::string throwIn;  // the hook that throws

  protected:
    void BeforeRowsChange() override { Tell("before"); }
    void RowsChanged() override {
        Tell("changed");
        EditModel().Change([](std::vector<NoteRow>& rows) {
            std::size_t number = 0;
            for (NoteRow& row : rows) {
                row.number = ++number;
            }
        });
    }
    DetailsContent Details(std::span<const std::size_t> records) const override {
        const NoteRow& row = Model().Rows()[records.front()];
        return {std::to_wstring(records.size()) + L" selected",
                {TextHtml(L"<" + FileNameOf(row.inspection.path)), ToQString(std::to_wstring(row.number))}};
    }
    bool Store() override {
        Tell("store");
        return true;
    }

  private:
    void Tell(const std::string& what) {
        journal += what + " ";
        if (throwIn == what) {
            throw LDataError(L"no more");
        }
    }
};

class FilePage : public testing::PageFixture<NotesPage> {
  protected:
    FilePage() : PageFixture(DescribeNotes().controls) { MakePage(DescribeNotes()); }

    void MakePage(FileListPageDescription description) {
        tester.reset();
        PageFixture::MakePage(std::move(description));
        tester = std::make_unique<QAbstractItemModelTester>(
            const_cast<NotesModel*>(&page->Model()), QAbstractItemModelTester::FailureReportingMode::Fatal);
    }
    std::wstring Note(const wchar_t* name) const { return folder.Write(name, "text"); }
    void Drop(const std::vector<std::wstring>& paths) const {
        QMimeData data;
        QList<QUrl> urls;
        for (const std::wstring& path : paths) {
            urls.append(QUrl::fromLocalFile(ToQString(path)));
        }
        data.setUrls(urls);
        QDragEnterEvent enter({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(page.get(), &enter);
        QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(page.get(), &drop);
    }
    std::vector<std::wstring> Names() const {
        std::vector<std::wstring> names;
        for (const NoteRow& row : page->Model().Rows()) {
            names.push_back(FileNameOf(row.inspection.path));
        }
        return names;
    }

    std::unique_ptr<QAbstractItemModelTester> tester;
};

TEST_F(FilePage, PickFailuresAreToldAsDescribed) {
    const struct {
        PickOutcome outcome;
        std::wstring text;  // empty: nothing is said
    } cases[] = {{PickOutcome::BufferTooSmall, L"There are too many notes."},
                 {PickOutcome::OutOfMemory, Text(text::kPickerOutOfMemory)},
                 {PickOutcome::Failed, {}},
                 {PickOutcome::Cancelled, {}}};
    for (const auto& c : cases) {
        prompts.shown.clear();
        pickers.files.push_back({c.outcome, {}});
        Click("c3");
        ASSERT_THAT(prompts.shown, SizeIs(c.text.empty() ? 0 : 1));
        for (const Prompt& prompt : prompts.shown) {
            EXPECT_EQ(prompt.text, c.text);
            EXPECT_EQ(prompt.caption, Text(text::kPickerCaption));
            EXPECT_EQ(prompt.icon, PromptIcon::Error);
        }
    }
    EXPECT_EQ(page->journal, "");
}

TEST_F(FilePage, ThePickerIsAskedAnewEachTime) {
    FileListPageDescription description = DescribeNotes();
    description.openFiles = [this] { return OpenFilesRequest{{}, params.initialFolder, {}}; };
    MakePage(std::move(description));
    params.initialFolder = L"one";
    Click("c3");
    params.initialFolder = L"two";
    Click("c3");
    ASSERT_THAT(pickers.asked, SizeIs(2));
    EXPECT_EQ(pickers.asked[0].initialFolder, L"one");
    EXPECT_EQ(pickers.asked[1].initialFolder, L"two");
}

TEST_F(FilePage, AFolderIsSearchedForFewerKindsThanCanBeNamed) {
    const std::wstring old = Note(L"in/a.old");
    Note(L"in/deep/b.txt");
    EXPECT_TRUE(page->Accepts(old));
    EXPECT_TRUE(page->Accepts(folder.Name(L"in")));
    EXPECT_FALSE(page->Accepts(L"c.las"));
    pickers.folders = {folder.Name(L"in")};
    Click("c4");
    EXPECT_THAT(Names(), ElementsAre(L"b.txt"));
    ASSERT_THAT(prompts.shown, SizeIs(1));
    EXPECT_EQ(prompts.shown[0].text, L"Notes of subfolders too?");
    page->Release();
    Drop({old, folder.Name(L"in")});
    EXPECT_THAT(Names(), ElementsAre(L"a.old", L"b.txt"));
    Drop({Note(L"c.las"), Note(L"d.txt")});
    EXPECT_THAT(Names(), ElementsAre(L"a.old", L"b.txt", L"d.txt"));
    EXPECT_EQ(prompts.shown.back().text, FormatText(Text(text::kOthersLeftOut), {1}));
}

TEST_F(FilePage, AFolderWithNothingToAddIsToldAsDescribed) {
    Note(L"in/a.old");
    Drop({folder.Name(L"in")});
    ASSERT_THAT(prompts.shown, SizeIs(1));
    EXPECT_EQ(prompts.shown[0].text, Text(text::kRasterFolderEmpty));
    EXPECT_EQ(prompts.shown[0].caption, Text(text::kAddFolderCaption));
    EXPECT_EQ(prompts.shown[0].icon, PromptIcon::Error);
}

TEST_F(FilePage, AllRowsAreSelectedAtOnceAndTheDetailsFollow) {
    EXPECT_FALSE(Find("c8")->isEnabled());
    EXPECT_EQ(ToWide(Find<QTextEdit>("html")->toPlainText()), Text(text::kDetailsNoSelection));
    page->AddPaths({Note(L"a.txt"), Note(L"b.txt"), Note(L"c.txt")});
    EXPECT_THAT(Grid().SelectedRows(), ElementsAre(0)) << "the first row is selected when it comes";
    EXPECT_EQ(Find<QTextEdit>("html")->toPlainText(), QStringLiteral("<a.txt"));
    Click("c8");
    EXPECT_THAT(Grid().SelectedRows(), ElementsAre(0, 1, 2));
    EXPECT_EQ(ToWide(Find<QLabel>("detailsTitle")->text()), Text(text::kDetailsTitle) + L": 3 selected");
    Grid().SelectRows({2});
    EXPECT_EQ(Find<QPlainTextEdit>("plain")->toPlainText(), QStringLiteral("3"));
    Grid().SelectRows({0, 1});
    Click("c5");
    EXPECT_THAT(Names(), ElementsAre(L"c.txt"));
    Grid().SelectRows({0});
    EXPECT_EQ(Find<QPlainTextEdit>("plain")->toPlainText(), QStringLiteral("1"));
    Click("c6");
    EXPECT_THAT(Names(), IsEmpty());
    EXPECT_EQ(Find<QPlainTextEdit>("plain")->toPlainText(), QString());
    EXPECT_FALSE(Find("c6")->isEnabled());
}

TEST_F(FilePage, ThePageHearsOfEveryChangeBeforeAndAfter) {
    const std::wstring path = Note(L"a.txt");
    const auto heard = [this](const std::function<void()>& change) {
        page->journal.clear();
        change();
        return page->journal;
    };
    EXPECT_EQ(heard([&] { page->AddPaths({path}); }), "before changed ");
    folder.Write(L"a.txt", "a longer text");
    EXPECT_EQ(heard([&] { Click("c9"); }), "before changed ");
    EXPECT_EQ(page->Model().Rows()[0].inspection.summary, L"13");
    EXPECT_EQ(heard([&] { Click("c5"); }), "before changed ");
    EXPECT_EQ(heard([&] { page->Release(); }), "before changed ");
}

TEST_F(FilePage, AFailureIsToldUnderTheNameOfItsHandler) {
    const std::wstring path = Note(L"a.txt");
    const struct {
        const char* button;
        const char* hook;
        const wchar_t* name;
    } cases[] = {{"c3", "before", L"OnAddFiles"},
                 {"c4", "changed", L"OnAddFolder"},
                 {"c9", "before", L"OnRefresh"},
                 {"c5", "before", L"OnRemove"},
                 {"c6", "before", L"OnClear"}};
    page->AddPaths({path});
    for (const auto& c : cases) {
        page->throwIn = c.hook;
        pickers.files = {{PickOutcome::Picked, {path}}};
        pickers.folders = {folder.Name({})};
        Click(c.button);
        ASSERT_FALSE(prompts.shown.empty()) << c.button;
        EXPECT_THAT(prompts.shown.back().text,
                    StartsWith(std::wstring(L"An exception occurred in ") + c.name + L"():"));
        EXPECT_THAT(Names(), ElementsAre(L"a.txt"));
    }
    page->throwIn = "store";
    EXPECT_FALSE(page->ValidateAndStore());
    EXPECT_THAT(prompts.shown.back().text, HasSubstr(L"ValidateAndStore():"));
}

TEST_F(FilePage, ButtonsThatAreNotDescribedAreNotThere) {
    FileListPageDescription description = DescribeNotes();
    description.controls.selectAll = description.controls.refresh = 0;
    MakePage(std::move(description));
    EXPECT_EQ(page->findChild<QWidget*>("c8"), nullptr);
    EXPECT_EQ(page->findChild<QWidget*>("c9"), nullptr);
    EXPECT_EQ(page->findChild<QWidget*>("c0"), nullptr);
    page->AddPaths({Note(L"a.txt")});
    EXPECT_TRUE(Find("c6")->isEnabled());
    EXPECT_THAT(prompts.shown, IsEmpty());
}

TEST_F(FilePage, TheDetailsYieldBeforeTheGrid) {
    auto* pane = Find("detailsPane");
    const int usual = pane->height();
    bool wasLow = false;
    for (int height = 680; height >= 160; height -= 20) {
        page->resize(900, height);
        const bool open = Find("detailsTabs")->isVisible();
        if (open) {
            EXPECT_GE(Grid().height(), Grid().HeightOfRows(5)) << height;
        }
        wasLow = wasLow || (open && pane->height() < usual);
        EXPECT_TRUE(open || height < 400) << height;
    }
    EXPECT_TRUE(wasLow) << "lower first, then folded";
    EXPECT_FALSE(Find("detailsTabs")->isVisible());
    page->resize(900, 700);
    EXPECT_EQ(pane->height(), usual);
}

TEST_F(FilePage, EachPageRemembersItsOwnPane) {
    Click("detailsFold");
    FileListPageDescription other = DescribeNotes();
    other.paneStateName = L"OtherDetails";
    MakePage(std::move(other));
    EXPECT_TRUE(Find("detailsTabs")->isVisible());
    MakePage(DescribeNotes());
    EXPECT_FALSE(Find("detailsTabs")->isVisible());
}

TEST_F(FilePage, TheManualOpensAtThePagesTopic) {
    page->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(page.get()));
    QTest::keyClick(page.get(), Qt::Key_F1);
    EXPECT_THAT(help.shown, ElementsAre(HelpTopic::RasterFiles));
}

}  // namespace
}  // namespace orvex
