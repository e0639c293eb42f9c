#include "raster/page/RasterPageOptions.h"

#include "settings/OptionStore.h"

namespace orvex {

RasterPageOptions ReadRasterPageOptions(const OptionStore& store) {
    RasterPageOptions options;
    options.append = store.Get(opt2AddRasterAppend, options.append);
    options.pyramid = store.Get(opt2AddRasterPyramid, options.pyramid);
    options.detailColumns = store.Get(opt2AddRasterDetailCols, options.detailColumns);
    return options;
}

void SaveRasterPageOptions(const OptionStore& store, const RasterPageOptions& options) {
    store.Put<char>(opt2AddRasterAppend, options.append ? 1 : 0);
    store.Put<char>(opt2AddRasterPyramid, options.pyramid ? 1 : 0);
    store.Put<char>(opt2AddRasterDetailCols, options.detailColumns ? 1 : 0);
}

}  // namespace orvex
