#include "las/page/AddLASFilesPP.h"

#include <algorithm>

#include "dialog/DialogProgress.h"
#include "dialog/page/OptionForm.h"
#include "dialog/page/PromptLines.h"
#include "las/LasColumns.h"
#include "las/LasOpenMode.h"
#include "las/page/LasDetails.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/DataKinds.h"

namespace orvex {
namespace {

constexpr int kOpenGroup = 258;
constexpr int kLoadGroup = 261;
constexpr int kPyramidGroup = 264;
constexpr int kOptionsGroup = 282;
constexpr int kOriginalsGroup = 375;

// Pyramids are built only for points that are loaded; those inside the LAS files only where these may be
// written. Conversion, re-creation and the treatment of the originals mean something only for OrvexLAS.
bool LoadsPoints(const AddFilesParams& chosen) {
    return !chosen.lasLoadSetting;
}

bool MayWritePoints(const AddFilesParams& chosen) {
    return LoadsPoints(chosen) && chosen.lasOpenSetting;
}

bool BuildsOrvexLas(const AddFilesParams& chosen) {
    return MayWritePoints(chosen) && chosen.lasPyramidType == kPyramidOrvexLas;
}

// The older on/off item decides as long as no type is stored.
std::int32_t StoredPyramidType(const OptionStore& store) {
    return store.Get<char>(opt2AddLASPyramid, 1) != 0 ? kPyramidOrvexLas : kPyramidNone;
}

constexpr OptionGroup kGroups[] = {
    {.id = kOpenGroup, .caption = text::kOpenSetting},
    {.id = kLoadGroup, .caption = text::kLoadSetting, .isBelow = true},
    {.id = kOptionsGroup, .caption = text::kOptions},
    {.id = kPyramidGroup, .caption = text::kPyramidSettings, .takesRoom = true},
    {.id = kOriginalsGroup,
     .caption = text::kOriginalLasFiles,
     .within = kPyramidGroup,
     .line = 3,
     .enabled = BuildsOrvexLas},
};

constexpr OptionChoice kOpenModes[] = {{0, text::kOpenReadOnly, text::kLasReadOnlyTooltip, 259},
                                       {1, text::kOpenReadWrite, text::kLasReadWriteTooltip, 260}};
constexpr OptionChoice kLoadModes[] = {{0, text::kLoadFiles, text::kLoadFilesTooltip, 262},
                                       {1, text::kLoadFootprintsOnly, text::kLoadFootprintsTooltip, 263}};
constexpr OptionChoice kPyramidTypes[] = {
    {kPyramidOrvexLas, text::kPyramidOrvexLas, text::kPyramidOrvexLasTooltip, 268, MayWritePoints},
    {kPyramidQvr, text::kPyramidQvr, text::kPyramidQvrTooltip, 269},
    {kPyramidNone, text::kPyramidNone, text::kPyramidNoneTooltip, 270}};
constexpr OptionChoice kBackups[] = {
    {kOverwriteOriginals, text::kOriginalsOverwrite, text::kOriginalsOverwriteTooltip, 376},
    {kBackupOriginals, text::kOriginalsBackup, text::kOriginalsBackupTooltip, 377},
    {kBackupAndCompressOriginals, text::kOriginalsBackupCompress, text::kOriginalsBackupCompressTooltip,
     378}};

constexpr OptionRow kRows[] = {
    {.control = OptionControl::Radios,
     .group = kOpenGroup,
     .member = &AddFilesParams::lasOpenSetting,
     .storage = opt2AddLASOpenSetting,
     .choices = kOpenModes},
    {.control = OptionControl::Radios,
     .group = kLoadGroup,
     .member = &AddFilesParams::lasLoadSetting,
     .storage = opt2AddLASLoadSetting,
     .choices = kLoadModes},
    {.control = OptionControl::CheckBox,
     .id = 280,
     .group = kOptionsGroup,
     .line = 1,
     .caption = text::kAppendToCompatibleLayers,
     .tooltip = text::kLasAppendTooltip,
     .member = &AddFilesParams::lasAppend,
     .storage = opt2AddLASAppend,
     .fallback = {1},
     .changesLayers = true},
    {.control = OptionControl::CheckBox,
     .id = 281,
     .group = kOptionsGroup,
     .line = 2,
     .caption = text::kIgnoreIncompatibleCrs,
     .tooltip = text::kIgnoreIncompatibleCrsTooltip,
     .member = &AddFilesParams::lasIgnoreIncompatibleCrs,
     .changesLayers = true},
    {.control = OptionControl::CheckBox,
     .id = 283,
     .group = kOptionsGroup,
     .line = 3,
     .caption = text::kLoadCorruptFiles,
     .tooltip = text::kLoadCorruptFilesTooltip,
     .member = &AddFilesParams::lasLoadCorruptFiles},
    // Checked on every OK, so it can always be corrected.
    {.control = OptionControl::Number,
     .id = 267,
     .group = kOptionsGroup,
     .line = 4,
     .caption = text::kThinning,
     .captionId = 266,
     .tooltip = text::kLasThinningTooltip,
     .member = &AddFilesParams::lasThinning,
     .storage = opt2AddLASThinning,
     .fallback = {kDefaultThinning},
     .minimum = kMinimumThinning,
     .maximum = kMaximumThinning,
     .digits = 10},
    {.control = OptionControl::DetailColumns,
     .member = &OptionValues::detailColumns,
     .storage = opt2AddLASDetailCols},
    {.control = OptionControl::CheckBox,
     .id = 284,
     .group = kPyramidGroup,
     .line = 1,
     .caption = text::kConvertQvr,
     .tooltip = text::kConvertQvrTooltip,
     .member = &AddFilesParams::convertExistingQvr,
     .storage = opt2ConvertExistingQVRToOrvexLAS,
     .enabled = BuildsOrvexLas},
    {.control = OptionControl::Radios,
     .group = kPyramidGroup,
     .line = 0,
     .member = &AddFilesParams::lasPyramidType,
     .storage = opt2PyramidType,
     .fallback = {kPyramidOrvexLas},
     .storedFallback = StoredPyramidType,
     .choices = kPyramidTypes,
     .choicesBeside = true,
     .enabled = LoadsPoints},
    {.control = OptionControl::Radios,
     .group = kOriginalsGroup,
     .member = &AddFilesParams::orvexLasBackupOption,
     .storage = opt2OrvexLASBackupOption,
     .fallback = {kBackupOriginals},
     .choices = kBackups,
     .choicesBeside = true,
     .enabled = BuildsOrvexLas},
    {.control = OptionControl::CheckBox,
     .id = 417,
     .group = kPyramidGroup,
     .line = 2,
     .caption = text::kRecreateOrvexLas,
     .tooltip = text::kRecreateOrvexLasTooltip,
     .member = &AddFilesParams::reCreateOrvexLas,
     .storage = opt2ReCreateOrvexLASOption,
     .enabled = BuildsOrvexLas},
};

FileListPageDescription Describe() {
    using enum DetailsTab::Kind;
    FileListPageDescription page;
    page.listCaptionId = 247;
    page.listCaption = text::kLasSelectedFiles;
    page.gridId = 251;
    page.emptyText = text::kLasEmptyGrid;
    page.addFiles = {253, text::kAddFiles, text::kLasAddTooltip};
    page.addFolder = {252, text::kAddFolder, text::kLasAddFolderTooltip};
    page.remove.id = 254;
    page.clear.id = 255;
    page.detailColumns.id = 248;
    page.refresh.id = 249;
    page.help.id = 250;
    page.helpTopic = HelpTopic::LasFiles;
    page.helpExplainsControls = true;
    page.splitterName = "lasSplitter";
    page.paneStateName = L"AddLASFilesDetails";
    page.columnStateName = L"AddLASFilesColumns";
    page.kind = DataKindName(DataKind::Las);
    page.folderName = L"AddLASFilesFolder";
    page.detailsTabs = {{"detailsOverview", text::kDetailsOverviewTab, Html},
                        {"detailsCrs", text::kDetailsCrsTab, Html},
                        {"detailsRecords", text::kDetailsRecordsTab, PlainText}};
    page.nothingSelected = text::kLasDetailsNoSelection;
    page.options = {kGroups, kRows};
    page.filters = PickerFilters(DataKind::Las);
    page.pickFailed = text::kPickerOutOfMemory;
    page.folderQuestion = text::kLasSubfoldersQuestion;
    page.scanTexts.ignored = text::kLasOthersLeftOut;
    page.scanTexts.nothingFound = text::kLasFolderEmpty;
    page.extensions = NamedExtensions(DataKind::Las);
    page.passesUnreadable = false;
    page.adding = {.progressText = text::kLasReadingProgress,
                   .confirmText = text::kLasManyFilesQuestion,
                   .confirmCaption = text::kLasManyFilesCaption,
                   .buddy = OrvexUtilities::GetLAZBuddyPath};
    page.existingFiles = &AddFilesParams::existingLasFiles;
    return page;
}

/// Everything about the page but its columns.
const FileListPageDescription& LasPage() {
    static const FileListPageDescription page = Describe();
    return page;
}

/// The failure's cause behind the path, unless the cause names the file itself.
std::wstring FailureText(const LasFileFailure& failure) {
    const bool isNamed = failure.cause.find(failure.path) != std::wstring::npos;
    return isNamed ? failure.cause : failure.path + L": " + failure.cause;
}

}  // namespace

AddLASFilesPP::AddLASFilesPP(const PageContext& context, QWidget* parent)
    : TypedFileListPage(context, LasPage(), LasColumns(), {InspectLasFile, UnreadLasFile}, parent) {
    Start(EditModel());
}

void AddLASFilesPP::RowsChanged() {
    const LayerRules rules{Chosen().lasAppend, Chosen().lasIgnoreIncompatibleCrs};
    EditModel().Change([&](std::vector<LasRow>& rows) {
        std::vector<CrsPtr> files;
        files.reserve(rows.size());
        for (const LasRow& row : rows) {
            files.push_back(row.loadable ? row.crs : nullptr);
        }
        TakePlaces(rows, PlaceInLayers(files, Params().existingLasLayers, rules, L"LAS Layer_"));
    });
}

std::vector<std::function<void()>> AddLASFilesPP::LateWork() const {
    return IdentificationWork(UnidentifiedCrss(Model().Rows()), Params().existingLasLayers);
}

std::wstring AddLASFilesPP::DamagedNote() const {
    return Chosen().lasLoadCorruptFiles
               ? std::wstring()
               : FormatText(Text(text::kReviewDamagedNote), {Text(text::kLoadCorruptFiles)});
}

DetailsContent AddLASFilesPP::Details(std::span<const std::size_t> records) const {
    return LasDetailsContent(Model().Rows(), records, DetailsPane().CaptionColour());
}

bool AddLASFilesPP::Store() {
    if (!ReadNumbers()) {
        return false;
    }
    const bool opened = Reopen();
    ShowDetails();
    if (!opened || !SaveOptions()) {
        return false;
    }
    WriteOptions();
    AddFilesParams& record = Params();
    record.orvexLasOverwritePending = record.convertExistingQvr &&
                                      record.lasPyramidType == kPyramidOrvexLas &&
                                      record.orvexLasBackupOption == kOverwriteOriginals;
    WriteFiles();
    return true;
}

/// Brings the files into the open mode wanted. When one cannot be opened the user is told and all stay as
/// they are.
bool AddLASFilesPP::Reopen() {
    const DialogProgress::Run run(Progress());
    LasReopened reopened = ReopenFiles(Model().Rows(), Chosen().lasOpenSetting, Progress());
    if (!reopened.failures.empty()) {
        Services().prompts.Show(
            {Text(text::kLasOpenModeFailed) + L"\n" + PromptLines(reopened.failures, FailureText),
             Text(text::kLasOpenModeCaption), PromptIcon::Error, PromptButtons::Ok});
    }
    if (!reopened.Succeeded()) {
        return false;
    }
    EditModel().Change([&](std::vector<LasRow>& rows) {
        for (std::size_t i = 0; i < rows.size(); ++i) {
            if (reopened.files[i] != nullptr) {
                rows[i].file = std::move(reopened.files[i]);
            }
        }
    });
    return true;
}

/// The rows in the order that the grid shows them. Those without a readable file are left out.
void AddLASFilesPP::WriteFiles() const {
    AddFilesParams& record = Params();
    for (const std::size_t index : Model().RecordsInOrder()) {
        const LasRow& row = Model().Rows()[index];
        if (row.file != nullptr) {
            // The file that was chosen; the details name the one that is open.
            record.lasFiles[FolderOf(row.path)].push_back(FileNameOf(row.path));
            row.file->SetDamaged(HasErrors(row));
            record.lasFileDetails[row.path] = row.file.get();
            record.lasFileLayers[row.path] = row.place.layer;
        }
    }
}

void AddLASFilesPP::HandOver() noexcept {
    EditModel().Change([this](std::vector<LasRow>& rows) {
        for (LasRow& row : rows) {
            ReleaseIfIn(Params().lasFileDetails, row);
        }
    });
}

bool AddLASFilesPP::NeedsCompanionFiles() const {
    return std::ranges::any_of(Model().Rows(), [](const LasRow& row) {
        return row.file != nullptr && row.file->GetCompanionStatus() == 0;
    });
}

}  // namespace orvex
