#include "photo/page/AddPhotoFilesPP.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "crs/GdalSetup.h"
#include "dialog/details/FilePreview.h"
#include "dialog/page/OptionForm.h"
#include "orvexcommon/OrvexUtilities.h"
#include "photo/PhotoColumns.h"
#include "photo/PhotoSeries.h"
#include "photo/page/PhotoDetails.h"
#include "photo/page/PhotoLayer.h"
#include "support/DataKinds.h"
#include "support/HandlerGuard.h"

namespace orvex {
namespace {

constexpr int kLayerGroup = 520;
constexpr int kAppend = 521;
constexpr int kLayer = 523;
constexpr int kBrowse = 524;

constexpr OptionGroup kGroups[] = {{.id = kLayerGroup, .caption = text::kPhotoLayerGroup, .takesRoom = true}};

constexpr OptionRow kRows[] = {
    {.control = OptionControl::DetailColumns,
     .member = &OptionValues::detailColumns,
     .storage = L"ShowAdvColsPhotos",
     .fallback = {1}},
    {.control = OptionControl::CheckBox,
     .id = kAppend,
     .group = kLayerGroup,
     .line = 1,
     .caption = text::kPhotoAppendToLayer,
     .tooltip = text::kPhotoAppendTooltip,
     .member = &OptionValues::toExistingLayer},
    {.control = OptionControl::Text,
     .id = kLayer,
     .group = kLayerGroup,
     .line = 2,
     .caption = text::kPhotoLayerPath,
     .captionId = 522,
     .tooltip = text::kPhotoLayerTooltip,
     .member = &AddFilesParams::photoLayer,
     .enabledBy = kAppend},
    {.control = OptionControl::Button,
     .id = kBrowse,
     .group = kLayerGroup,
     .line = 2,
     .caption = text::kDemBrowse,
     .tooltip = text::kPhotoLayerBrowseTooltip,
     .enabledBy = kAppend},
};

FileListPageDescription Describe() {
    using enum DetailsTab::Kind;
    FileListPageDescription page;
    page.listCaptionId = 510;
    page.listCaption = text::kPhotoSelectedFiles;
    page.gridId = 519;
    page.emptyText = text::kPhotoEmptyGrid;
    page.addFiles = {511, text::kAddFiles, text::kPhotoAddTooltip};
    page.addFolder = {512, text::kAddFolder, text::kPhotoAddFolderTooltip};
    page.remove.id = 513;
    page.clear.id = 514;
    page.detailColumns.id = 515;
    page.selectAll = {516, {}, text::kPhotoSelectAllTooltip};
    page.refresh.id = 517;
    page.help.id = 518;
    page.helpTopic = HelpTopic::PhotoFiles;
    page.splitterName = "photoSplitter";
    page.paneStateName = L"AddPhotoFilesDetails";
    page.columnStateName = L"AddPhotoFilesColumns";
    page.kind = DataKindName(DataKind::Photo);
    page.folderName = L"AddPhotoFilesFolder";
    page.detailsTabs = {{"photoOverview", text::kDetailsOverviewTab, Html},
                        {"photoCrs", text::kDetailsCrsTab, Html}};
    page.options = {kGroups, kRows};
    page.pickTitle = text::kPhotoPickerTitle;
    page.filters = PickerFilters(DataKind::Photo);
    page.tooManyFiles = text::kFeatureTooManySelected;
    page.pickFailed = text::kPickerOutOfMemory;
    page.folderTitle = text::kPhotoFolderTitle;
    page.folderQuestion = text::kPhotoSubfoldersQuestion;
    page.scanTexts.nothingFound = text::kPhotoFolderSearchFailed;
    page.scanTexts.nothingFoundIcon = PromptIcon::Error;
    page.extensions = NamedExtensions(DataKind::Photo);
    page.folderExtensions = ScanExtensions(DataKind::Photo);
    page.passesUnreadable = false;
    page.adding.progressText = text::kPhotoReadingProgress;
    page.existingFiles = &AddFilesParams::existingPhotoFiles;
    return page;
}

/// Everything about the page but its columns.
const FileListPageDescription& PhotoPage() {
    static const FileListPageDescription page = Describe();
    return page;
}

/// A host without the project object was written before photo layers: it takes the photos as it always has,
/// and only the choice of a layer is refused. A project that cannot be reached is another matter.
bool HasPhotoFolder(OrvexProject* project, std::int32_t result) {
    std::wstring folder;
    return result == kHostNotImplemented ||
           (project != nullptr && project->GetPhotoFolder(folder) >= 0 && !folder.empty());
}

}  // namespace

AddPhotoFilesPP::AddPhotoFilesPP(const PageContext& context, QWidget* parent)
    : TypedFileListPage(context, PhotoPage(), PhotoColumns(), {InspectPhoto, UnreadPhoto}, parent),
      preview_(new FilePreview(OrvexUtilities::GetExifThumbnail, this)) {
    EnsureGdal();  // describes the coordinate reference systems
    Start(EditModel());
    OnClick(kBrowse, L"OnBrowseLayer", [this] { OnBrowseLayer(); });
    connect(preview_, &FilePreview::Changed, this,
            Guarded(Services().prompts, L"ShowDetails", [this] { ShowDetails(); }));
}

void AddPhotoFilesPP::OnBrowseLayer() {
    OpenFilesRequest request;
    request.title = Text(text::kPhotoLayerPickerTitle);
    request.filters = {PickerFilters(DataKind::Feature).at(1)};  // shapefiles
    const PickedFiles picked = Services().pickers.PickFiles(request);
    if (picked.outcome == PickOutcome::Picked && !picked.paths.empty()) {
        Form().TypeText(kLayer, picked.paths.front());
    }
}

AddingSummary AddPhotoFilesPP::AddRows(AddingRequest request, const std::function<void()>& appended) {
    AddingSummary summary = TypedFileListPage::AddRows(std::move(request), appended);
    if (summary.added > 0) {
        TellIfNoneWasRead();
    }
    return summary;
}

AddPhotoFilesPP::Rereading AddPhotoFilesPP::RereadRows() {
    preview_->Forget();
    Rereading rereading = TypedFileListPage::RereadRows();
    TellIfNoneWasRead();
    return rereading;
}

void AddPhotoFilesPP::TellIfNoneWasRead() const {
    if (std::ranges::none_of(Model().Rows(), &PhotoRow::loadable)) {
        ShowMessage(Text(text::kPhotoMetadataReadFailed), text::kPhotoMessageCaption, PromptIcon::Error);
    }
}

std::vector<std::function<void()>> AddPhotoFilesPP::LateWork() const {
    return IdentificationWork(UnidentifiedCrss(Model().Rows()), {});
}

void AddPhotoFilesPP::RowsChanged() {
    EditModel().Change(ComparePhotos);
}

DetailsContent AddPhotoFilesPP::Details(std::span<const std::size_t> records) const {
    const auto& rows = Model().Rows();
    const PhotoRow& first = rows[records.front()];
    const QString preview = records.size() == 1 && first.loadable ? preview_->Html(first.path) : QString();
    return PhotoDetailsContent(rows, records, preview, DetailsPane().CaptionColour());
}

/// In the order that the grid shows them.
std::vector<std::size_t> AddPhotoFilesPP::RecordsToAdd() const {
    std::vector<std::size_t> records = Model().RecordsInOrder();
    std::erase_if(records, [this](std::size_t record) { return !Model().Rows()[record].loadable; });
    return records;
}

bool AddPhotoFilesPP::Store() {
    const std::vector<std::size_t> records = RecordsToAdd();
    return records.empty() || StorePhotos(records);
}

bool AddPhotoFilesPP::StorePhotos(std::span<const std::size_t> records) {
    std::int32_t result = kHostOk;
    const std::unique_ptr<OrvexApplication> application = Services().hostObjects.CreateApplication(result);
    if (ProjectFolderOf(application.get()).empty()) {
        ShowMessage(Text(text::kPhotoProjectFolderMissing), text::kPhotoMessageCaption, PromptIcon::Error);
        return false;
    }
    const std::unique_ptr<OrvexProject> project = application->GetProject(result);
    if (!HasPhotoFolder(project.get(), result)) {
        ShowMessage(Text(text::kPhotoTargetMissing), text::kPhotoMessageCaption, PromptIcon::Error);
        return false;
    }
    std::vector<std::wstring> photos;
    for (const std::size_t record : records) {
        photos.push_back(Model().Rows()[record].path);
    }
    std::optional<PhotoLayerChoice> layer = PhotoLayerChoice();
    if (Form().Values().toExistingLayer) {
        layer = ChoosePhotoLayer(Chosen().photoLayer, project.get(), photos, Services().prompts);
    }
    if (!layer.has_value() || !ConfirmPositions(records) || !SaveOptions()) {
        return false;
    }
    AddFilesParams& record = Params();
    record.photoLayer = layer->path;
    record.photoReplaceExisting = layer->replace;
    std::ranges::move(photos, std::back_inserter(record.photoFiles));
    ShowMessage(Text(text::kPhotosTakenOver), text::kPhotosTakenOverCaption, PromptIcon::Information);
    return true;
}

/// Photos without a place on the map, or without a height, are selected when the user does not want them.
bool AddPhotoFilesPP::ConfirmPositions(std::span<const std::size_t> records) {
    std::vector<std::size_t> incomplete;
    std::ranges::copy_if(records, std::back_inserter(incomplete), [this](std::size_t record) {
        const PhotoRow& row = Model().Rows()[record];
        return !HasPosition(row) || row.metadata.gpsAltitude == 0;
    });
    if (incomplete.empty()) {
        return true;
    }
    const PromptAnswer answer = Services().prompts.Show({Text(text::kPhotoIncompletePositionQuestion),
                                                         Text(text::kPhotoMessageCaption),
                                                         PromptIcon::Question, PromptButtons::YesNo});
    if (answer != PromptAnswer::Yes) {
        SelectRecords(incomplete);
    }
    return answer == PromptAnswer::Yes;
}

}  // namespace orvex
