#include "las/page/LasPageStore.h"

#include <utility>

#include "support/Text.h"

namespace orvex {

LasReopened LasPageStore::Store(std::vector<LasRow>& rows, std::span<const std::size_t> order,
                                const LasPageOptions& options, const OptionStore& store,
                                Kst::ProgressIf& progress) {
    LasReopened reopened = ReopenFiles(rows, options.readWrite, progress);
    if (!reopened.Succeeded()) {
        return reopened;
    }
    Withdraw();
    SaveLasPageOptions(store, options);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (reopened.files[i] != nullptr) {
            rows[i].inspection.file = std::move(reopened.files[i]);
        }
    }
    Results before = Read(params_);
    Results results = before;
    for (const std::size_t index : order) {
        AddFile(rows[index], results);
    }
    SetOptions(options, results);
    Write(std::move(results), params_);
    before_ = std::move(before);
    return reopened;
}

void LasPageStore::Withdraw() {
    if (before_.has_value()) {
        Write(std::move(*before_), params_);
        before_.reset();
    }
}

void LasPageStore::HandOver(std::vector<LasRow>& rows) {
    if (!before_.has_value()) {
        return;
    }
    for (LasRow& row : rows) {
        static_cast<void>(row.inspection.file.release());  // the record holds its address
    }
    before_.reset();
}

void LasPageStore::AddFile(const LasRow& row, Results& results) {
    LASFile* file = row.inspection.file.get();
    if (file == nullptr) {
        return;
    }
    // The file that was chosen; the details name the one that is open.
    const std::wstring& path = row.inspection.path;
    results.files[FolderOf(path)].push_back(FileNameOf(path));
    results.details[path] = file;
    results.layers[path] = row.layer;
}

void LasPageStore::SetOptions(const LasPageOptions& options, Results& results) {
    results.openSetting = options.readWrite;
    results.loadSetting = options.footprintsOnly;
    results.append = options.append;
    results.thinning = static_cast<std::uint16_t>(options.thinning);
    results.pyramidType = static_cast<std::int32_t>(options.pyramidType);
    results.convertExistingQvr = options.convertExistingQvr;
    results.backupOption = static_cast<std::int32_t>(options.backup);
    results.overwritePending = options.convertExistingQvr &&
                               options.pyramidType == LasPyramidType::OrvexLas &&
                               options.backup == LasBackupOption::Overwrite;
    results.reCreate = options.reCreateOrvexLas;
    results.ignoreIncompatibleCrs = options.ignoreIncompatibleCrs;
    results.loadCorruptFiles = options.loadCorruptFiles;
}

LasPageStore::Results LasPageStore::Read(const AddFilesParams& params) {
    return {params.lasFiles,
            params.lasFileDetails,
            params.lasFileLayers,
            params.lasOpenSetting,
            params.lasLoadSetting,
            params.lasAppend,
            params.lasThinning,
            params.lasPyramidType,
            params.convertExistingQvr,
            params.orvexLasBackupOption,
            params.orvexLasOverwritePending,
            params.reCreateOrvexLas,
            params.lasIgnoreIncompatibleCrs,
            params.lasLoadCorruptFiles};
}

void LasPageStore::Write(Results&& results, AddFilesParams& params) noexcept {
    params.lasFiles = std::move(results.files);
    params.lasFileDetails = std::move(results.details);
    params.lasFileLayers = std::move(results.layers);
    params.lasOpenSetting = results.openSetting;
    params.lasLoadSetting = results.loadSetting;
    params.lasAppend = results.append;
    params.lasThinning = results.thinning;
    params.lasPyramidType = results.pyramidType;
    params.convertExistingQvr = results.convertExistingQvr;
    params.orvexLasBackupOption = results.backupOption;
    params.orvexLasOverwritePending = results.overwritePending;
    params.reCreateOrvexLas = results.reCreate;
    params.lasIgnoreIncompatibleCrs = results.ignoreIncompatibleCrs;
    params.lasLoadCorruptFiles = results.loadCorruptFiles;
}

}  // namespace orvex
