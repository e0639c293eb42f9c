#include "entry/PageTable.h"

#include "dialog/Images.h"
#include "las/page/AddLASFilesPP.h"
#include "raster/page/AddDEMFilesPP.h"
#include "raster/page/AddRasterFilesPP.h"

namespace orvex {
namespace {

template <typename Page>
std::unique_ptr<AddFilesPage> Make(const PageContext& context) {
    return std::make_unique<Page>(context);
}

}  // namespace

std::span<const PageDescription> AddFilesPages() {
    static const PageDescription pages[] = {
        {PageKind::Las, text::kLasTab, text::kLasTabInsertFailed, nullptr, text::kLasPageCreateFailed,
         nullptr, 363, kImageLas, nullptr, Make<AddLASFilesPP>},
        {PageKind::Raster, text::kRasterTab, text::kRasterTabInsertFailed, nullptr,
         text::kRasterPageCreateFailed, nullptr, 385, kImageRaster, &AddFilesParams::showRasterTab,
         Make<AddRasterFilesPP>},
        {PageKind::Dem,
         text::kDemTab,
         {},
         L"InsertItem DEM tab failed",
         text::kDemPageCreateFailed,
         nullptr,
         403,
         kImageDem,
         &AddFilesParams::showDemTab,
         Make<AddDEMFilesPP>},
    };
    return pages;
}

}  // namespace orvex
