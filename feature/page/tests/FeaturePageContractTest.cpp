// The feature page as a file page.
#include "dialog/testing/PageContract.h"
#include "feature/page/AddFeatureFilesPP.h"
#include "feature/page/tests/Drawing.h"

namespace orvex {
namespace {

using namespace std::string_literals;
using testing::FilePage;
using testing::PageContract;

SettingValue Int16(int value) {
    return static_cast<std::int16_t>(value);
}

PageContract FeatureContract() {
    using P = AddFilesParams;
    PageContract page{};
    page.name = "Feature";
    page.make = testing::MakePage<AddFeatureFilesPP>;
    page.addFiles = 481;
    page.addFolder = 482;
    page.remove = 483;
    page.clear = 484;
    page.detailColumns = 485;
    page.selectAll = 486;
    page.refresh = 487;
    page.help = 488;
    page.grid = 489;
    page.helpTopic = HelpTopic::FeatureFiles;
    page.emptyText = text::kFeatureEmptyGrid;
    page.overview = "featureOverview";
    page.nothingSelected = text::kDetailsNoSelection;
    page.paneState = L"AddFeatureFilesDetails";
    page.pickTitle = text::kFeaturePickerTitle;
    page.tooManyFiles = text::kFeatureTooManySelected;
    page.pickFailed = text::kPickerOutOfMemory;
    page.folderQuestion = text::kFeatureSubfoldersQuestion;
    page.nothingFound = text::kFeatureFolderSearchFailed;
    page.nothingFoundIcon = PromptIcon::Error;
    page.ignored = text::kOthersLeftOut;
    page.reading = text::kFeatureReadingProgress;
    page.writeGood = [](const testing::TemporaryFolder& folder, const std::wstring& name) {
        testing::WritePrj(folder, name);
        return testing::WriteDrawing(folder, name);
    };
    page.writeBad = [](const testing::TemporaryFolder& folder, const std::wstring& name) {
        return folder.Write(name + L".dxf", "no drawing");
    };
    page.extension = L".dxf";
    page.otherKind = L".las";
    page.detailColumn = "folder";
    page.detailColumnsOn = {L"ShowAdvColsFeatures", Int16(-1), 0, {}};
    page.files = &P::featureFiles;
    page.existingFiles = &P::existingFeatureFiles;
    page.sharesLayers = false;
    page.prepare = [](testing::ScriptedServices& services, const testing::TemporaryFolder& folder) {
        services.hostObjects.projectFolder = folder.Name(L"project");
    };
    page.options = {
        {L"DWGImportPoints", Int16(0), 494, "off", &P::featureImportPoints, L"0"},
        {L"DWGImportLines", Int16(0), 495, "off", &P::featureImportLines, L"0"},
        {L"DWGImportPolygons", Int16(0), 496, "off", &P::featureImportPolygons, L"0"},
        {L"DWGImportText", Int16(0), 497, "off", &P::featureImportText, L"0"},
        {L"DWGShpFolder", SettingValue(L"<ORVEX_PROJECT_PATH>\\Out"s), 499, "<ORVEX_PROJECT_PATH>\\Out"},
        {L"", {}, 491, "on", &P::featureRequireCrs, L"1"},
    };
    page.replaced = {
        {L"DWGImportPoints", {}, 494, "on", &P::featureImportPoints, L"1"},
        {L"DWGImportLines", SettingValue(std::int32_t{-1}), 495, "off", &P::featureImportLines, L"0"},
        {L"DWGImportText", Int16(1), 497, "off", &P::featureImportText, L"0"},
        {L"DWGShpFolder", {}, 499, "<ORVEX_PROJECT_PATH>\\DWG Import"},
    };
    return page;
}

INSTANTIATE_TEST_SUITE_P(FeaturePages, FilePage, ::testing::Values(FeatureContract()),
                         ::testing::PrintToStringParamName());

}  // namespace
}  // namespace orvex
