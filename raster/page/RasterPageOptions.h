#pragma once

namespace orvex {

class OptionStore;

/// How the files of the raster page are to be loaded. The member values are what a fresh machine shows.
struct RasterPageOptions {
    bool append = true;
    bool pyramid = true;
    bool detailColumns = false;

    friend bool operator==(const RasterPageOptions&, const RasterPageOptions&) = default;
};

/// The stored options; what is not stored has its value of a fresh machine.
RasterPageOptions ReadRasterPageOptions(const OptionStore& store);

/// Writes the options, always in the same order. A store that refuses is ignored: the choice still holds for
/// this run.
void SaveRasterPageOptions(const OptionStore& store, const RasterPageOptions& options);

}  // namespace orvex
