#include "feature/page/AddFeatureFilesPP.h"

#include <QCheckBox>
#include <algorithm>
#include <memory>

#include "crs/GdalSetup.h"
#include "dialog/page/ControlWidget.h"
#include "dialog/page/OptionForm.h"
#include "feature/FeatureColumns.h"
#include "feature/page/FeatureDetails.h"
#include "support/DataKinds.h"
#include "support/Format.h"
#include "support/HandlerGuard.h"
#include "support/ProjectPath.h"

namespace orvex {
namespace {

constexpr int kCrsGroup = 490;
constexpr int kRequireCrs = 491;
constexpr int kImportGroup = 493;
constexpr int kFolder = 499;
constexpr int kBrowse = 500;
constexpr int kInsertToken = 501;

constexpr OptionGroup kGroups[] = {
    {.id = kCrsGroup, .caption = text::kOptions},
    {.id = kImportGroup,
     .caption = L"DWG / DGN / DXF / KML / KMZ Options",
     .takesRoom = true,
     .alignsCaptions = true},
};

constexpr OptionRow ImportRow(int id, StringId caption, StringId tooltip, bool AddFilesParams::*member,
                              const wchar_t* setting) {
    return {.control = OptionControl::CheckBox,
            .id = id,
            .group = kImportGroup,
            .line = 1,
            .caption = caption,
            .tooltip = tooltip,
            .member = member,
            .storage = setting,
            .fallback = {1}};
}

constexpr OptionRow kRows[] = {
    {.control = OptionControl::DetailColumns,
     .member = &OptionValues::detailColumns,
     .storage = L"ShowAdvColsFeatures",
     .fallback = {1}},
    {.control = OptionControl::CheckBox,
     .id = kRequireCrs,
     .group = kCrsGroup,
     .line = 1,
     .caption = text::kRequireKnownCrs,
     .tooltip = text::kRequireKnownCrsTooltip,
     .member = &AddFilesParams::featureRequireCrs},
    {.control = OptionControl::Note,
     .id = 492,
     .group = kCrsGroup,
     .line = 2,
     .caption = text::kRequireKnownCrsHint,
     .tooltip = text::kRequireKnownCrsTooltip},
    ImportRow(494, text::kFeaturePoints, text::kFeaturePointsTooltip, &AddFilesParams::featureImportPoints,
              L"DWGImportPoints"),
    ImportRow(495, text::kFeatureLines, text::kFeatureLinesTooltip, &AddFilesParams::featureImportLines,
              L"DWGImportLines"),
    ImportRow(496, text::kFeaturePolygons, text::kFeaturePolygonsTooltip,
              &AddFilesParams::featureImportPolygons, L"DWGImportPolygons"),
    ImportRow(497, text::kFeatureText, text::kFeatureTextTooltip, &AddFilesParams::featureImportText,
              L"DWGImportText"),
    {.control = OptionControl::Text,
     .id = kFolder,
     .group = kImportGroup,
     .line = 2,
     .caption = text::kFeatureOutputFolder,
     .captionId = 498,
     .tooltip = text::kFeatureOutputFolderTooltip,
     .member = &AddFilesParams::featureOutputFolder,
     .storage = L"DWGShpFolder",
     .fallback = {0, L"<ORVEX_PROJECT_PATH>\\DWG Import"}},
    {.control = OptionControl::Button,
     .id = kBrowse,
     .group = kImportGroup,
     .line = 3,
     .caption = text::kDemBrowse,
     .tooltip = text::kFeatureBrowseTooltip},
    {.control = OptionControl::Button,
     .id = kInsertToken,
     .group = kImportGroup,
     .line = 3,
     .caption = text::kInsertProjectPath,
     .tooltip = text::kInsertProjectPathTooltip},
};

FileListPageDescription Describe() {
    using enum DetailsTab::Kind;
    FileListPageDescription page;
    page.listCaptionId = 480;
    page.listCaption = text::kFeatureSelectedFiles;
    page.gridId = 489;
    page.emptyText = text::kFeatureEmptyGrid;
    page.addFiles = {481, text::kAddFiles, text::kFeatureAddTooltip};
    page.addFolder = {482, text::kAddFolder, text::kFeatureAddFolderTooltip};
    page.remove.id = 483;
    page.clear.id = 484;
    page.detailColumns.id = 485;
    page.selectAll.id = 486;
    page.refresh.id = 487;
    page.help.id = 488;
    page.helpTopic = HelpTopic::FeatureFiles;
    page.splitterName = "featureSplitter";
    page.paneStateName = L"AddFeatureFilesDetails";
    page.columnStateName = L"AddFeatureFilesColumns";
    page.kind = DataKindName(DataKind::Feature);
    page.folderName = L"AddFeatureFilesFolder";
    page.detailsTabs = {{"featureOverview", text::kDetailsOverviewTab, Html},
                        {"featureCrs", text::kDetailsCrsTab, Html},
                        {"featureLayers", text::kFeatureLayersTab, Html},
                        {"featureFields", text::kFeatureFieldsTab, Html}};
    page.options = {kGroups, kRows};
    page.pickTitle = text::kFeaturePickerTitle;
    page.filters = PickerFilters(DataKind::Feature);
    page.tooManyFiles = text::kFeatureTooManySelected;
    page.pickFailed = text::kPickerOutOfMemory;
    page.folderQuestion = text::kFeatureSubfoldersQuestion;
    page.scanTexts.nothingFound = text::kFeatureFolderSearchFailed;
    page.scanTexts.nothingFoundIcon = PromptIcon::Error;
    page.extensions = NamedExtensions(DataKind::Feature);
    page.passesUnreadable = false;
    page.adding.progressText = text::kFeatureReadingProgress;
    page.existingFiles = &AddFilesParams::existingFeatureFiles;
    return page;
}

/// Everything about the page but its columns.
const FileListPageDescription& FeaturePage() {
    static const FileListPageDescription page = Describe();
    return page;
}

FileReader<FeatureRow> MakeReader(ShapefileMaker maker) {
    return {[maker = std::move(maker)](const std::wstring& path) { return InspectFeatureFile(path, maker); },
            UnreadFeatureFile};
}

bool IsTrue(const SettingValue& value) {
    const auto* narrow = std::get_if<std::int16_t>(&value);
    const auto* wide = std::get_if<std::int32_t>(&value);
    return (narrow != nullptr && *narrow == -1) || (wide != nullptr && *wide == -1);
}

std::ptrdiff_t NotLoadable(const std::vector<FeatureRow>& rows) {
    return std::ranges::count(rows, false, &FeatureRow::loadable);
}

/// Those that only files that are converted need.
bool IsImportOption(const OptionRow& row) {
    return row.group == kImportGroup;
}

}  // namespace

AddFeatureFilesPP::AddFeatureFilesPP(const PageContext& context, QWidget* parent)
    : TypedFileListPage(context, FeaturePage(), FeatureColumns(),
                        MakeReader(context.services.hostObjects.Shapefiles()), parent) {
    EnsureGdal();
    Start(EditModel());
    ConnectFolder({kFolder, kBrowse, kInsertToken, text::kFeatureOutputFolderTitle,
                   &AddFilesParams::featureOutputFolder});
    connect(findChild<QCheckBox*>(ControlName(kRequireCrs)), &QCheckBox::toggled, this,
            Guarded(Services().prompts, L"OnRequireCrs", [this] { OnRequireCrs(); }));
}

void AddFeatureFilesPP::OnRequireCrs() {
    const auto& rows = Model().Rows();
    const std::ptrdiff_t before = NotLoadable(rows);
    ReadAgain();
    if (NotLoadable(rows) > before) {
        ShowMessage(Text(text::kFeatureUnknownCrsWarning), text::kFeatureUnknownCrsCaption,
                    PromptIcon::Warning);
    }
}

std::vector<std::function<void()>> AddFeatureFilesPP::LateWork() const {
    return IdentificationWork(UnidentifiedCrss(Model().Rows()), {});
}

void AddFeatureFilesPP::RowsChanged() {
    EditModel().Change([this](std::vector<FeatureRow>& rows) {
        ApplyFeatureRules(rows, {Params().existingFeatureLayers, Chosen().featureRequireCrs});
    });
}

DetailsContent AddFeatureFilesPP::Details(std::span<const std::size_t> records) const {
    return FeatureDetailsContent(Model().Rows(), records, DetailsPane().CaptionColour());
}

bool AddFeatureFilesPP::HasAny(bool (*test)(FeatureKind kind)) const {
    return std::ranges::any_of(Model().Rows(), test, &FeatureRow::kind);
}

/// The host decides whether it takes KML and KMZ files.
bool AddFeatureFilesPP::AreKmlFilesAllowed(OrvexApplication* application) const {
    SettingValue allowed;
    if (application != nullptr && application->GetOptionItem(kKmlOptionItem, allowed) >= 0 &&
        IsTrue(allowed)) {
        return true;
    }
    ShowMessage(Text(text::kKmlSwitchedOff), text::kErrorCaption, PromptIcon::Warning);
    return false;
}

/// The folder for converted files; empty, after telling the user, when it cannot be used.
std::wstring AddFeatureFilesPP::OutputFolder(OrvexApplication* application) const {
    constexpr std::size_t kBuffer = 1024;
    const std::wstring& typed = Chosen().featureOutputFolder;
    std::wstring folder = MakeWritableFolder(typed, ProjectFolderOf(application));
    if (folder.empty()) {
        ShowMessage(FormatText(Text(text::kFeatureOutputFolderRefused), {typed}, kBuffer),
                    text::kFeatureOutputFolderCaption, PromptIcon::Warning);
    }
    return folder;
}

bool AddFeatureFilesPP::Store() {
    std::int32_t result = kHostOk;
    const std::unique_ptr<OrvexApplication> application = Services().hostObjects.CreateApplication(result);
    SaveOptions([](const OptionRow& row) { return !IsImportOption(row); });
    const auto isKml = [](FeatureKind kind) { return kind == FeatureKind::Kml || kind == FeatureKind::Kmz; };
    if (HasAny(isKml) && !AreKmlFilesAllowed(application.get())) {
        return false;
    }
    std::wstring folder;
    if (HasAny(IsConverted)) {
        folder = OutputFolder(application.get());
        SaveOptions([&](const OptionRow& row) {
            return IsImportOption(row) && (row.id != kFolder || !folder.empty());
        });
        if (folder.empty()) {
            return false;
        }
    }
    WriteOptions();
    AddFilesParams& record = Params();
    record.featureOutputFolder = folder;
    for (const std::size_t index : Model().RecordsInOrder()) {
        const FeatureRow& row = Model().Rows()[index];
        if (row.loadable) {
            record.featureFiles[row.place.layer] = row.path;
        }
    }
    return true;
}

}  // namespace orvex
