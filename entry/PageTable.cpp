#include "entry/PageTable.h"

#include "cloud/page/AddCloudLASFilesPP.h"
#include "feature/page/AddFeatureFilesPP.h"
#include "las/page/AddLASFilesPP.h"
#include "photo/page/AddPhotoFilesPP.h"
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
         .caption = text::kLasTab,
         .insertFailure = text::kLasTabInsertFailed,
         .createFailure = text::kLasPageCreateFailed,
         .templateId = 363,
         .image = kImageLas,
         .create = Make<AddLASFilesPP>},
        {.kind = PageKind::Raster,
         .caption = text::kRasterTab,
         .insertFailure = text::kRasterTabInsertFailed,
         .createFailure = text::kRasterPageCreateFailed,
         .templateId = 385,
         .image = kImageRaster,
         .pageSwitch = &AddFilesParams::showRasterTab,
         .create = Make<AddRasterFilesPP>},
        {.kind = PageKind::Feature,
         .caption = text::kFeatureTab,
         .insertFailure = L"InsertItem Feature tab failed",
         .createFailure = L"The Feature Dialog was not created",
         .templateId = 390,
         .image = kImageFeature,
         .pageSwitch = &AddFilesParams::showFeatureTab,
         .create = Make<AddFeatureFilesPP>},
        {.kind = PageKind::Dem,
         .caption = text::kDemTab,
         .insertFailure = L"InsertItem DEM tab failed",
         .createFailure = text::kDemPageCreateFailed,
         .templateId = 403,
         .image = kImageDem,
         .pageSwitch = &AddFilesParams::showDemTab,
         .create = Make<AddDEMFilesPP>},
        {.kind = PageKind::Photo,
         .caption = text::kPhotoTab,
         .insertFailure = L"InsertItem Photo tab failed",
         .createFailure = L"The Photo Dialog was not created",
         .templateId = 406,
         .image = kImagePhoto,
         .pageSwitch = &AddFilesParams::showPhotoTab,
         .create = Make<AddPhotoFilesPP>},
        {.kind = PageKind::CloudLas,
         .caption = text::kCloudTab,
         .insertFailure = text::kCloudTabInsertFailed,
         .createFailure = text::kCloudPageCreateFailed,
         .templateId = 410,
         .image = kImageCloudLas,
         .pageSwitch = &AddFilesParams::showCloudTab,
         .create = Make<AddCloudLASFilesPP>},
    };
    return pages;
}

}  // namespace orvex
