#include "feature/FeatureRow.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "feature/FeatureFindings.h"
#include "feature/ShapefileReader.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/Files.h"
#include "support/LDataError.h"
#include "support/SidecarFile.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr const wchar_t* kKindNames[] = {L"DWG", L"DXF", L"DGN", L"SHP", L"KML", L"KMZ"};

/// Type words of attribute fields, by their codes.
constexpr const wchar_t* kTypeWords[] = {L"Double", L"Integer", L"String", L"Date", L"Logical", L"Invalid"};

/// A shapefile that cannot be read: the text is the cause in plain words, beside what the row says.
class ShapefileError : public LDataError {
  public:
    ShapefileError(std::wstring summary, const std::wstring& cause)
        : LDataError(cause.empty() ? summary : cause), summary_(std::move(summary)) {}
    const std::wstring& Summary() const { return summary_; }

  private:
    std::wstring summary_;
};

void AddField(FeatureRow& row, std::wstring name, std::int32_t type) {
    if (name.empty() || type < 0 || type >= static_cast<std::int32_t>(std::size(kTypeWords))) {
        return;
    }
    row.fields.push_back({std::move(name), kTypeWords[type]});
}

void SetShapes(FeatureRow& row, std::uint64_t count, std::int32_t type) {
    row.featureCount = count;
    row.geometry = OrvexUtilities::OrvexGeometryToString(type);
    row.layers = {{FeatureLayerName(row), count}};
}

/// Takes over what our own reader has read.
void TakeContent(FeatureRow& row, ShapefileContent content) {
    SetShapes(row, content.shapeCount, content.shapeType);
    row.extent = content.extent;
    row.fieldCount = static_cast<std::int32_t>(content.fields.size());
    for (AttributeField& field : content.fields) {
        AddField(row, std::move(field.name), static_cast<std::int32_t>(field.type));
    }
    row.isRead = true;
}

/// Asks for each field. False if one could not be read; the others are there.
bool AskFields(OrvexShapefile& shapefile, FeatureRow& row) {
    constexpr std::int32_t kMostFields = 65536;  // more than any table can have
    std::int32_t count = 0;
    const bool isCounted = shapefile.GetFieldCount(count) >= kHostOk;
    row.fieldCount = isCounted ? std::clamp(count, 0, kMostFields) : 0;
    bool areAllRead = true;
    for (std::int32_t i = 0; i < row.fieldCount; ++i) {
        std::wstring name;
        std::int32_t type = -1;
        if (shapefile.GetFieldInfo(i, name, type) < kHostOk) {
            areAllRead = false;
        } else {
            AddField(row, std::move(name), type);
        }
    }
    return areAllRead;
}

std::wstring InvalidShapefile() {
    return Text(text::kShapefileNotOpened);
}

/// Reads a shapefile with the host's object.
void Ask(OrvexShapefile& shapefile, FeatureRow& row) {
    std::wstring reason;
    if (shapefile.Open(row.path, reason) < kHostOk) {
        throw ShapefileError(InvalidShapefile(), reason);
    }
    std::int32_t count = 0;
    std::int32_t type = 0;
    if (shapefile.GetShapeCount(count) < kHostOk || shapefile.GetShapeType(type) < kHostOk || count < 0) {
        throw ShapefileError(InvalidShapefile(), {});
    }
    SetShapes(row, static_cast<std::uint64_t>(count), type);
    std::array<double, 4> extent{};
    if (shapefile.GetExtent(extent) >= kHostOk) {
        row.extent = extent;
    }
    row.isRead = AskFields(shapefile, row);
    if (!row.isRead) {
        row.summary = Text(text::kShapefileFieldNotRead);
        row.findings.push_back(FindingInWords(feature_finding::kUnreadable, row.summary));
    }
}

ShapefileContent ReadOurselves(const std::wstring& path) {
    try {
        return ReadShapefile(path);
    } catch (const LDataError& error) {
        throw ShapefileError(InvalidShapefile(), error.Text());
    }
}

/// What our own reader finds odd about a shapefile that the host's object has read.
std::vector<Finding> FindingsOf(const std::wstring& path) {
    try {
        return ReadShapefile(path).findings;
    } catch (const LDataError&) {
        // The host may know more kinds of shapefiles.
        return {};
    }
}

void InspectShapefile(FeatureRow& row, const ShapefileMaker& maker) {
    std::int32_t result = kHostClassNotRegistered;
    const auto object = maker ? maker(result) : nullptr;
    std::vector<Finding> findings;
    if (object) {
        Ask(*object, row);
        findings = FindingsOf(row.path);
    } else if (result == kHostClassNotRegistered) {
        ShapefileContent content = ReadOurselves(row.path);
        findings = std::move(content.findings);
        TakeContent(row, std::move(content));
    } else {
        // A host that has the class and cannot make its object is told, not worked around: its own import
        // would fail as well.
        throw ShapefileError(Text(text::kShapefileNotCreated),
                             FormatText(Text(text::kShapefileObjectFailed), {std::uint32_t(result)}));
    }
    std::ranges::move(findings, std::back_inserter(row.findings));
    row.extent = row.featureCount == 0 ? std::nullopt : row.extent;
}

using LayerReader = bool (*)(const std::wstring& path, std::uint64_t& featureCount, tagOrvexExtent& extent,
                             OrvexLayerMap& layers, std::wstring& message);

LayerReader ReaderOf(FeatureKind kind) {
    switch (kind) {
        case FeatureKind::Dwg:
            return OrvexUtilities::GetDWGInfo;
        case FeatureKind::Dxf:
            return OrvexUtilities::GetDXFInfo;
        case FeatureKind::Dgn:
            return OrvexUtilities::GetDGNInfo;
        default:
            return OrvexUtilities::GetKMLInfo;
    }
}

/// A finding for each line of a message about what was left out.
void AddLines(std::wstring_view message, std::vector<Finding>& findings) {
    while (!message.empty()) {
        const std::size_t end = std::min(message.find(L'\n'), message.size());
        if (end > 0) {
            findings.push_back(
                FindingInWords(feature_finding::kPartlyRead, std::wstring(message.substr(0, end))));
        }
        message.remove_prefix(std::min(end + 1, message.size()));
    }
}

void InspectLayers(FeatureRow& row) {
    tagOrvexExtent extent{};
    OrvexLayerMap layers;
    std::wstring message;
    row.geometry = Text(text::kFeatureVarious);
    if (!ReaderOf(row.kind)(row.path, row.featureCount, extent, layers, message)) {
        throw LDataError(message.empty() ? Text(text::kFeatureNotRead) : message);
    }
    row.layers.reserve(layers.size());
    for (const auto& [name, count] : layers) {
        row.layers.push_back({name, count});
    }
    if (row.featureCount != 0 && extent.minX <= extent.maxX && extent.minY <= extent.maxY) {
        row.extent = {extent.minX, extent.minY, extent.maxX, extent.maxY};
    }
    AddLines(message, row.findings);
    row.isRead = true;
}

/// The CRS in the .prj file beside a file.
CrsPtr CrsBeside(const std::wstring& path, std::vector<Finding>& findings) {
    try {
        return DescribeCrs(ReadPrjBeside(path));
    } catch (const LDataError& error) {
        findings.push_back(MakeFinding(feature_finding::kPrjUnreadable, {error.Text()}));
        return DescribeCrs({});
    }
}

void Inspect(FeatureRow& row, const ShapefileMaker& maker) {
    const std::optional<FeatureKind> kind = FeatureKindOf(row.path);
    if (!kind) {
        throw LDataError(Text(text::kFeatureKindUnknown));
    }
    row.kind = *kind;
    if (row.kind == FeatureKind::Shp) {
        InspectShapefile(row, maker);
    } else {
        InspectLayers(row);
    }
    const bool isKml = row.kind == FeatureKind::Kml || row.kind == FeatureKind::Kmz;
    row.crs = isKml ? DescribeDefaultCrs() : CrsBeside(row.path, row.findings);
    std::ranges::move(ValidateFeatures(row), std::back_inserter(row.findings));
    std::ranges::stable_sort(row.findings, std::ranges::greater{}, &Finding::severity);
    row.loadable = row.isRead;
    row.summary = row.isRead ? FeatureSummary(row) : row.summary;
}

/// A file of which nothing is known but why.
void Refuse(FeatureRow& row, const std::wstring& summary, const std::wstring& cause) {
    row.isRead = false;
    row.loadable = false;
    row.summary = summary;
    row.findings = {FindingInWords(feature_finding::kUnreadable, cause)};
}

FeatureRow EmptyRow(const std::wstring& path) {
    FeatureRow row;
    row.path = path;
    row.kind = FeatureKindOf(path).value_or(FeatureKind::Shp);
    row.crs = DescribeCrs({});
    return row;
}

}  // namespace

std::optional<FeatureKind> FeatureKindOf(std::wstring_view path) {
    const std::wstring extension = UpperExtensionOf(path);
    const auto* const found = std::ranges::find_if(kKindNames, [&](const wchar_t* name) {
        return extension.size() > 1 && std::wstring_view(extension).substr(1) == name;
    });
    return found == std::end(kKindNames)
               ? std::nullopt
               : std::optional(static_cast<FeatureKind>(found - std::begin(kKindNames)));
}

const wchar_t* FeatureKindName(FeatureKind kind) {
    return kKindNames[static_cast<std::size_t>(kind)];
}

FeatureRow InspectFeatureFile(const std::wstring& path, const ShapefileMaker& maker) {
    FeatureRow row = EmptyRow(path);
    row.modifiedMs = ModifiedMs(path);
    row.fileSize = FileSizeOf(path).value_or(0);
    try {
        Inspect(row, maker);
    } catch (const ShapefileError& error) {
        Refuse(row, error.Summary(), error.Text());
    } catch (const LDataError& error) {
        Refuse(row, error.Text(), error.Text());
    } catch (...) {
        row.threw = true;
        const std::wstring message = Text(text::kFeatureNotRead) + L" " + CurrentExceptionText();
        Refuse(row, message, message);
    }
    return row;
}

FeatureRow UnreadFeatureFile(const std::wstring& path, const std::wstring& message) {
    FeatureRow row = EmptyRow(path);
    row.threw = true;
    Refuse(row, message, message);
    return row;
}

LoadFlag LoadFlagOf(const FeatureRow& row) {
    return LoadFlagFor(row.loadable, row.findings, row.place);
}

std::wstring FeatureSummary(const FeatureRow& row) {
    return FormatText(Text(text::kFeatureSummary), {row.layers.size(), row.featureCount});
}

std::wstring FeatureLayerName(const FeatureRow& row) {
    return WithExtension(FileNameOf(row.path), {});
}

}  // namespace orvex
