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
    return Text(value ? text::kRecordYes : text::kRecordNo);
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
    std::wstring facts = FormatText(Text(text::kRecordLasFile), {file.Version() / 10, file.Version() % 10,
                                                                 file.PointFormat(), file.GetPointCount()});
    facts += L", " + Text(file.IsReadOnly() ? text::kRecordReadOnly : text::kRecordReadWrite);
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
    facts += FormatText(Text(text::kRecordRaster), {raster.width, raster.height, raster.bands});
    const bool hasPlace = raster.transform || raster.extent;
    return hasPlace ? facts : facts + L", " + Text(text::kRecordRasterWithoutPlace);
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
    std::wstring text = Text(text::kRecordLayers) + L"\n";
    for (const auto& [layer, files] : filesOfLayer) {
        const bool existing = kind.existingLayers.contains(layer);
        text +=
            L"  " +
            FormatText(Text(existing ? text::kRecordLayerAppended : text::kRecordLayerNew), {layer, files}) +
            L"\n";
    }
    return text;
}

std::wstring PyramidName(std::int32_t type) {
    switch (type) {
        case 1:
            return Text(text::kRecordPyramidOrvexLas);
        case 2:
            return Text(text::kRecordPyramidQvr);
        default:
            return Text(text::kRecordPyramidNone);
    }
}

std::wstring BackupName(std::int32_t option) {
    switch (option) {
        case 0:
            return Text(text::kRecordOverwrite);
        case 1:
            return Text(text::kRecordBackup);
        default:
            return Text(text::kRecordBackupCompress);
    }
}

std::wstring LasOptions(const AddFilesParams& record) {
    std::wstring text = Text(text::kRecordOptions) + L"\n";
    Option(text, text::kRecordOpen,
           Text(record.lasOpenSetting ? text::kRecordReadWrite : text::kRecordReadOnly));
    Option(text, text::kRecordLoad,
           Text(record.lasLoadSetting ? text::kRecordLoadFootprints : text::kRecordLoadFiles));
    Option(text, text::kRecordAppend, YesNo(record.lasAppend));
    Option(text, text::kRecordIgnoreIncompatibleCrs, YesNo(record.lasIgnoreIncompatibleCrs));
    Option(text, text::kRecordLoadCorruptFiles, YesNo(record.lasLoadCorruptFiles));
    Option(text, text::kRecordThinning, FormatText(L"%u", {record.lasThinning}));
    Option(text, text::kRecordPyramid, PyramidName(record.lasPyramidType));
    Option(text, text::kRecordConvertQvr, YesNo(record.convertExistingQvr));
    Option(text, text::kRecordOriginalLasFiles, BackupName(record.orvexLasBackupOption));
    Option(text, text::kRecordRecreateOrvexLas, YesNo(record.reCreateOrvexLas));
    return text;
}

std::wstring RasterOptions(const AddFilesParams& record) {
    std::wstring text = Text(text::kRecordOptions) + L"\n";
    Option(text, text::kRecordAppend, YesNo(record.rasterAppend));
    Option(text, text::kRecordBuildPyramids, YesNo(record.rasterPyramid));
    return text;
}

std::wstring DemOptions(const AddFilesParams& record) {
    std::wstring text = Text(text::kRecordOptions) + L"\n";
    Option(text, text::kRecordOpen,
           Text(record.demOpenReadWrite ? text::kRecordReadWrite : text::kRecordReadOnly));
    Option(text, text::kRecordAppend, YesNo(record.demAppend));
    Option(text, text::kRecordIgnoreCrs, YesNo(record.demIgnoreCrs));
    Option(text, text::kRecordLasVersion, FormatText(L"1.%d", {MinorVersionOfItem(record.demLasVersion)}));
    Option(text, text::kRecordPointFormat, FormatText(L"%d", {record.demPointFormat}));
    Option(text, text::kRecordThinning, FormatText(L"%u", {record.demThinning}));
    Option(text, text::kRecordOutputFolder, record.demLasFolder);
    // Said as it is: this host keeps the choice, but has nothing yet that builds them.
    Option(text, text::kRecordBuildPyramids,
           record.demPyramid ? Text(text::kRecordPyramidNotBuilt) : YesNo(false));
    return text;
}

}  // namespace

std::wstring RecordText(const AddFilesParams& record) {
    const FileKindOfRecord las{text::kRecordLasFiles, record.lasFiles, record.lasFileLayers,
                               record.existingLasLayers, LasFacts};
    const FileKindOfRecord rasters{text::kRecordRasterFiles, record.rasterFiles, record.rasterFileLayers,
                                   record.existingRasterLayers, RasterFactsText};
    const FileKindOfRecord dems{text::kRecordDemFiles, record.demFiles, record.demFileLayers,
                                record.existingLasLayers, NoFacts};
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
    return text.empty() ? Text(text::kRecordEmpty) + L"\n" : text;
}

}  // namespace orvex
