#include "entry/PageTable.h"

#include <gtest/gtest.h>

#include <QTabBar>

#include "dialog/AddFilesDlg.h"
#include "dialog/testing/ScriptedServices.h"
#include "support/QtText.h"

namespace orvex {
namespace {

struct PageTable : ::testing::Test, testing::ScriptedServices {};

TEST_F(PageTable, NamesWhatHostsAndResourcesKnow) {
    const struct {
        PageKind kind;
        StringId caption;
        FixedText insertFailure;
        FixedText createFailure;
        int templateId;
        int image;
        bool AddFilesParams::*pageSwitch;
        const char* className;
    } wanted[] = {
        {PageKind::Las, text::kLasTab, text::kLasTabInsertFailed, text::kLasPageCreateFailed, 363, 8, nullptr,
         "orvex::AddLASFilesPP"},
        {PageKind::Raster, text::kRasterTab, text::kRasterTabInsertFailed, text::kRasterPageCreateFailed, 385,
         9, &AddFilesParams::showRasterTab, "orvex::AddRasterFilesPP"},
        {PageKind::Dem, text::kDemTab, L"InsertItem DEM tab failed", text::kDemPageCreateFailed, 403, 11,
         &AddFilesParams::showDemTab, "orvex::AddDEMFilesPP"},
    };
    AddFilesParams params;
    params.showRasterTab = params.showDemTab = true;
    const AddFilesDlg dialog(params, services, AddFilesPages());
    const auto* tabs = dialog.findChild<QTabBar*>();
    ASSERT_EQ(AddFilesPages().size(), std::size(wanted));
    ASSERT_EQ(tabs->count(), 3);
    for (int i = 0; i < 3; ++i) {
        SCOPED_TRACE(wanted[i].className);
        const PageDescription& page = AddFilesPages()[static_cast<std::size_t>(i)];
        EXPECT_EQ(page.kind, wanted[i].kind);
        EXPECT_EQ(ToWide(tabs->tabText(i)), Text(wanted[i].caption));
        EXPECT_EQ(page.insertFailure.Get(), wanted[i].insertFailure.Get());
        EXPECT_EQ(page.createFailure.Get(), wanted[i].createFailure.Get());
        EXPECT_EQ(page.image, wanted[i].image);
        EXPECT_EQ(page.pageSwitch, wanted[i].pageSwitch);
        const auto* widget =
            dialog.findChild<AddFilesPage*>(QStringLiteral("page%1").arg(wanted[i].templateId));
        ASSERT_NE(widget, nullptr);
        EXPECT_STREQ(widget->metaObject()->className(), wanted[i].className);
    }
}

}  // namespace
}  // namespace orvex
