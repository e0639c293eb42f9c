#include "host/app/DemImport.h"

#include <algorithm>

#include "crs/GdalSetup.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {

namespace {

constexpr std::uint64_t kStepsPerDem = 1000;

/// The progress of one file as its part of all.
class PartProgress final : public Kst::ProgressIf {
  public:
    PartProgress(Kst::ProgressIf& whole, std::uint64_t before) : whole_(whole), before_(before) {}

    void SetRange(std::uint64_t total) override { total_ = total; }
    void SetText(const std::wstring&) override {}  // which file it is says more
    void SetPosition(std::uint64_t done) override {
        const double share = total_ == 0 ? 0 : static_cast<double>(done) / static_cast<double>(total_);
        const auto steps = static_cast<std::uint64_t>(std::min(share, 1.0) * kStepsPerDem);
        whole_.SetPosition(before_ + steps);
    }
    bool IsCancelled() override { return whole_.IsCancelled(); }

  private:
    Kst::ProgressIf& whole_;
    std::uint64_t before_;
    std::uint64_t total_ = 0;
};

}  // namespace

DemImport::DemImport(std::vector<DemToImport> dems, DemConversionOptions options, bool readOnly)
    : dems_(std::move(dems)), options_(std::move(options)), readOnly_(readOnly) {}

void DemImport::Run(Kst::ProgressIf& progress) {
    EnsureGdal();
    progress.SetRange(kStepsPerDem * dems_.size());
    for (std::size_t i = 0; i < dems_.size() && !Result().stopped; ++i) {
        progress.SetPosition(kStepsPerDem * i);
        progress.SetText(FormatText(Text(41445_lsid), {i + 1, dems_.size(), FileNameOf(dems_[i].path)}));
        PartProgress part(progress, kStepsPerDem * i);
        ConvertOne(dems_[i], part);
    }
}

void DemImport::ConvertOne(const DemToImport& dem, Kst::ProgressIf& progress) {
    try {
        const auto converted = ConvertDem(dem.path, options_, progress);
        const std::lock_guard guard(lock_);
        if (converted) {
            Keep(dem, *converted);
        } else {
            result_.stopped = true;
        }
    } catch (...) {
        const std::lock_guard guard(lock_);
        result_.failures.push_back({dem.path, CurrentExceptionText()});
    }
}

void DemImport::Keep(const DemToImport& dem, const DemConversionResult& converted) {
    NewFile& added = result_.files.emplace_back();
    added.layer = dem.layer;
    added.wkt = converted.wkt;
    added.file.path = converted.lasPath;
    added.file.points = converted.points;
    added.file.min = converted.min;
    added.file.max = converted.max;
    added.file.version = 10 + options_.versionMinor;
    added.file.pointFormat = options_.pointFormat;
    added.file.readOnly = readOnly_;
    for (const std::wstring& warning : converted.warnings) {
        result_.warnings.push_back({converted.lasPath, warning});
    }
}

DemImportResult DemImport::Result() const {
    const std::lock_guard guard(lock_);
    return result_;
}

}  // namespace orvex
