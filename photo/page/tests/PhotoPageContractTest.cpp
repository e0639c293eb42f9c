// The photo page as a file page.
#include "dialog/testing/PageContract.h"
#include "photo/page/AddPhotoFilesPP.h"
#include "photo/page/tests/PhotoFile.h"

namespace orvex {
namespace {

using testing::FilePage;
using testing::PageContract;

PageContract PhotoContract() {
    PageContract page{};
    page.name = "Photo";
    page.make = testing::MakePage<AddPhotoFilesPP>;
    page.addFiles = 511;
    page.addFolder = 512;
    page.remove = 513;
    page.clear = 514;
    page.detailColumns = 515;
    page.selectAll = 516;
    page.refresh = 517;
    page.help = 518;
    page.grid = 519;
    page.helpTopic = HelpTopic::PhotoFiles;
    page.emptyText = text::kPhotoEmptyGrid;
    page.overview = "photoOverview";
    page.nothingSelected = text::kDetailsNoSelection;
    page.paneState = L"AddPhotoFilesDetails";
    page.pickTitle = text::kPhotoPickerTitle;
    page.tooManyFiles = text::kFeatureTooManySelected;
    page.pickFailed = text::kPickerOutOfMemory;
    page.folderTitle = text::kPhotoFolderTitle;
    page.folderQuestion = text::kPhotoSubfoldersQuestion;
    page.nothingFound = text::kPhotoFolderSearchFailed;
    page.nothingFoundIcon = PromptIcon::Error;
    page.ignored = text::kOthersLeftOut;
    page.reading = text::kPhotoReadingProgress;
    page.writeGood = [](const testing::TemporaryFolder& folder, const std::wstring& name) {
        static int photos = 0;  // photos at one place would say so of each other
        return testing::WritePhoto(folder, name + L".jpg", 8.5 + 0.001 * ++photos);
    };
    page.writeBad = [](const testing::TemporaryFolder& folder, const std::wstring& name) {
        return folder.Write(name + L".jpg", "no photo");
    };
    page.extension = L".jpg";
    page.onlyWhenNamed = L".sid";
    page.otherKind = L".las";
    page.detailColumn = "folder";
    page.detailColumnsOn = {L"ShowAdvColsPhotos", SettingValue(std::int16_t{-1}), 0, {}};
    page.files = &AddFilesParams::photoFiles;
    page.existingFiles = &AddFilesParams::existingPhotoFiles;
    page.sharesLayers = false;
    page.showsPath = true;
    page.prepare = [](testing::ScriptedServices& services, const testing::TemporaryFolder& folder) {
        services.hostObjects.projectFolder = folder.Name({});
        services.hostObjects.photoFolder = folder.Name({});
    };
    return page;
}

INSTANTIATE_TEST_SUITE_P(PhotoPages, FilePage, ::testing::Values(PhotoContract()),
                         ::testing::PrintToStringParamName());

}  // namespace
}  // namespace orvex
