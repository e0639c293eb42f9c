#pragma once
#include <array>
#include <cstdint>
#include <vector>

namespace orvex {

class ListRows;

/// Properties by which rows are counted, filtered and selected.
enum class RowProperty {
    Findings,    ///< anything that is to be known, also in a note
    Warnings,    ///< findings, but no error
    Errors,      ///< damaged, or cannot be loaded
    WithoutCrs,  ///< loadable, but no CRS is stated
    OtherCrs,    ///< a CRS that is not compatible with that of most rows
    InProject,   ///< the project has the file already
};
inline constexpr int kRowProperties = 6;

/// The properties of a list's rows at one time, by record.
class RowProperties {
  public:
    RowProperties() = default;
    explicit RowProperties(const ListRows& rows);

    bool Has(std::size_t record, RowProperty property) const;
    std::size_t Count(RowProperty property) const { return counts_[static_cast<std::size_t>(property)]; }
    /// In the order of adding.
    std::vector<std::size_t> Records(RowProperty property) const;

  private:
    void Set(std::size_t record, RowProperty property, bool value);
    void SetOtherCrs(const std::vector<int>& crsOfRecords);

    std::vector<std::uint8_t> bits_;
    std::array<std::size_t, kRowProperties> counts_{};
};

/// In what a row is like another.
enum class Likeness { Crs, Layer, Folder };

/// The records that are like `record`, itself among them; none when it has no such thing.
std::vector<std::size_t> RecordsLike(const ListRows& rows, std::size_t record, Likeness likeness);

/// The records with a finding.
std::vector<std::size_t> RecordsWithFinding(const ListRows& rows, const char* code);

}  // namespace orvex
