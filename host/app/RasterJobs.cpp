#include "host/app/RasterJobs.h"

#include <QFileInfo>
#include <algorithm>
#include <map>

#include "host/app/PartProgress.h"
#include "host/dem/HostGdal.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/QtText.h"
#include "support/TemporaryFile.h"
#include "support/Text.h"

namespace orvex {

namespace {

constexpr int kCoarsest = 256;  ///< pixels on the longer side of the coarsest overview

int CPL_STDCALL Report(double share, const char*, void* data) {
    PartProgress& progress = *static_cast<PartProgress*>(data);
    progress.SetShare(share);
    return progress.IsCancelled() ? FALSE : TRUE;
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

/// A file that is removed at the end, unless it has been renamed by then.
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

[[noreturn]] void Fail(const std::wstring& reason) {
    throw LDataError(reason.empty() ? Text(text::kPyramidsUnreadable) : reason);
}

GDALDatasetUniquePtr MakeStandIn(GDALDataset& raster, const std::wstring& path) {
    const GdalErrorScope errors;
    auto* driver = GetGDALDriverManager()->GetDriverByName("VRT");
    GDALDatasetUniquePtr dataset(driver == nullptr ? nullptr
                                                   : driver->CreateCopy(ToUtf8(path).c_str(), &raster, FALSE,
                                                                        nullptr, nullptr, nullptr));
    if (dataset == nullptr) {
        Fail(FailureReason(errors));
    }
    // The overviews do not tell the place, and of some coordinate systems writing it into the stand-in fails.
    dataset->SetSpatialRef(nullptr);
    dataset->SetGCPs(0, nullptr, static_cast<const OGRSpatialReference*>(nullptr));
    return dataset;
}

/// Builds the levels of a stand-in for the raster, so that they get a name of their own until they are
/// complete. False when the user stopped it.
bool BuildLevels(GDALDataset& raster, const std::wstring& standIn, PartProgress& progress) {
    GDALDatasetUniquePtr dataset = MakeStandIn(raster, standIn);
    const GdalErrorScope errors;
    const bool hasPalette = raster.GetRasterBand(1)->GetColorTable() != nullptr;
    const CPLConfigOptionSetter compress("COMPRESS_OVERVIEW", "DEFLATE", false);
    const CPLConfigOptionSetter big("BIGTIFF_OVERVIEW", "IF_SAFER", false);
    std::vector<int> levels = LevelsFor(raster);
    const CPLErr result =
        dataset->BuildOverviews(hasPalette ? "NEAREST" : "AVERAGE", static_cast<int>(levels.size()),
                                levels.data(), 0, nullptr, Report, &progress);
    if (progress.WasCancelled()) {
        return false;
    }
    dataset.reset();
    if (result != CE_None || errors.HasError()) {
        Fail(FailureReason(errors));
    }
    return true;
}

std::wstring TakenText(const std::wstring& target) {
    return FormatText(Text(text::kPyramidsFileExists), {FileNameOf(target)});
}

/// Why a raster could not be described.
std::wstring ReasonForRefusal(const std::wstring& path) {
    SetUpGdal();
    std::wstring cause;
    OpenRasterFile(path, cause);
    return cause.empty() ? Text(text::kRasterDamagedOrUnsupported) : cause;
}

enum class Built { Yes, NotNeeded, Stopped };

Built BuildOne(const std::wstring& path, PartProgress& progress) {
    const GdalErrorScope errors;
    const NoNetwork noNetwork;
    std::wstring cause;
    const GDALDatasetUniquePtr raster = OpenRasterFile(path, cause);
    if (raster == nullptr || raster->GetRasterCount() < 1) {
        Fail(cause);
    }
    if (LongestSide(*raster) <= kSmallRaster || raster->GetRasterBand(1)->GetOverviewCount() > 0) {
        return Built::NotNeeded;
    }
    const std::wstring target = path + L".ovr";
    if (KindOf(target) != FileKind::Missing) {
        throw LDataError(TakenText(target));
    }
    const TemporaryFile standIn(path);
    const Scratch levels(standIn.Path() + L".ovr");
    if (!BuildLevels(*raster, standIn.Path(), progress)) {
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

std::vector<ReportPrompt::Section> SectionsOf(const std::vector<FileFailure>& failures) {
    std::map<std::wstring, std::vector<std::wstring>> filesOfCause;
    for (const auto& [path, cause] : failures) {
        filesOfCause[cause].push_back(path);
    }
    std::vector<ReportPrompt::Section> sections;
    sections.reserve(filesOfCause.size());
    for (auto& [cause, files] : filesOfCause) {
        sections.push_back(
            {FormatText(Text(text::kFilesWithCause), {cause, files.size()}), std::move(files)});
    }
    return sections;
}

ReportPrompt::Section SectionOf(StringId heading, const std::vector<FileFailure>& failures) {
    ReportPrompt::Section section{Text(heading), {}};
    for (const auto& [path, cause] : failures) {
        // Some causes are whole sentences about the file.
        const bool namesFile = cause.find(path) != std::wstring::npos;
        section.lines.push_back(namesFile ? cause : FormatText(L"%s: %s", {path, cause}));
    }
    return section;
}

CheckedFiles CheckFiles(const FilesToCheck& files, Kst::ProgressIf& progress) {
    CheckedFiles checked;
    progress.SetRange(files.read.size() + files.write.size() + files.refused.size());
    std::uint64_t done = 0;
    const auto each = [&](const std::vector<std::wstring>& paths, const auto& check) {
        for (const std::wstring& path : paths) {
            if (progress.IsCancelled()) {
                return;
            }
            progress.SetText(FileNameOf(path));
            check(path);
            progress.SetPosition(++done);
        }
    };
    each(files.read, [&](const std::wstring& path) {
        if (!QFileInfo(ToQString(path)).isReadable()) {
            checked.unreadable.insert(path);
        }
    });
    each(files.write, [&](const std::wstring& path) {
        checked.canWriteAll = checked.canWriteAll && QFileInfo(ToQString(path)).isWritable();
    });
    each(files.refused,
         [&](const std::wstring& path) { checked.reasonOfRefused[path] = ReasonForRefusal(path); });
    return checked;
}

OverviewResult BuildOverviews(const std::vector<std::wstring>& paths, Kst::ProgressIf& progress) {
    SetUpGdal();
    OverviewResult result;
    progress.SetRange(kStepsPerFile * paths.size());
    for (std::size_t i = 0; i < paths.size() && !result.stopped; ++i) {
        progress.SetText(FileNameOf(paths[i]));
        PartProgress part(progress, i);
        try {
            const Built built = BuildOne(paths[i], part);
            result.built += built == Built::Yes ? 1 : 0;
            result.notNeeded += built == Built::NotNeeded ? 1 : 0;
            result.stopped = built == Built::Stopped;
        } catch (...) {
            result.failures.push_back({paths[i], CurrentExceptionText()});
        }
        result.stopped = result.stopped || progress.IsCancelled();
    }
    return result;
}

DemImport::DemImport(std::vector<AssignedFile> dems, DemConversionOptions options, bool readOnly)
    : dems_(std::move(dems)), options_(std::move(options)), readOnly_(readOnly) {}

void DemImport::Run(Kst::ProgressIf& progress) {
    SetUpGdal();
    progress.SetRange(kStepsPerFile * dems_.size());
    for (std::size_t i = 0; i < dems_.size() && !Result().stopped; ++i) {
        progress.SetText(
            FormatText(Text(text::kDemConversionProgress), {i + 1, dems_.size(), FileNameOf(dems_[i].path)}));
        PartProgress part(progress, i);
        ConvertOne(dems_[i], part);
    }
}

void DemImport::ConvertOne(const AssignedFile& dem, Kst::ProgressIf& progress) {
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

void DemImport::Keep(const AssignedFile& dem, const DemConversionResult& converted) {
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
