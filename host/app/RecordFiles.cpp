#include "host/app/RecordFiles.h"

#include <map>
#include <span>

#include "host/app/PhotoJobs.h"
#include "host/app/RecordCloud.h"
#include "host/app/RecordFeatures.h"
#include "host/dem/DemConversion.h"
#include "orvexcommon/AddFilesParams.h"
#include "orvexcommon/LasFileInfo.h"
#include "orvexcommon/RasterFileInfo.h"
#include "support/Format.h"
#include "support/NaturalOrder.h"
#include "support/PathSet.h"
#include "support/QtText.h"
#include "support/Text.h"

namespace orvex {

std::wstring JoinPath(const std::wstring& folder, const std::wstring& name) {
    if (folder.empty()) {
        return name;
    }
    const bool separated = folder.back() == L'/' || folder.back() == L'\\';
    return NativePath(separated ? folder + name : folder + L'/' + name);
}

std::size_t CountFiles(const std::map<std::wstring, std::vector<std::wstring>>& files) {
    std::size_t count = 0;
    for (const auto& [folder, names] : files) {
        count += names.size();
    }
    return count;
}

namespace {

/// The details of a file; null when it has none.
template <typename Info>
const Info* DetailsOf(const std::map<std::wstring, Info*>& details, const std::wstring& path) {
    const auto found = details.find(path);
    return found == details.end() ? nullptr : found->second;
}

LayerFile Describe(const LasFileInfo* details) {
    LayerFile file;
    if (details != nullptr) {
        file.points = details->GetPointCount();
        file.min = details->Minimum();
        file.max = details->Maximum();
        file.version = details->Version();
        file.pointFormat = details->PointFormat();
        file.readOnly = details->IsReadOnly();
    }
    return file;
}

RasterInfo Describe(const RasterProperties& properties) {
    return {properties.width,  properties.height, properties.bands,
            properties.driver, properties.extent, properties.transform};
}

PathSet LasFilesIn(const Project& project) {
    PathSet files;
    for (const std::wstring& path : project.PathsOf(LayerKind::Las)) {
        files.Insert(path);
    }
    return files;
}

/// The compatibility group that each LAS layer has, or gets with its first file.
class LayerGroups {
  public:
    explicit LayerGroups(const Project& project) {
        for (const Layer& layer : project.layers) {
            if (layer.kind == LayerKind::Las) {
                groupOfLayer_.emplace(layer.name, groups_.Of(layer.wkt));
            }
        }
    }

    bool Fits(const std::wstring& layer, const std::string& wkt) {
        const std::string& group = groups_.Of(wkt);
        return groupOfLayer_.emplace(layer, group).first->second == group;
    }

  private:
    CrsGroups groups_;
    std::map<std::wstring, std::string> groupOfLayer_;
};

using Record = const AddFilesParams&;
using TextMap = std::map<std::wstring, std::wstring>;

/// One line of the options in the text of a record.
struct RecordOption {
    StringId caption;
    std::wstring (*value)(Record record);
};

template <bool AddFilesParams::*kMember>
std::wstring YesNo(Record record) {
    return Text(record.*kMember ? text::kRecordYes : text::kRecordNo);
}

template <bool AddFilesParams::*kMember>
std::wstring Access(Record record) {
    return Text(record.*kMember ? text::kRecordReadWrite : text::kRecordReadOnly);
}

template <auto kMember>
std::wstring Number(Record record) {
    return std::to_wstring(record.*kMember);
}

/// Text of a choice counted from 0; the last one for any other number.
std::wstring Choice(std::int32_t choice, std::initializer_list<StringId> texts) {
    const auto last = static_cast<std::int32_t>(texts.size()) - 1;
    return Text(texts.begin()[choice >= 0 && choice < last ? choice : last]);
}

/// An option that asks for OrvexLAS files.
template <bool AddFilesParams::*kMember>
std::wstring NotWritten(Record record) {
    const std::wstring value = YesNo<kMember>(record);
    return record.*kMember ? FormatText(Text(text::kRecordOrvexLasNotWritten), {value}) : value;
}

std::wstring PyramidType(Record record) {
    const std::wstring type =
        Choice(record.lasPyramidType - 1,
               {text::kRecordPyramidOrvexLas, text::kRecordPyramidQvr, text::kRecordPyramidNone});
    return record.lasPyramidType == kPyramidOrvexLas
               ? FormatText(Text(text::kRecordOrvexLasNotWritten), {type})
               : type;
}

constexpr RecordOption kLasOptions[] = {
    {text::kRecordOpen, Access<&AddFilesParams::lasOpenSetting>},
    {text::kRecordLoad,
     [](Record record) {
         return Text(record.lasLoadSetting ? text::kRecordLoadFootprints : text::kRecordLoadFiles);
     }},
    {text::kRecordAppend, YesNo<&AddFilesParams::lasAppend>},
    {text::kRecordIgnoreIncompatibleCrs, YesNo<&AddFilesParams::lasIgnoreIncompatibleCrs>},
    {text::kRecordLoadCorruptFiles, YesNo<&AddFilesParams::lasLoadCorruptFiles>},
    {text::kRecordThinning, Number<&AddFilesParams::lasThinning>},
    {text::kRecordPyramid, PyramidType},
    {text::kRecordConvertQvr, NotWritten<&AddFilesParams::convertExistingQvr>},
    {text::kRecordOriginalLasFiles,
     [](Record record) {
         return Choice(record.orvexLasBackupOption,
                       {text::kRecordOverwrite, text::kRecordBackup, text::kRecordBackupCompress});
     }},
    {text::kRecordRecreateOrvexLas, NotWritten<&AddFilesParams::reCreateOrvexLas>},
};

constexpr RecordOption kRasterOptions[] = {
    {text::kRecordAppend, YesNo<&AddFilesParams::rasterAppend>},
    {text::kRecordBuildPyramids, YesNo<&AddFilesParams::rasterPyramid>},
};

constexpr RecordOption kDemOptions[] = {
    {text::kRecordOpen, Access<&AddFilesParams::demOpenReadWrite>},
    {text::kRecordAppend, YesNo<&AddFilesParams::demAppend>},
    {text::kRecordIgnoreCrs, YesNo<&AddFilesParams::demIgnoreCrs>},
    {text::kRecordLasVersion,
     [](Record record) { return L"1." + std::to_wstring(MinorVersionOfItem(record.demLasVersion)); }},
    {text::kRecordPointFormat, Number<&AddFilesParams::demPointFormat>},
    {text::kRecordThinning, Number<&AddFilesParams::demThinning>},
    {text::kRecordOutputFolder, [](Record record) { return record.demLasFolder; }},
    // The host keeps this choice but does not build pyramids of converted files; the text says so.
    {text::kRecordBuildPyramids,
     [](Record record) { return Text(record.demPyramid ? text::kRecordPyramidNotBuilt : text::kRecordNo); }},
};

std::wstring LasFacts(Record record, const std::wstring& path) {
    const LasFileInfo* const details = DetailsOf(record.lasFileDetails, path);
    if (details == nullptr) {
        return {};
    }
    const LasFileInfo& file = *details;
    std::wstring facts = FormatText(Text(text::kRecordLasFile), {file.Version() / 10, file.Version() % 10,
                                                                 file.PointFormat(), file.GetPointCount()});
    facts += L", " + Text(file.IsReadOnly() ? text::kRecordReadOnly : text::kRecordReadWrite);
    const std::wstring opened = FileNameOf(file.FileName());
    return opened == FileNameOf(path) ? facts : facts + L" (" + opened + L")";
}

std::wstring RasterFacts(Record record, const std::wstring& path) {
    const RasterFileInfo* const details = DetailsOf(record.rasterFileDetails, path);
    if (details == nullptr) {
        return Text(text::kRecordNotDescribed);
    }
    const RasterProperties& raster = details->Properties();
    std::wstring facts = raster.driver.empty()
                             ? std::wstring()
                             : raster.driver + (details->IsBigTiff() ? L" (BigTIFF), " : L", ");
    facts += FormatText(Text(text::kRecordRaster), {raster.width, raster.height, raster.bands});
    const bool hasPlace = raster.transform || raster.extent;
    return hasPlace ? facts : facts + L", " + Text(text::kRecordRasterWithoutPlace);
}

/// The dialog assigns the files that it could describe to layers.
std::wstring DemFacts(Record record, const std::wstring& path) {
    return record.demFileLayers.contains(path) ? std::wstring() : Text(text::kRecordNotDescribed);
}

/// Where a record holds the files of one kind, and what its text says of them.
struct RecordKind {
    FilesByFolder AddFilesParams::*files;
    TextMap AddFilesParams::*layerOfFile;
    TextMap AddFilesParams::*existingLayers;
    StringId defaultLayer;  ///< of files that the dialog assigned to none
    StringId heading;
    std::wstring (*factsOf)(Record record, const std::wstring& path);
    std::span<const RecordOption> options;
};

constexpr RecordKind kLas = {&AddFilesParams::lasFiles,
                             &AddFilesParams::lasFileLayers,
                             &AddFilesParams::existingLasLayers,
                             text::kDefaultLasLayer,
                             text::kRecordLasFiles,
                             LasFacts,
                             kLasOptions};
constexpr RecordKind kRasters = {&AddFilesParams::rasterFiles,
                                 &AddFilesParams::rasterFileLayers,
                                 &AddFilesParams::existingRasterLayers,
                                 text::kDefaultRasterLayer,
                                 text::kRecordRasterFiles,
                                 RasterFacts,
                                 kRasterOptions};
constexpr RecordKind kDems = {&AddFilesParams::demFiles,
                              &AddFilesParams::demFileLayers,
                              &AddFilesParams::existingLasLayers,
                              text::kDefaultDemLayer,
                              text::kRecordDemFiles,
                              DemFacts,
                              kDemOptions};

/// Files in the order of the grid, with the layers that the dialog assigned them to.
std::vector<AssignedFile> FilesOf(Record record, const RecordKind& kind) {
    const TextMap& layers = record.*kind.layerOfFile;
    std::vector<AssignedFile> files;
    for (const auto& [folder, names] : record.*kind.files) {
        for (const std::wstring& name : names) {
            const std::wstring path = JoinPath(folder, name);
            const auto layer = layers.find(path);
            const bool isAssigned = layer != layers.end() && !layer->second.empty();
            files.push_back({path, isAssigned ? layer->second : Text(kind.defaultLayer)});
        }
    }
    return files;
}

std::wstring FilesText(Record record, const RecordKind& kind) {
    std::wstring text;
    for (const auto& [folder, names] : record.*kind.files) {
        text += folder + L"\n";
        for (const std::wstring& name : names) {
            const std::wstring facts = kind.factsOf(record, JoinPath(folder, name));
            text += L"  " + name + (facts.empty() ? facts : L"  " + facts) + L"\n";
        }
    }
    return FormatText(Text(kind.heading), {CountFiles(record.*kind.files), (record.*kind.files).size()}) +
           L"\n" + text;
}

std::wstring LayersText(Record record, const RecordKind& kind) {
    std::map<std::wstring, std::size_t, decltype(&NaturalLess)> filesOfLayer(&NaturalLess);
    for (const auto& [path, layer] : record.*kind.layerOfFile) {
        ++filesOfLayer[layer];
    }
    std::wstring text = Text(text::kRecordLayers) + L"\n";
    for (const auto& [layer, files] : filesOfLayer) {
        const bool existing = (record.*kind.existingLayers).contains(layer);
        text +=
            L"  " +
            FormatText(Text(existing ? text::kRecordLayerAppended : text::kRecordLayerNew), {layer, files}) +
            L"\n";
    }
    return text;
}

std::wstring OptionsText(Record record, const RecordKind& kind) {
    std::wstring text = Text(text::kRecordOptions) + L"\n";
    for (const RecordOption& option : kind.options) {
        text += L"  " + Text(option.caption) + L": " + option.value(record) + L"\n";
    }
    return text;
}

}  // namespace

std::vector<NewFile> LasFilesOf(const AddFilesParams& record, const LeftOutFiles& leftOut) {
    std::vector<NewFile> files;
    for (const auto& [path, layer] : FilesOf(record, kLas)) {
        if (leftOut.contains(path)) {
            continue;
        }
        const LasFileInfo* details = DetailsOf(record.lasFileDetails, path);
        NewFile& added = files.emplace_back();
        added.layer = layer;
        added.wkt = details == nullptr ? std::string() : details->CrsWkt();
        added.file = Describe(details);
        added.file.path = path;
        added.file.footprintOnly = record.lasLoadSetting;
        added.file.thinning = record.lasThinning;
        if (details != nullptr && details->FileName() != path) {
            added.file.opened = details->FileName();
        }
    }
    return files;
}

std::vector<NewFile> RasterFilesOf(const AddFilesParams& record) {
    std::vector<NewFile> files;
    for (const auto& [path, layer] : FilesOf(record, kRasters)) {
        if (const RasterFileInfo* details = DetailsOf(record.rasterFileDetails, path)) {
            NewFile& added = files.emplace_back();
            added.layer = layer;
            added.file.path = path;
            added.wkt = details->Properties().wkt;
            added.file.raster = Describe(details->Properties());
        }
    }
    return files;
}

std::vector<std::wstring> UndescribedRastersOf(const AddFilesParams& record) {
    std::vector<std::wstring> paths;
    for (const AssignedFile& file : FilesOf(record, kRasters)) {
        if (!record.rasterFileDetails.contains(file.path)) {
            paths.push_back(file.path);
        }
    }
    return paths;
}

std::vector<AssignedFile> DemFilesOf(const AddFilesParams& record) {
    return FilesOf(record, kDems);
}

void DeleteDetails(AddFilesParams& record) {
    for (const auto& [path, details] : record.lasFileDetails) {
        delete details;
    }
    for (const auto& [path, details] : record.rasterFileDetails) {
        delete details;
    }
    record.lasFileDetails.clear();
    record.rasterFileDetails.clear();
}

LidarReport CheckLidar(const Project& project, const AddFilesParams& record,
                       const std::set<std::wstring>& unreadable) {
    LidarReport findings;
    const PathSet known = LasFilesIn(project);
    LayerGroups groups(project);
    const std::vector<AssignedFile> files = FilesOf(record, kLas);
    for (const auto& [path, layer] : files) {
        if (known.Contains(path)) {
            findings.alreadyThere = true;
            findings.leftOut[path] = Text(text::kLeftOutInProject);
            continue;
        }
        if (unreadable.contains(path)) {
            findings.unreadable = true;
            findings.leftOut[path] = Text(text::kLeftOutUnreadable);
            continue;
        }
        const LasFileInfo* const details = DetailsOf(record.lasFileDetails, path);
        if (details == nullptr) {
            continue;
        }
        if (details->IsDamaged() && !record.lasLoadCorruptFiles) {
            findings.leftOut[path] = FormatText(Text(text::kLeftOutErrors), {Text(text::kLoadCorruptFiles)});
            continue;
        }
        findings.appending = findings.appending || record.existingLasLayers.contains(layer);
        findings.crsDiffers = findings.crsDiffers || !groups.Fits(layer, details->CrsWkt());
    }
    findings.nothingLeft = findings.leftOut.size() == files.size();
    return findings;
}

std::wstring RecordText(const AddFilesParams& record) {
    std::wstring text;
    for (const RecordKind& kind : {kLas, kRasters, kDems}) {
        if (!(record.*kind.files).empty()) {
            text += (text.empty() ? L"" : L"\n") + FilesText(record, kind) + L"\n" +
                    LayersText(record, kind) + L"\n" + OptionsText(record, kind);
        }
    }
    if (!record.featureFiles.empty()) {
        text += (text.empty() ? L"" : L"\n") + FeaturesText(record);
    }
    if (const std::wstring photos = PhotosText(record); !photos.empty()) {
        text += (text.empty() ? L"" : L"\n") + photos;
    }
    if (!record.presignedUrlLayers.empty() || !record.cloudLasLayers.empty()) {
        text += (text.empty() ? L"" : L"\n") + CloudText(record);
    }
    return text.empty() ? Text(text::kRecordEmpty) + L"\n" : text;
}

}  // namespace orvex
