#include "host/app/RecordText.h"

#include <map>

#include "host/app/RecordFiles.h"
#include "host/dem/DemConversion.h"
#include "orvexcommon/AddFilesParams.h"
#include "orvexcommon/LasFileInfo.h"
#include "orvexcommon/RasterFileInfo.h"
#include "support/Format.h"
#include "support/NaturalOrder.h"
#include "support/Text.h"

namespace orvex {

namespace {

std::wstring YesNo(bool value) {
    return Text(value ? 40830_lsid : 40831_lsid);
}

void Option(std::wstring& text, StringId caption, const std::wstring& value) {
    text += L"  " + Text(caption) + L": " + value + L"\n";
}

std::wstring LasFacts(const AddFilesParams& record, const std::wstring& path) {
    const auto details = record.lasFileDetails.find(path);
    if (details == record.lasFileDetails.end() || details->second == nullptr) {
        return {};
    }
    const LasFileInfo& file = *details->second;
    std::wstring facts = FormatText(Text(40832_lsid), {file.Version() / 10, file.Version() % 10,
                                                       file.PointFormat(), file.GetPointCount()});
    facts += L", " + Text(file.IsReadOnly() ? 40833_lsid : 40834_lsid);
    const std::wstring opened = FileNameOf(file.FileName());
    return opened == FileNameOf(path) ? facts : facts + L" (" + opened + L")";
}

std::wstring RasterFactsText(const AddFilesParams& record, const std::wstring& path) {
    const auto details = record.rasterFileDetails.find(path);
    if (details == record.rasterFileDetails.end() || details->second == nullptr) {
        return {};
    }
    const RasterProperties& raster = details->second->Properties();
    std::wstring facts = raster.driver.empty()
                             ? std::wstring()
                             : raster.driver + (details->second->IsBigTiff() ? L" (BigTIFF), " : L", ");
    facts += FormatText(Text(41427_lsid), {raster.width, raster.height, raster.bands});
    const bool hasPlace = raster.transform || raster.extent;
    return hasPlace ? facts : facts + L", " + Text(41432_lsid);
}

std::wstring NoFacts(const AddFilesParams&, const std::wstring&) {
    return {};
}

/// What a record says of the files of one kind, beside its options.
struct FileKindOfRecord {
    StringId heading;
    const FilesByFolder& files;
    const std::map<std::wstring, std::wstring>& layerOfFile;
    const std::map<std::wstring, std::wstring>& existingLayers;
    std::wstring (*factsOf)(const AddFilesParams& record, const std::wstring& path);
};

std::wstring FilesText(const AddFilesParams& record, const FileKindOfRecord& kind) {
    std::size_t files = 0;
    std::wstring text;
    for (const auto& [folder, names] : kind.files) {
        text += folder + L"\n";
        for (const std::wstring& name : names) {
            const std::wstring facts = kind.factsOf(record, JoinPath(folder, name));
            text += L"  " + name + (facts.empty() ? facts : L"  " + facts) + L"\n";
        }
        files += names.size();
    }
    return FormatText(Text(kind.heading), {files, kind.files.size()}) + L"\n" + text;
}

std::wstring LayersText(const FileKindOfRecord& kind) {
    std::map<std::wstring, std::size_t, decltype(&NaturalLess)> filesOfLayer(&NaturalLess);
    for (const auto& [path, layer] : kind.layerOfFile) {
        ++filesOfLayer[layer];
    }
    std::wstring text = Text(40836_lsid) + L"\n";
    for (const auto& [layer, files] : filesOfLayer) {
        const bool existing = kind.existingLayers.contains(layer);
        text += L"  " + FormatText(Text(existing ? 40837_lsid : 40838_lsid), {layer, files}) + L"\n";
    }
    return text;
}

std::wstring PyramidName(std::int32_t type) {
    switch (type) {
        case 1:
            return Text(40840_lsid);
        case 2:
            return Text(40841_lsid);
        default:
            return Text(40842_lsid);
    }
}

std::wstring BackupName(std::int32_t option) {
    switch (option) {
        case 0:
            return Text(40843_lsid);
        case 1:
            return Text(40844_lsid);
        default:
            return Text(40845_lsid);
    }
}

std::wstring LasOptions(const AddFilesParams& record) {
    std::wstring text = Text(40846_lsid) + L"\n";
    Option(text, 40847_lsid, Text(record.lasOpenSetting ? 40834_lsid : 40833_lsid));
    Option(text, 40848_lsid, Text(record.lasLoadSetting ? 40849_lsid : 40850_lsid));
    Option(text, 40851_lsid, YesNo(record.lasAppend));
    Option(text, 40852_lsid, YesNo(record.lasIgnoreIncompatibleCrs));
    Option(text, 40853_lsid, YesNo(record.lasLoadCorruptFiles));
    Option(text, 40854_lsid, FormatText(L"%u", {record.lasThinning}));
    Option(text, 40855_lsid, PyramidName(record.lasPyramidType));
    Option(text, 40856_lsid, YesNo(record.convertExistingQvr));
    Option(text, 40857_lsid, BackupName(record.orvexLasBackupOption));
    Option(text, 40858_lsid, YesNo(record.reCreateOrvexLas));
    return text;
}

std::wstring RasterOptions(const AddFilesParams& record) {
    std::wstring text = Text(40846_lsid) + L"\n";
    Option(text, 40851_lsid, YesNo(record.rasterAppend));
    Option(text, 41433_lsid, YesNo(record.rasterPyramid));
    return text;
}

std::wstring DemOptions(const AddFilesParams& record) {
    std::wstring text = Text(40846_lsid) + L"\n";
    Option(text, 40847_lsid, Text(record.demOpenReadWrite ? 40834_lsid : 40833_lsid));
    Option(text, 40851_lsid, YesNo(record.demAppend));
    Option(text, 41434_lsid, YesNo(record.demIgnoreCrs));
    Option(text, 41435_lsid, FormatText(L"1.%d", {MinorVersionOfItem(record.demLasVersion)}));
    Option(text, 41436_lsid, FormatText(L"%d", {record.demPointFormat}));
    Option(text, 40854_lsid, FormatText(L"%u", {record.demThinning}));
    Option(text, 41437_lsid, record.demLasFolder);
    // Said as it is: this host keeps the choice, but has nothing yet that builds them.
    Option(text, 41433_lsid, record.demPyramid ? Text(41438_lsid) : YesNo(false));
    return text;
}

}  // namespace

std::wstring RecordText(const AddFilesParams& record) {
    const FileKindOfRecord las{40835_lsid, record.lasFiles, record.lasFileLayers, record.existingLasLayers,
                               LasFacts};
    const FileKindOfRecord rasters{41439_lsid, record.rasterFiles, record.rasterFileLayers,
                                   record.existingRasterLayers, RasterFactsText};
    const FileKindOfRecord dems{41440_lsid, record.demFiles, record.demFileLayers, record.existingLasLayers,
                                NoFacts};
    std::wstring text;
    const auto append = [&](const FileKindOfRecord& kind, std::wstring (*options)(const AddFilesParams&)) {
        if (!kind.files.empty()) {
            text += (text.empty() ? L"" : L"\n") + FilesText(record, kind) + L"\n" + LayersText(kind) +
                    L"\n" + options(record);
        }
    };
    append(las, LasOptions);
    append(rasters, RasterOptions);
    append(dems, DemOptions);
    return text.empty() ? Text(40859_lsid) + L"\n" : text;
}

}  // namespace orvex
