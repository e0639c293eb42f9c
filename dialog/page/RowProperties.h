#pragma once
#include <array>
#include <string>
#include <vector>

namespace orvex {

class ListRows;
struct RowTraits;

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

/// Key (as of LayerKeyOf) of the CRS that most rows have; empty if none has any.
std::string MostFrequentCrs(const ListRows& rows);

/// True if a row has a property. `mostFrequentCrs`: of the list.
bool HasProperty(const RowTraits& row, RowProperty property, const std::string& mostFrequentCrs);

/// The records with a property, in the order of adding.
std::vector<std::size_t> RecordsWith(const ListRows& rows, RowProperty property);

/// How many rows have each property.
class PropertyCounts {
  public:
    explicit PropertyCounts(const ListRows& rows);

    std::size_t Of(RowProperty property) const { return counts_[static_cast<std::size_t>(property)]; }

  private:
    std::array<std::size_t, kRowProperties> counts_{};
};

/// In what a row is like another.
enum class Likeness { Crs, Layer, Folder };

/// The records that are like `record`, itself among them; none when it has no such thing.
std::vector<std::size_t> RecordsLike(const ListRows& rows, std::size_t record, Likeness likeness);

/// The records with a finding.
std::vector<std::size_t> RecordsWithFinding(const ListRows& rows, const char* code);

}  // namespace orvex
