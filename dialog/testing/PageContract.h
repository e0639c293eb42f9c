#pragma once
// What every page with files keeps to, as tests that run for each of them. A page's test program includes
// this header once, describes the page in a PageContract and instantiates FilePage with it. The numbers in a
// description are written out there, not taken from the page.
#include <gmock/gmock.h>

#include <QAction>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QProgressBar>
#include <QRadioButton>
#include <QRegularExpression>
#include <QScreen>
#include <QTabBar>
#include <QTableView>
#include <QTextEdit>
#include <QTimer>
#include <QToolButton>
#include <QWhatsThis>
#include <algorithm>
#include <atomic>
#include <fstream>
#include <functional>
#include <future>
#include <map>
#include <new>
#include <optional>
#include <variant>

#include "dialog/CTabCtrlEx.h"
#include "dialog/page/ListModel.h"
#include "dialog/page/OptionsPanel.h"
#include "dialog/testing/PageFixture.h"
#include "support/Format.h"

namespace orvex::testing {

using namespace std::string_literals;

/// A member of the record that an option is written into.
using RecordMember = std::variant<std::monostate, bool AddFilesParams::*, std::uint16_t AddFilesParams::*,
                                  std::int32_t AddFilesParams::*, std::wstring AddFilesParams::*>;
/// What is stored of an option: nothing, the bytes of a registry value, or a setting of the host.
using StoredValue = std::variant<std::monostate, std::string, SettingValue>;

/// One value of an option: as it is stored, as its control shows it and as the host gets it.
struct OptionCase {
    const wchar_t* key;  ///< of the registry value or the setting; empty: the option is not stored
    StoredValue stored;
    int control;    ///< of the check box, radio button, list or field
    QString shown;  ///< "on" or "off" of a button, else the text
    RecordMember member = {};
    std::wstring written = {};  ///< bools: "0" or "1"
};

/// The member of the record that holds the files that the host gets: by folder, by key, or as a list.
using FileMember =
    std::variant<FilesByFolder AddFilesParams::*, std::map<std::wstring, std::wstring> AddFilesParams::*,
                 std::vector<std::wstring> AddFilesParams::*>;

/// The files of the record, whatever their member.
inline FilesByFolder FilesIn(const AddFilesParams& record, const FileMember& member) {
    FilesByFolder files;
    const auto add = [&](const std::wstring& path) { files[FolderOf(path)].push_back(FileNameOf(path)); };
    if (const auto* byFolder = std::get_if<0>(&member)) {
        files = record.**byFolder;
    } else if (const auto* byKey = std::get_if<1>(&member)) {
        for (const auto& [key, path] : record.**byKey) {
            add(path);
        }
    } else {
        std::ranges::for_each(record.*std::get<2>(member), add);
    }
    return files;
}

/// Puts a file into the record as an earlier call would have.
inline void PutFile(AddFilesParams& record, const FileMember& member, const std::wstring& path) {
    if (const auto* byFolder = std::get_if<0>(&member)) {
        (record.**byFolder)[FolderOf(path)].push_back(FileNameOf(path));
    } else if (const auto* byKey = std::get_if<1>(&member)) {
        (record.**byKey)[FromPath(ToPath(path).stem())] = path;
    } else {
        (record.*std::get<2>(member)).push_back(path);
    }
}

/// What differs between pages.
struct PageContract {
    const char* name;  ///< of the tests
    std::unique_ptr<AddFilesPage> (*make)(const PageContext& context);

    // Control ids; 0: the page has no such control.
    int grid, addFiles, addFolder, remove, clear, detailColumns, selectAll, refresh, help;
    HelpTopic helpTopic;
    bool helpExplainsControls;  ///< the help button does, instead of opening the topic
    FixedText emptyText;        ///< in the grid
    const char* overview;       ///< name of the first tab of the details
    FixedText nothingSelected;  ///< in it
    const wchar_t* paneState;   ///< under which the state of the details pane is stored

    FixedText pickTitle;
    bool startsInInitialFolder;
    FixedText tooManyFiles;
    FixedText pickFailed;  ///< empty: nothing is said
    FixedText folderQuestion;
    FixedText nothingFound;
    PromptIcon nothingFoundIcon;
    StringId ignored;  ///< files of another kind were named
    StringId reading;  ///< progress while files are added

    /// Writes a good file, or one that is listed but cannot be loaded; `name` has no extension.
    std::wstring (*writeGood)(const TemporaryFolder& folder, const std::wstring& name);
    std::wstring (*writeBad)(const TemporaryFolder& folder, const std::wstring& name);
    std::wstring extension;      ///< of what these write: ".las"
    std::wstring onlyWhenNamed;  ///< an extension that folders are not searched for; empty: none
    std::wstring otherKind;      ///< an extension that the page does not take

    const char* detailColumn;    ///< a column that is shown with the detail columns only
    OptionCase detailColumnsOn;  ///< `control` and `shown` are not used
    FileMember files;
    /// The project's files that the page marks; null: none.
    std::vector<std::wstring> AddFilesParams::*existingFiles = nullptr;
    std::size_t detailsPerFile;  ///< 1 where the host gets an object for each file, else 0
    bool passesBadFiles;         ///< to the host, those of `writeBad`
    bool asksAtTen = false;      ///< whether to go on, at the tenth row
    bool sharesLayers = true;    ///< files go into common layers
    bool showsPath = false;      ///< the column of full paths, with the detail columns
    StringId folderTitle = text::kFolderTitle;
    /// What the host must have so that OK is accepted; null: nothing.
    void (*prepare)(ScriptedServices& services, const TemporaryFolder& folder) = nullptr;

    /// Each is stored when it is chosen on a fresh machine, and shown the next time; those that are not
    /// stored begin anew.
    std::vector<OptionCase> options;
    /// Shown when nothing, or something that makes no sense, is stored.
    std::vector<OptionCase> replaced;
    int thinning = 0;
    std::uint16_t AddFilesParams::*thinningMember = nullptr;
    std::vector<std::pair<const char*, std::optional<int>>> thinningTexts;  ///< nullopt: refused
};

inline void PrintTo(const PageContract& contract, std::ostream* out) {
    *out << contract.name;
}

class FilePage : public ::testing::WithParamInterface<PageContract>, public PageFixture {
  protected:
    FilePage() : PageFixture(GetParam().make) {
        if (GetParam().prepare != nullptr) {
            GetParam().prepare(*this, folder);
        }
    }

    std::wstring Good(const std::wstring& name) const { return GetParam().writeGood(folder, name); }
    std::wstring NameOf(const std::wstring& name) const { return name + GetParam().extension; }
    void Pick(std::vector<std::wstring> paths) {
        pickers.files.push_back({PickOutcome::Picked, std::move(paths)});
        Click(GetParam().addFiles);
    }
    bool Has(int id) const { return id != 0 && Enabled(id); }
    FilesByFolder Files() const { return FilesIn(params, GetParam().files); }
    int SummaryColumn() const {
        const int summary = ColumnNamed("summary");
        return summary < std::ssize(Model().Columns()) ? summary : ColumnNamed("state");
    }
    bool ShowsLayers() const { return ColumnNamed("layer") < std::ssize(Model().Columns()); }

    /// Text of a control, or "on" and "off".
    QString ShownBy(int id) const {
        auto* widget = Find(id);
        if (auto* button = qobject_cast<QAbstractButton*>(widget)) {
            return button->isChecked() ? "on" : "off";
        }
        auto* list = qobject_cast<QComboBox*>(widget);
        return list != nullptr ? list->currentText() : widget->property("text").toString();
    }
    void Choose(int id, const QString& value) const {
        auto* widget = Find(id);
        if (auto* button = qobject_cast<QAbstractButton*>(widget)) {
            button->setChecked(value == "on");
        } else if (auto* list = qobject_cast<QComboBox*>(widget)) {
            list->setCurrentText(value);
        } else {
            qobject_cast<QLineEdit*>(widget)->setText(value);
        }
    }

    static constexpr const wchar_t* kSection = L"AddFilesDlg";
    void Store(const OptionCase& option) {
        if (const auto* bytes = std::get_if<std::string>(&option.stored)) {
            const auto* first = reinterpret_cast<const std::byte*>(bytes->data());
            registry.Put(RegistryRoot::CurrentUser, kSection, option.key,
                         {bytes->size() == 1 ? RegistryType::Binary : RegistryType::Dword,
                          {first, first + bytes->size()}});
        } else if (const auto* setting = std::get_if<SettingValue>(&option.stored)) {
            hostObjects.settings[{kSection, option.key}] = *setting;
        }
    }
    StoredValue Stored(const OptionCase& option) const {
        if (const auto* value = registry.Find(RegistryRoot::CurrentUser, kSection, option.key)) {
            return std::string(reinterpret_cast<const char*>(value->data.data()), value->data.size());
        }
        const auto setting = hostObjects.settings.find({kSection, option.key});
        return setting == hostObjects.settings.end() ? StoredValue() : StoredValue(setting->second);
    }
    void FreshMachine() {
        registry = FakeRegistry();
        hostObjects.settings.clear();
        Open();
    }
    std::wstring Written(const RecordMember& member) const {
        return std::visit(
            [this]<typename Member>(Member pointer) -> std::wstring {
                if constexpr (std::is_same_v<Member, std::monostate>) {
                    return {};
                } else if constexpr (std::is_same_v<Member, std::wstring AddFilesParams::*>) {
                    return params.*pointer;
                } else {
                    return std::to_wstring(static_cast<int>(params.*pointer));
                }
            },
            member);
    }
    static std::string Trace(const OptionCase& option) {
        return ToUtf8(option.key) + " " + std::to_string(option.control) + " " + option.shown.toStdString();
    }
};

TEST_P(FilePage, EveryControlHasItsTextAndNoneIsCutOff) {
    EXPECT_EQ(ToWide(Grid().ShownMessage()), GetParam().emptyText.Get());
    EXPECT_EQ(ToWide(Find<QTextEdit>(GetParam().overview)->toPlainText()), GetParam().nothingSelected.Get());
    ExpectTextsOfControls();
}

TEST_P(FilePage, EveryTextHasALetterOfItsOwn) {
    ExpectLettersOfTheirOwn();
}

TEST_P(FilePage, EverythingIsWithinReachOnAnyScreen) {
    std::vector<int> controls;
    for (const OptionCase& option : GetParam().options) {
        controls.push_back(option.control);
    }
    ExpectEverythingWithinReach(controls);
}

TEST_P(FilePage, RowsSelectionAndWorkDecideWhatCanBePressed) {
    const PageContract& ids = GetParam();
    const auto expect = [&](bool idle, bool withRows, bool withSelection) {
        for (const int id : {ids.addFiles, ids.addFolder, ids.detailColumns}) {
            EXPECT_EQ(Enabled(id), idle) << id;
        }
        for (const int id : {ids.clear, ids.refresh, ids.selectAll}) {
            EXPECT_EQ(Has(id), withRows && id != 0) << id;
        }
        EXPECT_EQ(Enabled(ids.remove), withSelection);
        EXPECT_TRUE(Enabled(ids.help));
    };
    EXPECT_EQ(page->findChild<QWidget*>("c0"), nullptr);
    expect(true, false, false);
    Pick({Good(L"a"), Good(L"b")});
    EXPECT_EQ(Grid().ShownMessage(), QString()) << "the message of an empty grid has gone";
    expect(true, true, true);
    Grid().ClearSelection();
    expect(true, true, false);
    Grid().SelectRows({1});
    {
        const DialogProgress::Run run(Progress());
        expect(false, false, false);
        for (const OptionCase& option : ids.options) {
            EXPECT_FALSE(Enabled(option.control)) << option.control;
        }
        page->AddPaths({Good(L"c")});
        EXPECT_EQ(Model().rowCount(), 2) << "nothing is added meanwhile";
    }
    expect(true, true, true);
}

TEST_P(FilePage, ThePickerIsAskedAndItsFailuresAreReported) {
    given.initialFolder = L"/data";
    Open();
    Click(GetParam().addFiles);
    ASSERT_THAT(pickers.asked, ::testing::SizeIs(1));
    const OpenFilesRequest& asked = pickers.asked[0];
    EXPECT_EQ(asked.title, GetParam().pickTitle.Get().substr(0, 255));
    EXPECT_EQ(asked.initialFolder, GetParam().startsInInitialFolder ? L"/data" : L"");
    EXPECT_THAT(ToUpper(asked.filters.at(0).patterns), ::testing::HasSubstr(ToUpper(GetParam().extension)));
    const std::pair<PickOutcome, std::wstring> outcomes[] = {
        {PickOutcome::Cancelled, {}},
        {PickOutcome::BufferTooSmall, GetParam().tooManyFiles.Get()},
        {PickOutcome::OutOfMemory, Text(text::kPickerOutOfMemory)},
        {PickOutcome::Failed, GetParam().pickFailed.Get()}};
    for (const auto& [outcome, text] : outcomes) {
        prompts.shown.clear();
        pickers.files.push_back({outcome, {}});
        Click(GetParam().addFiles);
        ASSERT_THAT(prompts.shown, ::testing::SizeIs(text.empty() ? 0 : 1));
        for (const Prompt& prompt : prompts.shown) {
            EXPECT_EQ(prompt.text, text);
            EXPECT_EQ(prompt.icon, PromptIcon::Error);
        }
    }
    EXPECT_EQ(Model().rowCount(), 0);
}

TEST_P(FilePage, AFolderIsSearchedAsTheAnswerSays) {
    Good(L"in/a");
    Good(L"in/deep/b");
    const std::wstring named = folder.Write(L"in/c" + GetParam().onlyWhenNamed, "x");
    const std::pair<PromptAnswer, std::vector<std::wstring>> answers[] = {
        {PromptAnswer::Cancel, {}},
        {PromptAnswer::No, {NameOf(L"a")}},
        {PromptAnswer::Yes, {NameOf(L"a"), NameOf(L"b")}}};
    for (const auto& [answer, names] : answers) {
        pickers.folders = {folder.Name(L"in")};
        prompts.answers = {answer};
        Click(GetParam().addFolder);
        EXPECT_THAT(Names(), ::testing::UnorderedElementsAreArray(names));
        EXPECT_EQ(pickers.folderTitles.back(), Text(GetParam().folderTitle));
        EXPECT_EQ(prompts.shown.back().text, GetParam().folderQuestion.Get());
        EXPECT_EQ(prompts.shown.back().caption, Text(text::kAddFolderCaption));
        EXPECT_EQ(prompts.shown.back().buttons, PromptButtons::YesNoCancel);
        page->Release();
    }
    EXPECT_THAT(prompts.shown, ::testing::SizeIs(3));
    Click(GetParam().addFolder);
    EXPECT_THAT(prompts.shown, ::testing::SizeIs(3)) << "no folder was chosen";
    if (!GetParam().onlyWhenNamed.empty()) {
        page->AddPaths({named});
        EXPECT_THAT(Names(), ::testing::SizeIs(1));
    }

    folder.Write(L"none/readme" + GetParam().otherKind, "text");
    page->AddPaths({folder.Name(L"none")});
    EXPECT_EQ(prompts.shown.back().text, GetParam().nothingFound.Get());
    EXPECT_EQ(prompts.shown.back().caption, Text(text::kAddFolderCaption));
    EXPECT_EQ(prompts.shown.back().icon, GetParam().nothingFoundIcon);
}

TEST_P(FilePage, DroppedFilesAreAddedByTheirExtension) {
    const std::wstring other = folder.Write(L"c" + GetParam().otherKind, "text");
    EXPECT_TRUE(page->Accepts(L"/nowhere/A" + ToUpper(GetParam().extension)));
    EXPECT_TRUE(page->Accepts(folder.Name({})));
    EXPECT_FALSE(page->Accepts(other));
    Good(L"in/b");
    const std::wstring a = Good(L"a");
    DropOn(*page, {a, other, FolderOf(a) + L"/A" + ToUpper(GetParam().extension), folder.Name(L"in")},
           [this] { EXPECT_EQ(Model().rowCount(), 0); });
    EXPECT_THAT(Names(), ::testing::ElementsAre(NameOf(L"a"), NameOf(L"b")));
    ASSERT_THAT(prompts.shown, ::testing::SizeIs(1));
    EXPECT_EQ(prompts.shown[0].text, FormatText(Text(GetParam().ignored), {1}));
    Drop({a});
    EXPECT_EQ(Model().rowCount(), 2) << "a file is listed once";
    EXPECT_EQ(Outcome(), FormatText(Text(text::kFilesFound), {1}) +
                             FormatText(Text(text::kOfThemAdded), {0}) +
                             FormatText(Text(text::kOfThemListed), {1}));
}

TEST_P(FilePage, FilesForOtherTabsAreOfferedOnce) {
    const std::wstring other = ToUpper(GetParam().otherKind);
    lastPage.takes = other;
    Open();
    Good(L"in/a");
    const std::wstring near = folder.Write(L"in/b" + other, "x");
    folder.Write(L"in/deep/c" + other, "x");
    folder.Write(L"in/d.txt", "x");
    prompts.answers = {PromptAnswer::No};
    page->AddPaths({folder.Name(L"in")});
    EXPECT_THAT(Names(), ::testing::ElementsAre(NameOf(L"a")));
    ASSERT_THAT(prompts.shown, ::testing::SizeIs(1));
    EXPECT_THAT(prompts.shown[0].text, ::testing::HasSubstr(L": 2\n"));
    EXPECT_EQ(prompts.shown[0].yesText, Text(text::kOtherFilesAdd));
    EXPECT_THAT(lastPage.added, ::testing::IsEmpty());
    Drop({folder.Name(L"in"), near});
    EXPECT_THAT(lastPage.added, ::testing::UnorderedElementsAre(L"b" + other, L"c" + other));
    EXPECT_EQ(dialog->Tabs().CurrentPage(), page);
    EXPECT_THAT(Outcome(), ::testing::StartsWith(FormatText(Text(text::kFilesFound), {1}))) << "of this page";
    folder.Write(L"alone/e" + other, "x");
    page->AddPaths({folder.Name(L"alone")});
    EXPECT_THAT(lastPage.added, ::testing::SizeIs(3));
    EXPECT_THAT(prompts.shown, ::testing::SizeIs(3)) << "something was found, for whomever";
}

TEST_P(FilePage, PickersStartWhereTheLastOneEnded) {
    const std::wstring a = Good(L"one/a");
    Pick({a});
    Click(GetParam().addFiles);
    EXPECT_EQ(pickers.asked.back().initialFolder, FolderOf(a));
    pickers.folders = {folder.Name(L"two")};
    prompts.answers = {PromptAnswer::Cancel};
    Click(GetParam().addFolder);
    EXPECT_EQ(pickers.folderStarts.back(), GetParam().startsInInitialFolder ? L"" : FolderOf(a));
    for (const wchar_t* given : {L"", L"/data"}) {
        this->given.initialFolder = given;
        Open();
        Click(GetParam().addFiles);
        const bool isGiven = GetParam().startsInInitialFolder && *given != 0;
        EXPECT_EQ(pickers.asked.back().initialFolder, isGiven ? given : folder.Name(L"two"));
    }
}

TEST_P(FilePage, EveryChangeOfTheListIsUndoneAndRedone) {
    dialog->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    const auto press = [this](Qt::KeyboardModifiers shift, Qt::Key key) {
        QTest::keyClick(Grid().Table(), key, Qt::ControlModifier | shift);
    };
    Pick({Good(L"a"), Good(L"b"), Good(L"c"), Good(L"d")});
    Model().sort(ColumnNamed("fileName"), Qt::DescendingOrder);
    Grid().SelectRows({1, 2});
    Click(GetParam().remove);
    Model().sort(-1);
    page->AddPaths({Good(L"e")});
    Click(GetParam().clear);
    const std::wstring undone = Text(text::kUndone);
    const std::wstring redone = Text(text::kRedone);
    const std::wstring oneAdded = Text(text::kOneFileAdded);
    const std::wstring added = Text(text::kSeveralFilesAdded);
    const std::wstring removed = Text(text::kSeveralFilesRemoved);
    const struct {
        Qt::KeyboardModifiers shift;
        Qt::Key key;
        std::vector<std::wstring> listed;
        std::wstring outcome;
        std::wstring change;
        int files;
    } steps[] = {
        {{}, Qt::Key_Z, {L"a", L"d", L"e"}, undone, removed, 3},
        {{}, Qt::Key_Z, {L"a", L"d"}, undone, oneAdded, 1},
        {{}, Qt::Key_Z, {L"a", L"b", L"c", L"d"}, undone, removed, 2},
        {{}, Qt::Key_Z, {}, undone, added, 4},
        {{}, Qt::Key_Z, {}, undone, added, 4},
        {{}, Qt::Key_Y, {L"a", L"b", L"c", L"d"}, redone, added, 4},
        {Qt::ShiftModifier, Qt::Key_Z, {L"a", L"d"}, redone, removed, 2},
        {{}, Qt::Key_Y, {L"a", L"d", L"e"}, redone, oneAdded, 1},
        {{}, Qt::Key_Z, {L"a", L"d"}, undone, oneAdded, 1},
    };
    for (const auto& step : steps) {
        press(step.shift, step.key);
        std::vector<std::wstring> names;
        std::ranges::transform(step.listed, std::back_inserter(names),
                               [this](const std::wstring& name) { return NameOf(name); });
        const std::wstring outcome = FormatText(step.outcome, {FormatText(step.change, {step.files})});
        EXPECT_EQ(Names(), names) << ToUtf8(outcome);
        EXPECT_EQ(Outcome(), outcome);
    }
    if (ShowsLayers()) {
        EXPECT_THAT(Shown("layer"), ::testing::Each(::testing::Not(L""))) << "what came back has its layer";
    }
    Pick({Good(L"f")});
    press({}, Qt::Key_Y);
    EXPECT_THAT(Names(), ::testing::SizeIs(3)) << "a new change ends what could be redone";
    page->Release();
    press({}, Qt::Key_Z);
    EXPECT_THAT(Names(), ::testing::IsEmpty());
}

TEST_P(FilePage, AChangeThatCannotBeRecordedIsTold) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "QAction leaks its own guard when what it calls throws";
#endif
    const QList<QAction*> actions = page->actions();
    const auto undo = std::ranges::find(actions, ToQString(Text(text::kUndo)), &QAction::text);
    ASSERT_NE(undo, actions.end());
    const auto failing = QObject::connect(*undo, &QAction::enabledChanged, [] { throw std::bad_alloc(); });
    Pick({Good(L"a")});
    QObject::disconnect(failing);
    EXPECT_THAT(Names(), ::testing::ElementsAre(NameOf(L"a")));
    EXPECT_THAT(prompts.shown, ::testing::SizeIs(1));
}

TEST_P(FilePage, ProgressIsShownAndEscapeKeepsWhatWasAdded) {
    constexpr int kMoreThanWait = 900;  // than can be read ahead of the rows
    QString told;
    const auto listening = QObject::connect(&Model(), &GridModel::RecordsChanged, [&] {
        if (told.isEmpty()) {  // what follows may be another work
            told = dialog->findChild<QProgressBar*>(QStringLiteral("progress"))->format();
        }
    });
    const std::wstring first = Good(L"a");
    Pick({first});
    EXPECT_EQ(ToWide(told), FormatText(Text(GetParam().reading), {1, 1}));
    told.clear();
    Click(GetParam().refresh);
    EXPECT_EQ(ToWide(told), FormatText(Text(text::kRefreshProgress), {1, 1}));
    QObject::disconnect(listening);

    std::vector<std::wstring> paths;
    for (int i = 0; i < kMoreThanWait; ++i) {
        paths.push_back(folder.Name(NameOf(L"tile" + std::to_wstring(i))));
        std::filesystem::copy_file(ToPath(first), ToPath(paths.back()));
    }
    const auto stopping = QObject::connect(&Model(), &GridModel::RecordsChanged,
                                           [this] { QTest::keyClick(dialog.get(), Qt::Key_Escape); });
    std::vector<std::wstring> sorted = paths;
    Pick(std::move(paths));
    EXPECT_GT(Model().rowCount(), 1);
    EXPECT_LT(Model().rowCount(), kMoreThanWait);
    EXPECT_FALSE(ShowsLayers() && Shown("layer").back().empty()) << "what was added has its layer";
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_TRUE(Enabled(GetParam().addFiles)) << "the page is usable again";

    const auto unread = [this] { return Find("statusContinue")->isVisible(); };
    EXPECT_TRUE(unread());
    EXPECT_EQ(ToWide(Find<QLabel>("statusStopped")->text()),
              FormatText(Text(text::kListStopped), {Model().rowCount() - 1, kMoreThanWait}));
    Click(GetParam().clear);
    EXPECT_FALSE(unread()) << "cleared with the list";
    Pick(sorted);
    EXPECT_TRUE(unread());
    Grid().SelectAll();
    Click(GetParam().remove);
    page->AddPaths({sorted.back()});
    const auto failing =
        QObject::connect(&Model(), &GridModel::RecordsChanged, [] { throw std::bad_alloc(); });
    Click("statusContinue");
    QObject::disconnect(failing);
    EXPECT_TRUE(unread()) << "what a run that failed has not read";
    while (unread()) {  // each time stopped once more
        Click("statusContinue");
    }
    EXPECT_EQ(Names().front(), NameOf(L"tile899")) << "skipped when its turn came";
    EXPECT_EQ(Names().back(), NameOf(L"tile898"));
    EXPECT_THAT(prompts.shown, ::testing::SizeIs(GetParam().asksAtTen ? 3 : 1))
        << "once for each list, and the failure";
}

/// A folder on a drive of its own that answers while the test lets it; nothing else is waited for.
class DeadDrive {
  public:
    explicit DeadDrive(std::wstring folder) : folder_(std::move(folder)) {}
    ~DeadDrive() {
        Answer();
        gone_.wait();  // those that have waited for it
    }
    DeadDrive(const DeadDrive&) = delete;
    DeadDrive& operator=(const DeadDrive&) = delete;

    DriveAccess Access() {
        return {.driveOf = [](const std::wstring& folder) { return folder; },
                .patience = {},
                .reach =
                    [drive = folder_, &isSilent = isSilent_,
                     last = std::shared_ptr<void>(nullptr, [this](void*) { last_.set_value(); })](
                        const std::wstring& path) {
                        if (FolderOf(path) == drive) {
                            isSilent.wait(true);
                        }
                    }};
    }
    void Answer() {
        isSilent_ = false;
        isSilent_.notify_all();
    }
    void FallSilent() { isSilent_ = true; }

  private:
    const std::wstring folder_;
    std::atomic<bool> isSilent_ = true;  ///< outlives those that have waited
    std::promise<void> last_;
    std::future<void> gone_ = last_.get_future();
};

TEST_P(FilePage, ADriveThatDoesNotAnswerHoldsUpItsOwnRowsAndCanBeSkipped) {
    const std::wstring a = Good(L"dead/a");
    const std::wstring b = Good(L"b");
    const std::wstring c = Good(L"dead/c");
    const std::wstring waiting = FormatText(Text(text::kWaitingFor), {FolderOf(a)});
    DeadDrive drive(FolderOf(a));
    services.drives = drive.Access();
    Open();
    services.drives = {};  // the page keeps a copy
    auto& rows = dynamic_cast<ListRows&>(Model());
    const auto* errors = Find("statusErrors");
    std::vector<std::wstring> shown;
    const auto awaited = [&] {
        std::vector<std::size_t> records;
        for (std::size_t record = 0; record < rows.Count(); ++record) {
            if (rows.Traits(record).flag == LoadFlag::Awaited) {
                records.push_back(record);
            }
        }
        return records;
    };
    // `records`: those that are awaited in the list, which files that are read again are not.
    const auto whenOthersAreRead = [&](std::size_t records, const std::function<void()>& act) {
        if (shown.empty() && rows.Count() == 3 && awaited().size() == records &&
            Find("statusSkip")->isVisible() &&
            ToWide(Find<QLabel>("statusAwaited")->text()) == FormatText(Text(text::kListWaiting), {2})) {
            shown = Names();
            for (const std::size_t record : awaited()) {
                EXPECT_THAT(rows.CellText(record, SummaryColumn()), ::testing::HasSubstr(waiting));
            }
            EXPECT_FALSE(errors->isVisible()) << "nothing is wrong with them";
            act();
        }
    };
    const std::vector<std::wstring> all{NameOf(L"a"), NameOf(L"b"), NameOf(L"c")};
    const std::vector<std::wstring> bFirst{NameOf(L"b"), NameOf(L"a"), NameOf(L"c")};
    const std::function<void()> skip = [&] { Click("statusSkip"); };
    const std::function<void()> pick = [&] { Pick({a, b, c}); };
    const std::function<void()> refresh = [&] { Click(GetParam().refresh); };
    QTimer timer;
    timer.start(1);
    const auto run = [&](const std::function<void()>& start, std::size_t records,
                         const std::function<void()>& act, const std::vector<std::wstring>& names) {
        shown.clear();
        const auto tick =
            QObject::connect(&timer, &QTimer::timeout, [&] { whenOthersAreRead(records, act); });
        start();
        QObject::disconnect(tick);
        EXPECT_EQ(shown, names);
        EXPECT_FALSE(Find("statusSkip")->isVisible());
    };
    const std::wstring stopped = FormatText(Text(text::kListStopped), {1, 3});
    for (const auto& names : {all, bFirst}) {  // the second time b is listed already
        run(pick, 2, skip, names);
        EXPECT_THAT(Names(), ::testing::ElementsAre(NameOf(L"b")));
        EXPECT_TRUE(Find("statusContinue")->isVisible()) << "the others can be read later";
        EXPECT_EQ(ToWide(Find<QLabel>("statusStopped")->text()), stopped);
    }
    EXPECT_THAT(prompts.shown, ::testing::IsEmpty());
    run(
        pick, 2, [&] { drive.Answer(); }, bFirst);
    EXPECT_FALSE(Find("statusContinue")->isVisible()) << "they have been read";
    Click(GetParam().clear);
    drive.FallSilent();
    run(
        pick, 2, [&] { drive.Answer(); }, all);
    EXPECT_EQ(Names(), all);
    refresh();
    drive.FallSilent();
    run(refresh, 0, skip, all);
    EXPECT_EQ(Outcome(), stopped);
    QMetaObject::Connection failing;
    const auto fail = [&] {
        failing = QObject::connect(dialog->findChild<QProgressBar*>(QStringLiteral("progress")),
                                   &QProgressBar::valueChanged, [] { throw std::bad_alloc(); });
        drive.Answer();
    };
    run(refresh, 0, fail, all);
    QObject::disconnect(failing);
    EXPECT_THAT(prompts.shown, ::testing::SizeIs(1));
    EXPECT_EQ(Names(), all);
    EXPECT_THAT(awaited(), ::testing::IsEmpty());
    for (std::size_t record = 0; record < rows.Count(); ++record) {
        EXPECT_FALSE(rows.Traits(record).hasErrors) << record;
    }
    Close();
}

TEST_P(FilePage, FilesThatTheProjectHasAreMarkedFromTheStart) {
    const std::wstring a = Good(L"a");
    const std::wstring b = Good(L"b");
    const std::wstring bad = GetParam().writeBad(folder, L"bad");
    const std::vector<std::wstring> existing{ToUpper(a), bad, folder.Name(L"gone")};
    given.existingLasFiles = given.existingRasterFiles = {L"/elsewhere"};
    if (GetParam().existingFiles != nullptr) {
        given.*GetParam().existingFiles = existing;
    }
    Open();
    const auto marked = [this] {
        auto& rows = dynamic_cast<ListRows&>(Model());
        std::vector<std::wstring> names;
        for (std::size_t record = 0; record < rows.Count(); ++record) {
            const RowTraits traits = rows.Traits(record);
            if (traits.inProject) {
                names.push_back(FileNameOf(traits.path));
            }
        }
        return names;
    };
    std::vector<std::wstring> whenListed;
    const auto listening = QObject::connect(&Model(), &GridModel::RecordsChanged,
                                            [&] { whenListed = whenListed.empty() ? marked() : whenListed; });
    Pick({a, b, bad});
    QObject::disconnect(listening);
    std::vector<std::wstring> expected;
    if (GetParam().existingFiles != nullptr) {
        expected = {FileNameOf(a), FileNameOf(bad)};
        EXPECT_FALSE(whenListed.empty()) << "not only when all are read";
    }
    EXPECT_EQ(marked(), expected);
    Click(GetParam().refresh);
    EXPECT_EQ(marked(), expected);
    EXPECT_EQ(Model().rowCount(), 3) << "another layer leaves the mark";
}

TEST_P(FilePage, RefreshReadsTheFilesAgain) {
    Pick({Good(L"a"), Good(L"b")});
    GetParam().writeBad(folder, L"a");
    Click(GetParam().refresh);
    EXPECT_THAT(Names(), ::testing::ElementsAre(NameOf(L"a"), NameOf(L"b")));
    ASSERT_TRUE(Press("ok"));
    EXPECT_EQ(Files().begin()->second.size(), GetParam().passesBadFiles ? 2U : 1U);
}

TEST_P(FilePage, RowsAreSelectedRemovedAndClearedAndTheDetailsFollow) {
    auto* overview = Find<QTextEdit>(GetParam().overview);
    Pick({Good(L"a"), Good(L"b"), Good(L"c")});
    EXPECT_THAT(Grid().SelectedRows(), ::testing::ElementsAre(0))
        << "the first row is selected when it comes";
    const QString one = overview->toPlainText();
    EXPECT_THAT(ToWide(Find<QLabel>("detailsTitle")->text()), ::testing::HasSubstr(NameOf(L"a")));
    if (GetParam().selectAll != 0) {
        Click(GetParam().selectAll);
        EXPECT_THAT(Grid().SelectedRows(), ::testing::ElementsAre(0, 1, 2));
    }
    Grid().SelectRows({0, 2});
    EXPECT_NE(overview->toPlainText(), one);
    Click(GetParam().remove);
    EXPECT_THAT(Names(), ::testing::ElementsAre(NameOf(L"b")));
    EXPECT_THAT(Grid().SelectedRows(), ::testing::ElementsAre(0)) << "the row that is left";
    EXPECT_THAT(ToWide(Find<QLabel>("detailsTitle")->text()), ::testing::HasSubstr(NameOf(L"b")));
    dialog->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    Grid().Table()->setFocus();
    Grid().SelectRows({0});
    QTest::keyClick(Grid().Table(), Qt::Key_Delete);
    EXPECT_EQ(Model().rowCount(), 0);
    EXPECT_EQ(ToWide(overview->toPlainText()), GetParam().nothingSelected.Get());
    Pick({Good(L"a"), Good(L"b")});
    Click(GetParam().clear);
    EXPECT_EQ(Model().rowCount(), 0);
    page->Release();
    page->Release();
}

TEST_P(FilePage, AFilterHidesRowsThatOkAddsAllTheSame) {
    const std::wstring a = Good(L"a");
    Pick({a, GetParam().writeBad(folder, L"tile1"), Good(L"b")});
    dialog->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    auto* words = Find<QLineEdit>("filterWords");
    const auto* problem = Find<QLabel>("filterProblem");
    const auto type = [&](const QString& text) {
        QTest::keyClick(dialog.get(), Qt::Key_F, Qt::ControlModifier);
        EXPECT_TRUE(words->hasFocus());
        QTest::keyClicks(words, text);
    };
    const auto isInTable = [this] { return Grid().Table()->hasFocus() && dialog->isVisible(); };
    type("TILE");
    EXPECT_THAT(Names(), ::testing::ElementsAre(NameOf(L"tile1")));
    Pick({Good(L"tile2"), Good(L"c")});
    EXPECT_THAT(Names(), ::testing::ElementsAre(NameOf(L"tile1"), NameOf(L"tile2")));
    Click(GetParam().refresh);
    EXPECT_THAT(Names(), ::testing::SizeIs(2));
    type("nowhere > 3");
    EXPECT_THAT(Names(), ::testing::SizeIs(5)) << "what is not understood hides nothing";
    EXPECT_FALSE(problem->text().isEmpty());
    type("size < 0");
    EXPECT_TRUE(problem->text().isEmpty());
    EXPECT_EQ(ToWide(Grid().ShownMessage()), Text(text::kFilterNothing));
    QTest::keyClick(words, Qt::Key_Escape);
    EXPECT_TRUE(isInTable());
    EXPECT_THAT(Names(), ::testing::SizeIs(5));
    for (const auto key : {Qt::Key_Return, Qt::Key_Down}) {
        type("tile2");
        QTest::keyClick(words, key);
        EXPECT_TRUE(isInTable());
        EXPECT_THAT(Grid().SelectedRows(), ::testing::ElementsAre(0));
    }
    ASSERT_TRUE(Press("ok"));
    EXPECT_THAT(Files().at(FolderOf(a)), ::testing::SizeIs(GetParam().passesBadFiles ? 5 : 4));
}

TEST_P(FilePage, TheLinesAroundTheListYieldToItWhereThereIsNoRoom) {
    Pick({Good(L"a"), GetParam().writeBad(folder, L"bad")});
    const auto* line = Find("filterLine");
    const auto* status = Find("statusErrors")->parentWidget();
    const auto isApart = [this](const QWidget* widget) {
        return !widget->isVisible() || !widget->geometry().intersects(Grid().geometry());
    };
    dialog->resize(1024, 768);
    QCoreApplication::processEvents();
    EXPECT_TRUE(line->isVisible() && status->isVisible());
    dialog->resize(800, 400);
    QCoreApplication::processEvents();
    EXPECT_FALSE(line->isVisible() || status->isVisible());
    const auto* table = Grid().Table();
    EXPECT_GE(table->viewport()->height(), 3 * table->rowHeight(0)) << "the options yield too";
    auto* words = Find<QLineEdit>("filterWords");
    words->setText("bad");
    dialog->resize(801, 401);
    QCoreApplication::processEvents();
    EXPECT_TRUE(line->isVisible()) << "while it hides rows";
    EXPECT_TRUE(isApart(line) && isApart(status));
}

TEST_P(FilePage, AListThatIsEmptiedForgetsItsFilter) {
    Pick({Good(L"a")});
    auto* words = Find<QLineEdit>("filterWords");
    words->setText("nothing of this");
    EXPECT_EQ(Model().rowCount(), 0);
    Click(GetParam().clear);
    EXPECT_EQ(ToWide(Grid().ShownMessage()), GetParam().emptyText.Get());
    EXPECT_FALSE(words->isEnabled());
    Pick({Good(L"b")});
    EXPECT_EQ(Model().rowCount(), 1);
}

TEST_P(FilePage, RowsWithSomethingToKnowAreCountedShownAndSelected) {
    const auto* errors = Find<QToolButton>("statusErrors");
    const auto choose = [this](const char* name) {
        auto* menu = Find<QToolButton>("filterShow")->menu();
        emit menu->aboutToShow();
        auto* action = menu->findChild<QAction*>(QLatin1String(name));
        action->trigger();
        return ToWide(action->text());
    };
    Pick({Good(L"a"), Good(L"sub/b")});
    EXPECT_FALSE(errors->isVisible()) << "nothing to count";
    Pick({GetParam().writeBad(folder, L"bad1"), Good(L"c"), GetParam().writeBad(folder, L"bad2")});
    EXPECT_EQ(ToWide(errors->text()), FormatText(Text(text::kListErrors), {2}));
    Find<QLineEdit>("filterWords")->setText("sub");
    Click("statusErrors");
    EXPECT_THAT(Grid().SelectedRows(), ::testing::ElementsAre(2, 4)) << "the filter yields";
    EXPECT_EQ(choose("errors"), Text(text::kFilterErrors) + L"\t2");
    EXPECT_THAT(Names(), ::testing::ElementsAre(NameOf(L"bad1"), NameOf(L"bad2")));
    Find<QLineEdit>("filterWords")->setText("bad2");
    EXPECT_THAT(Names(), ::testing::ElementsAre(NameOf(L"bad2"))) << "both hold";
    Find<QLineEdit>("filterWords")->clear();
    EXPECT_EQ(choose("all"), Text(text::kFilterAll) + L"\t5");
    EXPECT_THAT(Names(), ::testing::SizeIs(5));
}

TEST_P(FilePage, FilesThatTheProjectHasAreRemovedTogether) {
    if (GetParam().existingFiles == nullptr) {
        GTEST_SKIP() << "the project has no files of this page";
    }
    const std::wstring a = Good(L"a");
    const std::wstring c = Good(L"c");
    given.*GetParam().existingFiles = {a, c};
    Open();
    Pick({a, Good(L"b"), c});
    EXPECT_EQ(ToWide(Find<QToolButton>("statusInProject")->text()),
              FormatText(Text(text::kListInProject), {2}));
    Find<QLineEdit>("filterWords")->setText(ToQString(NameOf(L"b")));
    Click("statusRemoveThose");
    EXPECT_FALSE(Find("statusRemoveThose")->isVisible());
    Find<QLineEdit>("filterWords")->clear();
    EXPECT_THAT(Names(), ::testing::ElementsAre(NameOf(L"b"))) << "hidden ones too";
}

TEST_P(FilePage, TheContextMenuFindsRowsByWhatTheyHaveInCommon) {
    Pick({Good(L"a"), Good(L"sub/b"), GetParam().writeBad(folder, L"bad"), Good(L"c")});
    QMenu* menu = Grid().ContextMenu();
    const auto selectedAfter = [&](const char* action) {
        emit menu->aboutToShow();
        auto* found = menu->findChild<QAction*>(QLatin1String(action));
        found = found == nullptr ? page->findChild<QAction*>(QLatin1String(action)) : found;
        EXPECT_TRUE(found->isEnabled()) << action;
        found->trigger();
        return Grid().SelectedRows();
    };
    using ::testing::ElementsAre;
    Grid().Table()->setCurrentIndex(Model().index(0, 0));
    EXPECT_THAT(selectedAfter("sameFolder"), ElementsAre(0, 2, 3));
    EXPECT_THAT(selectedAfter("invert"), ElementsAre(1));
    Grid().Table()->setCurrentIndex(Model().index(3, 0));
    EXPECT_THAT(selectedAfter("sameCrs"), ElementsAre(0, 1, 3));
    if (GetParam().sharesLayers) {
        EXPECT_THAT(selectedAfter("sameLayer"), ElementsAre(0, 1, 3));
    }
    auto& rows = dynamic_cast<ListRows&>(Model());
    for (std::size_t record = 0; record < rows.Count(); ++record) {
        for (const Finding& finding : rows.Findings(record)) {
            Grid().Table()->setCurrentIndex(Model().index(static_cast<int>(record), 0));
            EXPECT_THAT(selectedAfter(finding.code), ::testing::Contains(static_cast<int>(record)));
        }
    }
}

TEST_P(FilePage, PathsAreCopiedAndFoldersShown) {
    const std::wstring a = Good(L"a");
    const std::wstring b = Good(L"gone/b");
    Pick({a, b});
    dialog->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    Grid().SelectAll();
    Grid().Table()->setFocus();
    QTest::keyClick(Grid().Table(), Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(ToWide(QGuiApplication::clipboard()->text()), a + L"\n" + b);
    auto* show = page->findChild<QAction*>("showInFolder");
    Grid().Table()->setCurrentIndex(Model().index(0, 0));
    show->trigger();
    EXPECT_THAT(pickers.shownInFolder, ::testing::ElementsAre(a));
    EXPECT_THAT(prompts.shown, ::testing::IsEmpty());
    pickers.canShowFolders = false;
    show->trigger();
    std::filesystem::remove_all(ToPath(FolderOf(b)));
    Grid().Table()->setCurrentIndex(Model().index(1, 0));
    show->trigger();
    ASSERT_THAT(prompts.shown, ::testing::SizeIs(2));
    EXPECT_EQ(prompts.shown[0].text, FormatText(Text(text::kListFolderNotShown), {FolderOf(a)}));
    EXPECT_EQ(prompts.shown[1].text, FormatText(Text(text::kListFolderGone), {FolderOf(b)}));
}

TEST_P(FilePage, TheRowsShownAreExportedAsATable) {
    const std::wstring a = Good(L"a, the first");
    const std::wstring bad = GetParam().writeBad(folder, L"abad");
    Pick({Good(L"hidden"), a, bad});
    Grid().Table()->model()->sort(ColumnNamed("fileName"), Qt::DescendingOrder);
    Find<QLineEdit>("filterWords")->setText("-hidden");
    auto* save = page->findChild<QAction*>("exportList");
    save->trigger();
    EXPECT_THAT(pickers.saveAsked, ::testing::SizeIs(1)) << "cancelled";
    const std::wstring target = folder.Name(L"list.csv");
    pickers.saveFiles = {target, folder.Name(L"stopped.csv"), folder.Name(L"nowhere/list.csv")};
    save->trigger();
    std::ifstream file(ToPath(target), std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const std::string first = text.substr(0, text.find("\r\n"));
    EXPECT_THAT(first, ::testing::StartsWith("path,kind,loadable,summary,findings,"));
    EXPECT_THAT(first, ::testing::AllOf(::testing::HasSubstr(",fileName,"),
                                        ::testing::Not(::testing::HasSubstr(",state,"))));
    const auto at = [&](const std::wstring& part) { return text.find(ToUtf8(part)); };
    EXPECT_LT(at(L"\n" + bad + L","), at(L"\n\"" + a + L"\",")) << "in the order of the grid, quoted";
    EXPECT_EQ(at(L"hidden"), std::string::npos);
    EXPECT_THAT(prompts.shown, ::testing::IsEmpty());
    const std::size_t entries = folder.Entries();
    const auto stopping = QObject::connect(dialog->findChild<QProgressBar*>(QStringLiteral("progress")),
                                           &QProgressBar::valueChanged, &Progress(), &DialogProgress::Stop);
    save->trigger();
    QObject::disconnect(stopping);
    EXPECT_EQ(folder.Entries(), entries) << "nothing is left behind";
    EXPECT_EQ(Outcome(), Text(text::kListExportStopped));
    save->trigger();
    ASSERT_THAT(prompts.shown, ::testing::SizeIs(1));
    EXPECT_THAT(prompts.shown[0].text, ::testing::HasSubstr(folder.Name(L"nowhere/list.csv")));
}

TEST_P(FilePage, ColumnsAreAsTheyWereLeft) {
    const int column = ColumnNamed("fileName");
    auto* table = Grid().IsColumnShown(column) && Grid().FrozenTable()->isColumnHidden(column)
                      ? Grid().Table()
                      : Grid().FrozenTable();
    table->setColumnWidth(column, 177);
    Model().sort(column, Qt::DescendingOrder);
    ASSERT_TRUE(Press("cancel"));
    Open();
    EXPECT_EQ(Grid().ColumnWidth(column), 177);
    EXPECT_EQ(Model().SortColumn(), column);
}

TEST_P(FilePage, TheDetailsPaneIsAsItWasLeft) {
    const auto isOpen = [this] { return Find("detailsTabs")->isVisible(); };
    const auto height = [this] { return Find("detailsPane")->height(); };
    const int usual = height();
    Click("detailsFold");
    EXPECT_FALSE(isOpen());
    Press("cancel");
    Open();
    EXPECT_FALSE(isOpen());
    const std::pair<const char*, int> cases[] = {
        {"", usual}, {"f -5", usual}, {"f 99999999999", usual}, {"f 20000", usual}, {"o 180", 180}};
    for (const auto& [state, expected] : cases) {
        Close();
        options.WritePlacement(GetParam().paneState, state);
        Open();
        EXPECT_TRUE(isOpen()) << state;
        EXPECT_EQ(height(), expected) << state;
    }
}

TEST_P(FilePage, ReturnInTheTableOpensTheDetailsAndCtrlReturnIsOk) {
    dialog->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    Pick({Good(L"a")});
    Click("detailsFold");
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        Grid().Table()->setFocus();
        QTest::keyClick(Grid().Table(), key);
        EXPECT_TRUE(dialog->isVisible());
        EXPECT_TRUE(Find(GetParam().overview)->hasFocus());
    }
    Grid().Table()->setFocus();
    QTest::keyClick(Grid().Table(), Qt::Key_Return, Qt::ControlModifier);
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_THAT(Files(), ::testing::SizeIs(1));
}

TEST_P(FilePage, F1AndTheHelpButtonOpenTheTopicOrExplainControls) {
    dialog->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    auto* ok = dialog->findChild<QWidget*>(QStringLiteral("ok"));
    QTest::keyClick(Find(GetParam().addFiles), Qt::Key_F1);
    QTest::keyClick(ok, Qt::Key_F1);
    EXPECT_THAT(help.shown, ::testing::ElementsAre(GetParam().helpTopic, GetParam().helpTopic));
    help.works = false;
    QTest::keyClick(ok, Qt::Key_F1);
    EXPECT_THAT(prompts.shown.back().text, ::testing::HasSubstr(help.ManualPath()));
    help.works = true;
    help.shown.clear();
    Click(GetParam().help);
    EXPECT_EQ(QWhatsThis::inWhatsThisMode(), GetParam().helpExplainsControls);
    EXPECT_EQ(help.shown == std::vector{GetParam().helpTopic}, !GetParam().helpExplainsControls);
    QWhatsThis::leaveWhatsThisMode();
    help.shown.clear();
    dialog->Tabs().Select(1);
    QTest::keyClick(ok, Qt::Key_F1);
    EXPECT_THAT(help.shown, ::testing::IsEmpty()) << "a page that is hidden keeps quiet";
}

TEST_P(FilePage, DetailColumnsAreToggledAndRemembered) {
    const int column = ColumnNamed(GetParam().detailColumn);
    const OptionCase& on = GetParam().detailColumnsOn;
    auto* toggle = Find<QAbstractButton>(GetParam().detailColumns);
    if (toggle->isChecked()) {
        Click(GetParam().detailColumns);
    }
    EXPECT_EQ(toggle->text(), ">>");
    EXPECT_FALSE(Grid().IsColumnShown(column));
    Click(GetParam().detailColumns);
    EXPECT_EQ(toggle->text(), "<<");
    EXPECT_TRUE(Grid().IsColumnShown(column));
    EXPECT_EQ(Grid().IsColumnShown(ColumnNamed("path")), GetParam().showsPath);
    Pick({Good(L"a")});
    ASSERT_TRUE(Press("ok"));
    EXPECT_EQ(Stored(on), on.stored);
    Open();
    EXPECT_TRUE(Grid().IsColumnShown(column));
}

TEST_P(FilePage, ChosenOptionsReachTheRecordAndComeBack) {
    for (const OptionCase& option : GetParam().options) {
        SCOPED_TRACE(Trace(option));
        FreshMachine();
        Pick({Good(L"a")});
        Choose(option.control, option.shown);
        ASSERT_TRUE(Press("ok"));
        EXPECT_EQ(Written(option.member), option.written);
        EXPECT_EQ(Stored(option), option.stored);
        Open();
        EXPECT_EQ(ShownBy(option.control) == option.shown, *option.key != 0) << "unless it is not stored";
    }
}

TEST_P(FilePage, AStoredValueThatMakesNoSenseIsReplaced) {
    for (const OptionCase& option : GetParam().replaced) {
        SCOPED_TRACE(Trace(option));
        FreshMachine();
        Store(option);
        Open();
        EXPECT_EQ(ShownBy(option.control), option.shown);
        Pick({Good(L"a")});
        ASSERT_TRUE(Press("ok"));
        EXPECT_EQ(Written(option.member), option.written);
    }
}

TEST_P(FilePage, ThinningIsTakenOrRefused) {
    for (const auto& [text, number] : GetParam().thinningTexts) {
        SCOPED_TRACE(text);
        Open();
        prompts.shown.clear();
        Pick({Good(L"a")});
        auto* field = Find<QLineEdit>(GetParam().thinning);
        field->setText(text);
        EXPECT_EQ(Press("ok"), number.has_value());
        if (number.has_value()) {
            EXPECT_EQ(params.*GetParam().thinningMember, *number);
            continue;
        }
        ASSERT_THAT(prompts.shown, ::testing::SizeIs(1));
        EXPECT_EQ(prompts.shown[0].text, Text(text::kThinningRefused));
        EXPECT_EQ(prompts.shown[0].caption, Text(text::kThinningCaption));
        EXPECT_THAT(Files(), ::testing::IsEmpty());
        field->setText("300");
        EXPECT_TRUE(Press("ok"));
        EXPECT_EQ(params.*GetParam().thinningMember, 256);
    }
}

TEST_P(FilePage, OddFilesAreNamedBeforeTheyAreAddedAndGoBackSelectsThem) {
    Pick({Good(L"a"), Good(L"b"), GetParam().writeBad(folder, L"bad")});
    Model().SetFilter([](std::size_t record) { return record != 1; });
    prompts.reportAnswers = {PromptAnswer::No};
    EXPECT_FALSE(Press("ok"));
    ASSERT_THAT(prompts.reportsShown, ::testing::SizeIs(1));
    const auto& sections = prompts.reportsShown[0].sections;
    const auto names = [&](StringId heading) {
        const std::wstring wanted = FormatText(Text(heading), {1});
        const auto found = std::ranges::find(sections, wanted, &ReportPrompt::Section::heading);
        return found == sections.end() ? std::vector<std::wstring>() : found->lines;
    };
    using ::testing::ElementsAre;
    using ::testing::HasSubstr;
    EXPECT_THAT(names(GetParam().passesBadFiles ? text::kReviewUndescribed : text::kReviewUnreadable),
                ElementsAre(HasSubstr(NameOf(L"bad") + L": ")));
    EXPECT_THAT(names(text::kReviewHidden), ElementsAre(HasSubstr(NameOf(L"b"))));
    EXPECT_EQ(prompts.reportsShown[0].yesText,
              FormatText(Text(text::kReviewAddSeveral), {GetParam().passesBadFiles ? 3 : 2}));
    EXPECT_THAT(Files(), ::testing::IsEmpty());
    EXPECT_FALSE(Grid().SelectedRows().empty());
    EXPECT_TRUE(Press("ok"));
    EXPECT_THAT(Files().begin()->second, ::testing::SizeIs(GetParam().passesBadFiles ? 3 : 2));
}

TEST_P(FilePage, OkGivesTheFilesByFolderInTheOrderShownAndTheirDetails) {
    const std::wstring b = Good(L"b");
    const std::wstring sub = Good(L"sub/c");
    Pick({b, sub, Good(L"a"), GetParam().writeBad(folder, L"bad"), Good(L"d")});
    EXPECT_THAT(Names(), ::testing::SizeIs(5));
    Grid().Table()->model()->sort(ColumnNamed("fileName"), Qt::DescendingOrder);
    ASSERT_TRUE(Press("ok"));
    std::vector<std::wstring> names{NameOf(L"d"), NameOf(L"bad"), NameOf(L"b"), NameOf(L"a")};
    names.erase(names.begin() + 1, names.begin() + (GetParam().passesBadFiles ? 1 : 2));
    if (std::holds_alternative<std::map<std::wstring, std::wstring> AddFilesParams::*>(GetParam().files)) {
        std::ranges::sort(names);  // by key
    }
    EXPECT_THAT(Files(), ::testing::ElementsAre(std::pair(FolderOf(b), names),
                                                std::pair(FolderOf(sub), std::vector{NameOf(L"c")})));
    EXPECT_EQ(Close(), 4 * GetParam().detailsPerFile) << "the host's, when the dialog is gone";
}

TEST_P(FilePage, WhatTheRecordHeldBeforeStaysAndIsListedOnce) {
    const std::wstring a = Good(L"a");
    PutFile(given, GetParam().files, a);
    // Of objects that the host has deleted.
    given.lasFileDetails[a] = reinterpret_cast<LasFileInfo*>(8);
    given.rasterFileDetails[a] = reinterpret_cast<RasterFileInfo*>(8);
    Open();
    Pick({Good(L"b"), a});
    ASSERT_TRUE(Press("ok"));
    EXPECT_THAT(Files(), ::testing::ElementsAre(
                             std::pair(FolderOf(a), std::vector<std::wstring>{NameOf(L"a"), NameOf(L"b")})));
    EXPECT_EQ(params.lasFileDetails.at(a), given.lasFileDetails.at(a));
    EXPECT_EQ(params.rasterFileDetails.at(a), given.rasterFileDetails.at(a));
    params.lasFileDetails.erase(a);
    params.rasterFileDetails.erase(a);
    EXPECT_EQ(Close(), GetParam().detailsPerFile);
}

TEST_P(FilePage, TheRecordIsTheHostsUntilTheDialogEndsWithOk) {
    using enum ScriptedPage::AtOk;
    PutFile(given, GetParam().files, L"/host/own");
    const FilesByFolder own = FilesIn(given, GetParam().files);
    Open();
    Pick({Good(L"a"), Good(L"b")});
    for (const auto atOk : {Refuse, Throw}) {
        lastPage.atOk = atOk;
        EXPECT_FALSE(Press("ok"));
    }
    ASSERT_TRUE(Press("cancel"));
    EXPECT_EQ(Files(), own);
    EXPECT_EQ(Close(), 0U);

    Open();
    Pick({Good(L"a"), Good(L"b")});
    EXPECT_FALSE(Press("ok"));
    Grid().SelectRows({0});
    Click(GetParam().remove);
    lastPage.atOk = Accept;
    ASSERT_TRUE(Press("ok"));
    EXPECT_EQ(Files().size(), 2U);
    EXPECT_THAT(Files().at(FolderOf(folder.Name(L"b"))), ::testing::ElementsAre(NameOf(L"b"))) << "once";
    EXPECT_EQ(Close(), GetParam().detailsPerFile);
}

TEST_P(FilePage, AFailureIsReportedUnderTheNameOfItsHandler) {
    pickers.failure = L"no more";
    const std::pair<int, std::wstring> handlers[] = {{GetParam().addFiles, L"OnAddFiles"},
                                                     {GetParam().addFolder, L"OnAddFolder"}};
    for (const auto& [id, name] : handlers) {
        Click(id);
        ASSERT_FALSE(prompts.shown.empty());
        EXPECT_EQ(prompts.shown.back().text, L"An exception occurred in " + name + L"():\n\nno more");
    }
}

}  // namespace orvex::testing
