#include "host/app/RasterPyramids.h"

#include <gdal_priv.h>

#include <algorithm>
#include <random>

#include "crs/GdalRaii.h"
#include "crs/GdalSetup.h"
#include "raster/RasterFindings.h"
#include "raster/RasterReader.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/GdalErrorScope.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {

namespace {

constexpr int kStepsPerRaster = 1000;
constexpr int kCoarsest = 256;  ///< pixels on the longer side of the coarsest level

/// Where one raster stands among all.
struct Step {
    Kst::ProgressIf& progress;
    std::uint64_t before;  ///< position of the progress when the raster began
    bool stopped = false;
};

int CPL_STDCALL Tell(double share, const char*, void* data) {
    Step& step = *static_cast<Step*>(data);
    step.progress.SetPosition(step.before +
                              static_cast<std::uint64_t>(kStepsPerRaster * std::clamp(share, 0.0, 1.0)));
    step.stopped = step.stopped || step.progress.IsCancelled();
    return step.stopped ? FALSE : TRUE;
}

int LongestSide(GDALDataset& raster) {
    return std::max(raster.GetRasterXSize(), raster.GetRasterYSize());
}

/// 2, 4, 8 ... until the longer side has kCoarsest pixels or less.
std::vector<int> LevelsFor(GDALDataset& raster) {
    std::vector<int> levels = {2};
    while (LongestSide(raster) / levels.back() > kCoarsest) {
        levels.push_back(2 * levels.back());
    }
    return levels;
}

/// A file that is removed at the end, unless it has been renamed until then.
class Scratch {
  public:
    explicit Scratch(std::wstring path) : path_(std::move(path)) {}
    ~Scratch() { RemoveFile(path_); }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    const std::wstring& Path() const { return path_; }

  private:
    std::wstring path_;
};

/// A name beside the raster that no other file has; the file of levels is made under it and "ovr".
std::wstring TemporaryName(const std::wstring& path) {
    std::random_device random;
    return FolderOf(path) + L"/.orvex-" + std::to_wstring(random()) + L".vrt";
}

[[noreturn]] void Fail(const GdalErrorScope& errors) {
    throw LDataError(PlainReason(errors.Messages()));
}

GDALDatasetUniquePtr MakeStandIn(GDALDataset& raster, const std::wstring& path) {
    const GdalErrorScope errors;
    auto* driver = GetGDALDriverManager()->GetDriverByName("VRT");
    GDALDatasetUniquePtr dataset(driver == nullptr ? nullptr
                                                   : driver->CreateCopy(ToUtf8(path).c_str(), &raster, FALSE,
                                                                        nullptr, nullptr, nullptr));
    if (dataset == nullptr) {
        Fail(errors);
    }
    // The levels do not tell the place, and of some coordinate systems writing it into the stand-in fails.
    dataset->SetSpatialRef(nullptr);
    dataset->SetGCPs(0, nullptr, static_cast<const OGRSpatialReference*>(nullptr));
    return dataset;
}

/// Builds the levels of a stand-in for the raster, so that they get a name of their own until they are
/// complete. False when the user stopped it.
bool BuildLevels(GDALDataset& raster, const std::wstring& standIn, Step& step) {
    GDALDatasetUniquePtr dataset = MakeStandIn(raster, standIn);
    const GdalErrorScope errors;
    const bool hasPalette = raster.GetRasterBand(1)->GetColorTable() != nullptr;
    const GdalOption compress("COMPRESS_OVERVIEW", "DEFLATE");
    const GdalOption big("BIGTIFF_OVERVIEW", "IF_SAFER");
    std::vector<int> levels = LevelsFor(raster);
    const CPLErr result =
        dataset->BuildOverviews(hasPalette ? "NEAREST" : "AVERAGE", static_cast<int>(levels.size()),
                                levels.data(), 0, nullptr, Tell, &step);
    if (step.stopped) {
        return false;
    }
    dataset.reset();
    if (result != CE_None || errors.HasError()) {
        Fail(errors);
    }
    return true;
}

std::wstring TakenText(const std::wstring& target) {
    return FormatText(Text(41426_lsid), {FileNameOf(target)});
}

enum class Built { Yes, NotNeeded, Stopped };

Built BuildOne(const std::wstring& path, Step& step) {
    const GdalErrorScope errors;
    const NoNetwork noNetwork;
    const GdalDataset opened = OpenRaster(path, errors);
    GDALDataset* raster = GDALDataset::FromHandle(opened.get());
    if (raster->GetRasterCount() < 1) {
        Fail(errors);
    }
    if (LongestSide(*raster) <= RasterPyramids::kSmallest ||
        raster->GetRasterBand(1)->GetOverviewCount() > 0) {
        return Built::NotNeeded;
    }
    const std::wstring target = path + L".ovr";
    if (KindOf(target) != FileKind::Missing) {
        throw LDataError(TakenText(target));
    }
    const Scratch standIn(TemporaryName(path));
    const Scratch levels(standIn.Path() + L".ovr");
    if (!BuildLevels(*raster, standIn.Path(), step)) {
        return Built::Stopped;
    }
    bool taken = false;
    if (const SystemError error = RenameToFreeName(levels.Path(), target, taken); error != 0) {
        // Perhaps another program has built the levels meanwhile.
        throw LDataError(taken ? TakenText(target) : SystemErrorText(error));
    }
    return Built::Yes;
}

}  // namespace

RasterPyramids::Result RasterPyramids::Build(const std::vector<std::wstring>& paths,
                                             Kst::ProgressIf& progress) {
    EnsureGdal();
    Result result;
    progress.SetRange(static_cast<std::uint64_t>(kStepsPerRaster) * paths.size());
    for (std::size_t i = 0; i < paths.size() && !result.stopped; ++i) {
        Step step{progress, static_cast<std::uint64_t>(kStepsPerRaster) * i};
        progress.SetPosition(step.before);
        progress.SetText(FileNameOf(paths[i]));
        try {
            const Built built = BuildOne(paths[i], step);
            result.built += built == Built::Yes ? 1 : 0;
            result.notNeeded += built == Built::NotNeeded ? 1 : 0;
            result.stopped = built == Built::Stopped;
        } catch (...) {
            const std::wstring reason = CurrentExceptionText();
            result.failures.push_back({paths[i], reason.empty() ? Text(41425_lsid) : reason});
        }
        result.stopped = result.stopped || progress.IsCancelled();
    }
    return result;
}

}  // namespace orvex
