#pragma once
#include <optional>
#include <span>
#include <vector>

#include "las/LasOpenMode.h"
#include "las/LasRow.h"
#include "las/page/LasPageOptions.h"
#include "orvexcommon/AddFilesParams.h"

namespace orvex {

class OptionStore;

/// Puts the page's files and options into the host's record, and takes them back.
///
/// The rows own their files all the time that the dialog is open; after Store the record holds their
/// addresses. A later page may still refuse, and the user may change the rows, press OK again or cancel. So
/// whoever changes rows calls Withdraw first, which makes the record what it was before, and only when the
/// page ends with the results still in the record does HandOver leave the files to the host.
class LasPageStore {
  public:
    /// `params` outlives this object.
    explicit LasPageStore(AddFilesParams& params) : params_(params) {}

    /// Brings the files into the open mode wanted, saves the options and fills the record, with the rows in
    /// the order that the grid shows them (`order`: indices of rows, each once). Nothing changes (rows,
    /// options, record) unless the result says Succeeded. Rows without a readable file stay listed but are
    /// not written. What an earlier Store wrote is replaced.
    LasReopened Store(std::vector<LasRow>& rows, std::span<const std::size_t> order,
                      const LasPageOptions& options, const OptionStore& store, Kst::ProgressIf& progress);

    /// Makes the record what it was before the last Store; without effect when nothing is stored.
    void Withdraw();

    bool IsStored() const { return before_.has_value(); }

    /// The dialog has ended. When the results are in the record, the files now belong to the host and the
    /// rows let go of them; else the rows keep them.
    void HandOver(std::vector<LasRow>& rows);

  private:
    /// The members of the record that this page writes.
    struct Results {
        FilesByFolder files;
        std::map<std::wstring, LasFileInfo*> details;
        std::map<std::wstring, std::wstring> layers;
        bool openSetting = false;
        bool loadSetting = false;
        bool append = false;
        std::uint16_t thinning = 0;
        std::int32_t pyramidType = 0;
        bool convertExistingQvr = false;
        std::int32_t backupOption = 0;
        bool overwritePending = false;
        bool reCreate = false;
        bool ignoreIncompatibleCrs = false;
        bool loadCorruptFiles = false;
    };

    static Results Read(const AddFilesParams& params);
    static void Write(Results&& results, AddFilesParams& params) noexcept;
    static void AddFile(const LasRow& row, Results& results);
    static void SetOptions(const LasPageOptions& options, Results& results);

    AddFilesParams& params_;
    std::optional<Results> before_;
};

}  // namespace orvex
