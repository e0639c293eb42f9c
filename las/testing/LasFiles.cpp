#include "las/testing/LasFiles.h"

#include <algorithm>

#include "las/LasColumns.h"
#include "las/LasPointViews.h"
#include "las/LasRow.h"
#include "las/LasText.h"
#include "las/LasValidate.h"
#include "support/ByteReader.h"
#include "support/LDataError.h"

namespace orvex::testing {
namespace {

std::wstring LastPointText(const LasPointViews* points) {
    if (points == nullptr || points->PointCount() == 0) {
        return L"no points\n";
    }
    const std::uint64_t last = points->PointCount() - 1;
    const LasPointView view = points->Map(points->ViewOf(last));
    return std::to_wstring(view.Record(last).size()) + L" bytes at " +
           std::to_wstring(view.Position(last)[0]) + L"\n";
}

}  // namespace

std::wstring LasFolder::Write(const LasBuilder& builder, const std::wstring& name) const {
    return Write(name, builder.Build());
}

std::unique_ptr<LASFile> LasFolder::Open(const LasBuilder& builder, bool readOnly) const {
    return LASFile::Open(Write(builder), readOnly, true);
}

std::wstring FailureToOpen(const std::wstring& path, bool readOnly) {
    try {
        LASFile::Open(path, readOnly, true);
        return {};
    } catch (const LDataError& error) {
        return error.Text();
    }
}

SystemError MemorySource::Size(std::uint64_t& size) const {
    size = bytes_.size();
    return 0;
}

SystemError MemorySource::ReadAt(std::uint64_t offset, std::span<std::byte> buffer, std::size_t& read) const {
    const auto piece = ByteReader(std::as_bytes(std::span(bytes_))).Bytes(offset, buffer.size());
    if (piece.size() > left_) {
        read = left_ = 0;
        return error_;
    }
    read = piece.size();
    left_ -= read;
    std::ranges::copy(piece, buffer.begin());
    return 0;
}

std::wstring RowText(const std::wstring& path) {
    return RowText(InspectLasFile(path));
}

std::wstring RowText(const LasRow& row, bool withDisk) {
    row.crs->Identify();
    std::wstring text = FindingsText(row) + L"\n";
    for (const Column<LasRow>& column : LasColumns()) {
        // An address is another one each time.
        const std::string_view name = column.name;
        const bool isStable = name != "details" && (withDisk || name != "modified");
        text += isStable ? CellText(column, row) + L"\n" : L"";
    }
    return text + row.crs->prettyWkt + L"\n";
}

std::wstring ReadAllOfLas(const std::wstring& path, bool readOnly) {
    try {
        const auto file = LASFile::Open(path, readOnly, false);
        std::wstring text = LasVlrText(*file) + LasEvlrText(*file) + LasGpsTimeText(*file) + L"\n";
        for (const Finding& finding : ValidateLas(*file)) {
            text += finding.text + L"\n";
        }
        for (const ExtraBytesAttribute& attribute : file->GetExtraBytes().Attributes()) {
            text += attribute.name + L" at " + std::to_wstring(attribute.offset) + L"\n";
        }
        text += std::to_wstring(file->GetPointCount()) + L" points, companion " +
                std::to_wstring(file->GetCompanionStatus()) + L"\n" + RowText(path);
        return text + LastPointText(file->Points());
    } catch (const LDataError& error) {
        return error.Text();
    }
}

LasBuilder RichLas() {
    return LasBuilder(14, 6)
        .AddPoints(5)
        .AddExtraBytes("reflectance", 10, 8)
        .AddExtraBytes("raw", 0, 3)
        .AddVlr("BrightwellMarsh", 64, std::string(81, 'i'))
        .ProjectedEpsg(25832)
        .Wkt("GEOGCS[\"WGS 84\"]")
        .AddEvlr("Kst", 5, "own data")
        .AddEvlr("copc", 1000, "pages")
        .AddEvlr("LASF_Projection", 2112, "second WKT");
}

std::vector<LasBuilder> LyingLasFiles() {
    constexpr std::uint16_t kMost16 = 0xFFFF;
    constexpr std::uint32_t kMost32 = 0xFFFFFFFF;
    constexpr std::uint64_t kMost = ~std::uint64_t{0};
    return {
        RichLas().Lie(94, std::uint16_t{0}),
        RichLas().Lie(94, kMost16),
        RichLas().Lie(96, kMost32),
        RichLas().Lie(100, kMost32),
        RichLas().Lie(96, kMost32).Lie(100, kMost32),
        RichLas().Lie(105, std::uint16_t{0}),
        RichLas().Lie(105, kMost16).Lie(247, kMost),
        RichLas().Lie(235, kMost - 5),
        RichLas().Lie(235, kMost >> 1U),
        RichLas().Lie(235, std::uint64_t{1}).Lie(243, kMost32),
        RichLas().Lie(243, kMost32),
        RichLas().Lie(247, kMost),
    };
}

}  // namespace orvex::testing
