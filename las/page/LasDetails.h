#pragma once
// What the details pane says, without a widget.
#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "dialog/details/DetailSection.h"
#include "las/LasColumns.h"
#include "las/LasRow.h"

namespace orvex {

/// The header of one file, in sections.
std::vector<DetailSection> LasOverview(const LasRow& row);

/// The coordinate reference system of one file; no fields when it carries none.
std::vector<DetailField> LasCrsFields(const LasRow& row);

/// The VLRs and EVLRs of one file as plain text, headed by the GPS time kind where the file has one.
std::wstring LasRecordsText(const LasRow& row);

/// Sums over several rows.
struct LasTotals {
    std::size_t files = 0;
    std::size_t notReadable = 0;
    std::size_t withFindings = 0;
    std::uint64_t bytes = 0;
    std::uint64_t points = 0;
    std::size_t layers = 0;
    std::vector<std::wstring> crsNames;  ///< each once, in order of the rows; "" for files without a CRS
    bool isGeographic = false;
    /// Minimum X, Y, Z and maximum X, Y, Z over all files; none when their CRS differ or no extent is finite.
    std::optional<std::array<double, 6>> extent;
};

/// `records`: indices into `rows`.
LasTotals TotalsOf(std::span<const LasRow> rows, std::span<const std::size_t> records);

/// The totals as one section.
DetailSection TotalsSection(const LasTotals& totals);

}  // namespace orvex
