#include "entry/PageTable.h"

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
        {.kind = PageKind::Las,
         .caption = 13558_lsid,
         .insertFailure = 13559_lsid,
         .createFailure = 13560_lsid,
         .templateId = 363,
         .image = kImageLas,
         .create = Make<AddLASFilesPP>},
        {.kind = PageKind::Raster,
         .caption = 13561_lsid,
         .insertFailure = 13562_lsid,
         .createFailure = 13563_lsid,
         .templateId = 385,
         .image = kImageRaster,
         .pageSwitch = &AddFilesParams::showRasterTab,
         .create = Make<AddRasterFilesPP>},
        {.kind = PageKind::Dem,
         .caption = 3253_lsid,
         .insertFailure = L"InsertItem DEM tab failed",
         .createFailure = 3260_lsid,
         .templateId = 403,
         .image = kImageDem,
         .pageSwitch = &AddFilesParams::showDemTab,
         .create = Make<AddDEMFilesPP>},
    };
    return pages;
}

}  // namespace orvex
