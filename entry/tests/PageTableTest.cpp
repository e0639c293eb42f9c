#include "entry/PageTable.h"

#include <gmock/gmock.h>

#include <QLineEdit>
#include <QPushButton>
#include <QTabBar>
#include <QTest>
#include <tuple>

#include "dialog/AddFilesDlg.h"
#include "dialog/CTabCtrlEx.h"
#include "dialog/testing/ScriptedServices.h"
#include "orvexcommon/RasterFileInfo.h"
#include "raster/testing/GeoTiff.h"
#include "support/QtText.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

TEST(PageTable, PagesAreInOrderWithTheirTemplatesAndSwitches) {
    // Hosts and help know the pages by these numbers.
    const std::tuple<PageKind, int, bool AddFilesParams::*> wanted[] = {
        {PageKind::Las, 363, nullptr},
        {PageKind::Raster, 385, &AddFilesParams::showRasterTab},
        {PageKind::Dem, 403, &AddFilesParams::showDemTab},
    };
    ASSERT_THAT(AddFilesPages(), SizeIs(std::size(wanted)));
    for (std::size_t i = 0; i < std::size(wanted); ++i) {
        const PageDescription& page = AddFilesPages()[i];
        EXPECT_EQ(std::tuple(page.kind, page.templateId, page.pageSwitch), wanted[i]);
    }
}

/// The dialog with its own pages, one raster and one elevation model listed.
class RealPages : public ::testing::Test, protected testing::ScriptedServices {
  protected:
    RealPages() {
        params.showRasterTab = params.showDemTab = true;
        dialog = std::make_unique<AddFilesDlg>(params, services, AddFilesPages());
        EXPECT_EQ(dialog->Initialise(), kHostOk);
        dialog->show();
        Page(385).AddPaths({image});
        Page(403).AddPaths({model});
    }

    AddFilesPage& Page(int templateId) const {
        return *dialog->findChild<AddFilesPage*>(QStringLiteral("page%1").arg(templateId));
    }
    void Press(const char* button) const {
        QTest::mouseClick(dialog->findChild<QPushButton*>(QLatin1String(button)), Qt::LeftButton);
    }
    void SetThinning(const char* text) const {
        dialog->findChild<QLineEdit*>(QStringLiteral("c477"))->setText(QString::fromLatin1(text));
    }

    testing::TemporaryFolder folder;
    const std::wstring image = testing::GeoTiff().Write(folder, L"image.tif");
    const std::wstring model = testing::GeoTiff().Write(folder, L"model.tif");
    AddFilesParams params;
    std::unique_ptr<AddFilesDlg> dialog;
};

TEST_F(RealPages, ARefusalOfALaterPageLeavesTheDetailsWithTheirRowsUntilAnOk) {
    SetThinning("1");
    Press("ok");
    ASSERT_THAT(prompts.shown, SizeIs(1));
    EXPECT_EQ(prompts.shown[0].text, Text(text::kThinningRefused));
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_THAT(params.rasterFileDetails, SizeIs(1)) << "the raster page comes first, and is not rolled back";
    EXPECT_THAT(params.demFiles, IsEmpty());

    SetThinning("2");
    Press("ok");
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
    EXPECT_THAT(params.rasterFiles,
                ElementsAre(std::pair(FolderOf(image), std::vector<std::wstring>{L"image.tif"})));
    EXPECT_THAT(params.demFiles,
                ElementsAre(std::pair(FolderOf(model), std::vector<std::wstring>{L"model.tif"})));
    dialog.reset();
    const std::unique_ptr<RasterFileInfo> details(params.rasterFileDetails.at(image));
    EXPECT_EQ(details->FileName(), image) << "the host's, when the dialog is gone";
}

TEST_F(RealPages, CancelAfterARefusalLeavesTheRecordAsItWas) {
    SetThinning("1");
    Press("ok");
    ASSERT_THAT(params.rasterFileDetails, SizeIs(1));
    Press("cancel");
    EXPECT_EQ(dialog->result(), QDialog::Rejected);
    dialog.reset();
    EXPECT_THAT(params.rasterFiles, IsEmpty());
    EXPECT_THAT(params.rasterFileDetails, IsEmpty());
    EXPECT_FALSE(params.rasterAppend || params.rasterPyramid);
}

TEST_F(RealPages, APageThatIsSwitchedOffTakesNoTab) {
    params.showRasterTab = false;
    const AddFilesDlg withoutRasters(params, services, AddFilesPages());
    const auto* tabs = withoutRasters.findChild<QTabBar*>();
    ASSERT_EQ(tabs->count(), 2);
    EXPECT_EQ(ToWide(tabs->tabText(1)), Text(text::kDemTab));
}

}  // namespace
}  // namespace orvex
