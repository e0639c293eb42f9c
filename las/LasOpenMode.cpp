#include "las/LasOpenMode.h"

#include "las/LasFailure.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {

namespace {

/// Opens files one by one and collects the failures.
class Reopener {
  public:
    Reopener(bool readWrite, Kst::ProgressIf& progress) : readWrite_(readWrite), progress_(progress) {}

    /// The row's file in the requested mode; null if the open one will do, or after a failure.
    std::unique_ptr<LASFile> Reopen(const LasRow& row, LasReopened& result) {
        if (row.file == nullptr) {
            return nullptr;
        }
        try {
            return Open(row, result);
        } catch (...) {
            result.failures.push_back({row.path, PlainLasFailure(CurrentExceptionText())});
            return nullptr;
        }
    }

  private:
    std::unique_ptr<LASFile> Open(const LasRow& row, LasReopened& result) {
        const std::wstring& path = row.path;
        const LASFile& current = *row.file;
        std::wstring wanted = path;
        bool decompress = false;
        if (readWrite_ && OrvexUtilities::IsLAZFile(path)) {
            wanted = OrvexUtilities::GetLAZBuddyPath(path);
            decompress = OrvexUtilities::IsLAZNewer(path) || !OrvexUtilities::LAZEnabledLASFileExists(path);
        }
        if (!decompress && current.IsReadOnly() != readWrite_ && current.FileName() == wanted) {
            return nullptr;
        }
        progress_.SetText(Text(text::kLasReopeningProgress));
        if (decompress && !Decompress(path, wanted, result)) {
            return nullptr;
        }
        return LASFile::Open(wanted, !readWrite_, true);
    }

    bool Decompress(const std::wstring& lazPath, const std::wstring& lasPath, LasReopened& result) {
        if (!OrvexUtilities::IsLAZEnabled(lazPath)) {
            throw LDataError(Text(text::kLazFolderNotWritable));
        }
        std::wstring reason;
        if (OrvexUtilities::LAZDecompress(lazPath, lasPath, progress_, reason)) {
            return true;
        }
        if (!reason.empty()) {
            throw LDataError(reason);
        }
        result.stopped = true;
        return false;
    }

    bool readWrite_;
    Kst::ProgressIf& progress_;
};

}  // namespace

LasReopened ReopenFiles(std::span<const LasRow> rows, bool readWrite, Kst::ProgressIf& progress) {
    LasReopened result;
    result.files.reserve(rows.size());
    Reopener reopener(readWrite, progress);
    for (const LasRow& row : rows) {
        result.files.push_back(reopener.Reopen(row, result));
        result.stopped = result.stopped || progress.IsCancelled();
        if (result.stopped) {
            break;
        }
    }
    return result;
}

}  // namespace orvex
