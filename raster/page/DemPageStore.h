#pragma once
#include <array>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>

#include "raster/RasterRow.h"
#include "raster/page/DemPageOptions.h"
#include "raster/page/StoredResults.h"
#include "support/HostObjects.h"

namespace orvex {

enum class DemStoreOutcome { Stored, ThinningRefused };

/// Puts the DEM page's files and options into the host's record, and takes them back: whoever changes rows
/// calls Withdraw first. The record holds no addresses of the rows.
class DemPageStore {
  public:
    /// `params` outlives this object.
    explicit DemPageStore(AddFilesParams& params) : stored_(params) {}

    /// Saves the options in the host's settings and fills the record, with the rows in the order that the
    /// grid shows them (`order`: indices of rows, each once). `thinning` is what was typed; it takes the
    /// place of that in `options`. When it is refused, the other options are saved, the thinning factor is
    /// not, and what an earlier Store wrote into the record is taken back. Without rows nothing is saved,
    /// and the record stays as the host gave it. Rows that could not be described are not written. Throws
    /// LDataError when the host cannot make its settings object.
    DemStoreOutcome Store(std::span<const RasterRow> rows, std::span<const std::size_t> order,
                          const DemPageOptions& options, std::wstring_view thinning, HostObjects& host);

    /// Makes the record what it was before the last Store; without effect when nothing is stored.
    void Withdraw() { stored_.Withdraw(); }

    bool IsStored() const { return stored_.IsStored(); }

  private:
    struct Results {
        FilesByFolder files;
        std::map<std::wstring, std::wstring> layers;
        bool openReadWrite = false;
        bool append = false;
        std::int32_t lasVersion = 0;
        std::int32_t pointFormat = 0;
        bool pyramid = false;
        std::uint16_t thinning = 0;
        std::wstring lasFolder;
        std::array<std::int32_t, 5> extraValues{};
        bool ignoreCrs = false;

        static Results Of(const AddFilesParams& params);
        void WriteTo(AddFilesParams& params) && noexcept;
    };

    StoredResults<Results> stored_;
};

}  // namespace orvex
