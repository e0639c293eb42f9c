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
        {PageKind::Las, 13558_lsid, 13559_lsid, nullptr, 13560_lsid, nullptr, 363, kImageLas, nullptr,
         Make<AddLASFilesPP>},
        {PageKind::Raster, 13561_lsid, 13562_lsid, nullptr, 13563_lsid, nullptr, 385, kImageRaster,
         &AddFilesParams::showRasterTab, Make<AddRasterFilesPP>},
        {PageKind::Dem,
         3253_lsid,
         {},
         L"InsertItem DEM tab failed",
         3260_lsid,
         nullptr,
         403,
         kImageDem,
         &AddFilesParams::showDemTab,
         Make<AddDEMFilesPP>},
    };
    return pages;
}

}  // namespace orvex
