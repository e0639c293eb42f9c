#include "host/vector/VectorSource.h"

#include <cpl_vsi.h>
#include <ogr_featurestyle.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <limits>
#include <memory>
#include <string_view>
#include <vector>

#include "orvexcommon/OrvexUtilities.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/SidecarFile.h"
#include "support/Text.h"

namespace orvex {

namespace {

using Inspect = bool (*)(const std::wstring& path, std::uint64_t& featureCount, tagOrvexExtent& extent,
                         OrvexLayerMap& layers, std::wstring& message);

/// How a kind of file is read.
struct FileFormat {
    const wchar_t* extension;
    Inspect inspect;
    std::array<const char*, 3> drivers;  ///< the better one first: some builds of GDAL lack it
};
constexpr FileFormat kFormats[] = {{L".DXF", OrvexUtilities::GetDXFInfo, {"DXF"}},
                                   {L".DWG", OrvexUtilities::GetDWGInfo, {"CAD"}},
                                   {L".DGN", OrvexUtilities::GetDGNInfo, {"DGN"}},
                                   {L".KML", OrvexUtilities::GetKMLInfo, {"LIBKML", "KML"}},
                                   {L".KMZ", OrvexUtilities::GetKMLInfo, {"LIBKML", "KML"}}};

[[noreturn]] void Fail(const std::wstring& path, const std::wstring& cause) {
    throw LDataError(FormatText(Text(text::kVectorUnreadable), {path, cause}));
}

/// Name under which GDAL finds the first KML file of an archive; "doc.kml" at its top comes before others.
std::string KmlInArchive(const std::wstring& path, const std::string& nameOfFile) {
    const std::string archive = "/vsizip/{" + nameOfFile + "}";
    const std::unique_ptr<VSIDIR, decltype(&VSICloseDir)> entries(VSIOpenDir(archive.c_str(), -1, nullptr),
                                                                  &VSICloseDir);
    std::string found;
    while (const VSIDIREntry* entry = entries == nullptr ? nullptr : VSIGetNextDirEntry(entries.get())) {
        const std::wstring name = FromUtf8(entry->pszName);
        const bool isMain = EqualNoCase(name, L"doc.kml");
        if (isMain || (found.empty() && UpperExtensionOf(name) == L".KML")) {
            found = archive + "/" + entry->pszName;
        }
        if (isMain) {
            break;
        }
    }
    if (found.empty()) {
        Fail(path, Text(text::kKmzWithoutKml));
    }
    return found;
}

/// Counts what is really there: an archive may state less.
void RequireReadableSize(const std::wstring& path, const std::string& name) {
    const std::unique_ptr<VSILFILE, decltype(&VSIFCloseL)> file(VSIFOpenL(name.c_str(), "rb"), &VSIFCloseL);
    std::vector<char> bytes(std::size_t{1} << 20U);
    std::uint64_t size = 0;
    while (const std::size_t read = file ? VSIFReadL(bytes.data(), 1, bytes.size(), file.get()) : 0) {
        size += read;
        if (size > kMostKmlBytes) {
            Fail(path, FormatText(Text(text::kVectorKmlTooLarge), {kMostKmlBytes >> 20U}));
        }
    }
}

/// Programs tell KML from KMZ by the content, whatever the extension says.
bool IsArchive(const std::wstring& path) {
    std::array<char, 2> start{};
    std::ifstream(ToPath(path), std::ios::binary).read(start.data(), start.size());
    return start == std::array{'P', 'K'};
}

std::string NameInside(const std::wstring& path, const std::string& nameOfFile, const FileFormat& format) {
    if (format.extension != std::wstring_view(L".KML") && format.extension != std::wstring_view(L".KMZ")) {
        return nameOfFile;
    }
    std::string name = IsArchive(path) ? KmlInArchive(path, nameOfFile) : nameOfFile;
    RequireReadableSize(path, name);
    return name;
}

/// True for a DXF file of release 2007 or later, whose texts GDAL takes for Latin-1.
bool IsUtf8Drawing(const std::wstring& path) {
    constexpr std::string_view kFirstRelease = "AC1021";
    std::string start(std::size_t{4} << 10U, '\0');
    std::ifstream(ToPath(path), std::ios::binary)
        .read(start.data(), static_cast<std::streamsize>(start.size()));
    const std::size_t variable = start.find("$ACADVER");
    const std::size_t release = variable == std::string::npos ? variable : start.find("AC", variable + 8);
    return release != std::string::npos &&
           std::string_view(start).substr(release, kFirstRelease.size()) >= kFirstRelease;
}

const FileFormat& FormatOf(const std::wstring& path) {
    const std::wstring extension = UpperExtensionOf(path);
    const auto* const format = std::ranges::find_if(
        kFormats, [&extension](const FileFormat& known) { return extension == known.extension; });
    if (format == std::end(kFormats)) {
        Fail(path, FormatText(Text(text::kRasterDriverMissing), {extension}));
    }
    return *format;
}

}  // namespace

VectorSource::VectorSource(const std::wstring& path)
    : path_(path), isDrawing_(!UpperExtensionOf(path).starts_with(L".KM")) {
    const FileFormat& format = FormatOf(path);
    if (KindOf(path) != FileKind::File) {
        Fail(path, Text(text::kLeftOutUnreadable));
    }
    // Damaged and malicious files end here, with a reason.
    tagOrvexExtent extent{};
    OrvexLayerMap layers;
    if (!format.inspect(path, featureCount_, extent, layers, remarks_)) {
        Fail(path, remarks_);
    }
    Open();
    ReadCrsBeside();
}

void VectorSource::Open() {
    constexpr std::uint64_t kNoLimit = std::numeric_limits<std::uint64_t>::max();
    // GDAL 3.6 reads a DXF file on without end that ends within a line.
    access_.emplace(AbsolutePath(path_), InspectionLimits{kNoLimit, kNoLimit, kNoLimit},
                    ReadWatch{[](auto, auto) { return std::wstring(); }, isDrawing_ ? "\n" : ""});
    const FileFormat& format = FormatOf(path_);
    if (format.extension == std::wstring_view(L".DXF") && IsUtf8Drawing(path_)) {
        encoding_.emplace("DXF_ENCODING", "UTF-8");
    }
    const GdalErrorScope errors;
    const std::string name = NameInside(path_, access_->Name(), format);
    dataset_.reset(GDALDataset::Open(name.c_str(), GDAL_OF_VECTOR | GDAL_OF_READONLY, format.drivers.data()));
    if (dataset_ == nullptr) {
        Fail(path_, FailureReason(errors));
    }
}

void VectorSource::ReadCrsBeside() {
    std::string wkt;
    try {
        wkt = ReadPrjBeside(path_);
    } catch (const LDataError& error) {
        remarks_ += (remarks_.empty() ? L"" : L"\n") + FormatText(Text(text::kPrjUnreadable), {error.Text()});
    }
    const GdalErrorScope errors;
    OGRSpatialReference crs;
    crs.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    if (crs.importFromWkt(wkt.c_str()) == OGRERR_NONE) {
        crsBeside_ = crs;
    }
}

const OGRSpatialReference* VectorSource::CrsOf(OGRLayer& layer) {
    const OGRSpatialReference* const own = layer.GetSpatialRef();
    return own != nullptr ? own : crsBeside_ ? &*crsBeside_ : nullptr;
}

std::string VectorSource::LayerOf(OGRLayer& layer, const OGRFeature& feature) {
    const std::string_view name = layer.GetName();
    const bool isDgn = name == "elements";
    const int field = isDgn                ? feature.GetFieldIndex("Level")
                      : name == "entities" ? feature.GetFieldIndex("Layer")
                                           : -1;
    const std::string value = field < 0 ? layer.GetName() : feature.GetFieldAsString(field);
    return isDgn && field >= 0 ? "Level " + value : value;
}

std::optional<DrawingText> VectorSource::TextOf(OGRFeature& feature) const {
    OGRStyleMgr styles;
    const char* const style = feature.GetStyleString();
    if (!isDrawing_ || style == nullptr || !styles.InitStyleString(style)) {
        return std::nullopt;
    }
    for (int i = 0; i < styles.GetPartCount(); ++i) {
        const std::unique_ptr<OGRStyleTool> part(styles.GetPart(i));
        if (part == nullptr || part->GetType() != OGRSTCLabel) {
            continue;
        }
        auto& label = static_cast<OGRStyleLabel&>(*part);
        label.SetUnit(OGRSTUGround, 1);
        GBool isDefault = FALSE;
        DrawingText text;
        const char* const written = label.TextString(isDefault);
        text.text = written == nullptr ? "" : written;
        text.height = label.Size(isDefault);
        text.angle = label.Angle(isDefault);
        // The style shortens what it holds; the field does not.
        const int field = feature.GetFieldIndex("Text");
        if (field >= 0 && feature.IsFieldSetAndNotNull(field)) {
            text.text = feature.GetFieldAsString(field);
        }
        return text;
    }
    return std::nullopt;
}

}  // namespace orvex
