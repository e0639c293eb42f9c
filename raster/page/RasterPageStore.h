#pragma once
#include <map>
#include <span>
#include <string>
#include <vector>

#include "raster/RasterRow.h"
#include "raster/page/RasterPageOptions.h"
#include "raster/page/StoredResults.h"

namespace orvex {

class OptionStore;

/// Puts the raster page's files and options into the host's record, and takes them back.
///
/// The rows own their details all the time that the dialog is open; after Store the record holds their
/// addresses. A later page may still refuse, and the user may change the rows, press OK again or cancel. So
/// whoever changes rows calls Withdraw first, which makes the record what it was before, and only when the
/// page ends with the results still in the record does HandOver leave the details to the host.
class RasterPageStore {
  public:
    /// `params` outlives this object.
    explicit RasterPageStore(AddFilesParams& params) : stored_(params) {}

    /// Saves the options and fills the record, with the rows in the order that the grid shows them (`order`:
    /// indices of rows, each once). Without rows the options are saved and stored all the same. Rows that
    /// could not be described stay listed but are not written. What an earlier Store wrote is replaced.
    void Store(std::span<const RasterRow> rows, std::span<const std::size_t> order,
               const RasterPageOptions& options, const OptionStore& store);

    /// Makes the record what it was before the last Store; without effect when nothing is stored.
    void Withdraw() { stored_.Withdraw(); }

    bool IsStored() const { return stored_.IsStored(); }

    /// The dialog has ended. When the results are in the record, the details now belong to the host and the
    /// rows let go of them; else the rows keep them.
    void HandOver(std::vector<RasterRow>& rows);

  private:
    struct Results {
        FilesByFolder files;
        std::map<std::wstring, RasterFileInfo*> details;
        std::map<std::wstring, std::wstring> layers;
        bool append = false;
        bool pyramid = false;

        static Results Of(const AddFilesParams& params);
        void WriteTo(AddFilesParams& params) && noexcept;
    };

    StoredResults<Results> stored_;
};

}  // namespace orvex
