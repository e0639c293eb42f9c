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

// Pyramids are built only into files that are loaded read-write; conversion, re-creation and the treatment of
// the originals mean something only for OrvexLAS.
bool BuildsPyramids(const AddFilesParams& chosen) {
    return chosen.lasOpenSetting && !chosen.lasLoadSetting;
}

bool BuildsOrvexLas(const AddFilesParams& chosen) {
    return BuildsPyramids(chosen) && chosen.lasPyramidType == kPyramidOrvexLas;
}

// The older on/off item decides as long as no type is stored.
std::int32_t StoredPyramidType(const OptionStore& store) {
    return store.Get<char>(opt2AddLASPyramid, 1) != 0 ? kPyramidOrvexLas : kPyramidNone;
}

constexpr OptionGroup kGroups[] = {
    {.id = kOpenGroup, .caption = 13467_lsid},
    {.id = kLoadGroup, .caption = 41000_lsid, .isBelow = true},
    {.id = kOptionsGroup, .caption = 41003_lsid},
    {.id = kPyramidGroup, .caption = 13475_lsid, .takesRoom = true},
    {.id = kOriginalsGroup,
     .caption = 41009_lsid,
     .within = kPyramidGroup,
     .line = 3,
     .enabled = BuildsOrvexLas},
};

constexpr OptionChoice kOpenModes[] = {{0, 13469_lsid, 40679_lsid, 259}, {1, 13470_lsid, 40680_lsid, 260}};
constexpr OptionChoice kLoadModes[] = {{0, 41001_lsid, 40681_lsid, 262}, {1, 41002_lsid, 40682_lsid, 263}};
constexpr OptionChoice kPyramidTypes[] = {{kPyramidOrvexLas, 41005_lsid, 3379_lsid, 268},
                                          {kPyramidQvr, 41006_lsid, 3380_lsid, 269},
                                          {kPyramidNone, 41007_lsid, 3381_lsid, 270}};
constexpr OptionChoice kBackups[] = {{kOverwriteOriginals, 41010_lsid, 40684_lsid, 376},
                                     {kBackupOriginals, 41011_lsid, 40685_lsid, 377},
                                     {kBackupAndCompressOriginals, 41012_lsid, 40686_lsid, 378}};

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
     .caption = 13658_lsid,
     .tooltip = 13487_lsid,
     .member = &AddFilesParams::lasAppend,
     .storage = opt2AddLASAppend,
     .fallback = {1},
     .changesLayers = true},
    {.control = OptionControl::CheckBox,
     .id = 281,
     .group = kOptionsGroup,
     .line = 2,
     .caption = 3256_lsid,
     .tooltip = 13659_lsid,
     .member = &AddFilesParams::lasIgnoreIncompatibleCrs,
     .changesLayers = true},
    {.control = OptionControl::CheckBox,
     .id = 283,
     .group = kOptionsGroup,
     .line = 3,
     .caption = 41004_lsid,
     .tooltip = 41016_lsid,
     .member = &AddFilesParams::lasLoadCorruptFiles},
    // Checked on every OK, so it can always be corrected.
    {.control = OptionControl::Number,
     .id = 267,
     .group = kOptionsGroup,
     .line = 4,
     .caption = 13472_lsid,
     .captionId = 266,
     .tooltip = 41017_lsid,
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
     .caption = 41008_lsid,
     .tooltip = 40683_lsid,
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
     .enabled = BuildsPyramids},
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
     .caption = 41013_lsid,
     .tooltip = 41014_lsid,
     .member = &AddFilesParams::reCreateOrvexLas,
     .storage = opt2ReCreateOrvexLASOption,
     .enabled = BuildsOrvexLas},
};

FileListPageDescription Describe() {
    using enum DetailsTab::Kind;
    FileListPageDescription page;
    page.listCaptionId = 247;
    page.listCaption = 13466_lsid;
    page.gridId = 251;
    page.emptyText = 40674_lsid;
    page.addFiles = {253, 13462_lsid, 13483_lsid};
    page.addFolder = {252, 13463_lsid, 41015_lsid};
    page.remove.id = 254;
    page.clear.id = 255;
    page.detailColumns.id = 248;
    page.refresh.id = 249;
    page.help.id = 250;
    page.helpTopic = HelpTopic::LasFiles;
    page.splitterName = "lasSplitter";
    page.paneStateName = L"AddLASFilesDetails";
    page.detailsTabs = {{"detailsOverview", 40631_lsid, Html},
                        {"detailsCrs", 40632_lsid, Html},
                        {"detailsRecords", 40633_lsid, PlainText}};
    page.nothingSelected = 40634_lsid;
    page.options = {kGroups, kRows};
    page.filters = PickerFilters(DataKind::Las);
    page.pickFailed = 10052_lsid;
    page.folderQuestion = 13556_lsid;
    page.scanTexts.ignored = 41051_lsid;
    page.scanTexts.nothingFound = 41052_lsid;
    page.extensions = NamedExtensions(DataKind::Las);
    page.adding = {.progressText = 13662_lsid,
                   .confirmText = 13656_lsid,
                   .confirmCaption = 13657_lsid,
                   .buddy = OrvexUtilities::GetLAZBuddyPath};
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
    : FileListPageOf(context, LasPage(), LasColumns(), {InspectLasFile, UnreadLasFile}, parent) {
    Start(EditModel());
}

void AddLASFilesPP::RowsChanged() {
    const LayerRules rules{Chosen().lasAppend, Chosen().lasIgnoreIncompatibleCrs};
    EditModel().Change([&](std::vector<LasRow>& rows) {
        std::vector<CrsPtr> files;
        for (const LasRow& row : rows) {
            files.push_back(row.loadable ? row.crs : nullptr);
        }
        std::vector<LayerPlace> places =
            PlaceInLayers(files, Params().existingLasLayers, rules, L"LAS Layer_");
        for (std::size_t i = 0; i < rows.size(); ++i) {
            rows[i].place = std::move(places[i]);
        }
    });
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
        Services().prompts.Show({Text(40671_lsid) + L"\n" + PromptLines(reopened.failures, FailureText),
                                 Text(40673_lsid), PromptIcon::Error, PromptButtons::Ok});
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
    for (const std::size_t index : ShownRecords()) {
        const LasRow& row = Model().Rows()[index];
        if (row.file != nullptr) {
            // The file that was chosen; the details name the one that is open.
            record.lasFiles[FolderOf(row.path)].push_back(FileNameOf(row.path));
            record.lasFileDetails[row.path] = row.file.get();
            record.lasFileLayers[row.path] = row.place.layer;
        }
    }
}

void AddLASFilesPP::HandOver() noexcept {
    EditModel().Change([](std::vector<LasRow>& rows) {
        for (LasRow& row : rows) {
            static_cast<void>(row.file.release());
        }
    });
}

bool AddLASFilesPP::NeedsCompanionFiles() const {
    return std::ranges::any_of(Model().Rows(), [](const LasRow& row) {
        return row.file != nullptr && row.file->GetCompanionStatus() == 0;
    });
}

}  // namespace orvex
