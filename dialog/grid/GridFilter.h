#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "dialog/grid/GridModel.h"

namespace orvex {

/// A filter as users type it. Records are kept that meet every part:
///   - a word or a "quoted phrase" that stands in any shown column, whatever its case;
///   - a condition `column = value`, with = != < <= > >=. The column is named by its name, its caption, its
///     other name, or an unambiguous beginning of these. Two numbers ("1e6", "1,000,000", a cell
///     "EPSG:25832") compare as such, anything else as texts in natural order;
///   - any of these with "-" before it excludes.
/// A part that cannot be understood hides nothing and is told as a problem.
class GridFilter {
  public:
    /// `model` outlives the filter. Words are looked for in `shownColumns`, which are also those that a
    /// problem lists.
    GridFilter(std::wstring_view text, const GridModel& model, std::vector<int> shownColumns);

    /// True if every record is kept.
    bool IsEmpty() const { return parts_.empty(); }
    /// For a record that the model has now. Finds out about all records at once when the model has changed.
    bool Keeps(std::size_t record) const;
    /// The first part that cannot be understood, in plain words; empty if there is none.
    const std::wstring& Problem() const { return problem_; }

  private:
    enum class Relation { Equal, Less, LessOrEqual, Greater, GreaterOrEqual };
    struct Part {
        bool excludes = false;
        std::vector<int> columns;          ///< any of which has to match
        std::optional<Relation> relation;  ///< nullopt: the text stands anywhere in a cell
        std::string text;                  ///< folded
        std::optional<double> number;      ///< that the text is
    };
    class Reader;

    void AddCondition(Part part, std::wstring_view name, std::wstring_view sign, std::wstring_view value);
    std::vector<int> ColumnsCalled(std::wstring_view name);
    std::wstring Captions(const std::vector<int>& columns) const;
    void Tell(std::wstring problem);

    static bool Holds(Relation relation, int order);
    static bool HoldsFor(const Part& part, std::string_view cell);
    static bool HoldsFor(const Part& part, const GridCell& cell);
    void MarkTexts(const Part& part, int column, std::vector<std::uint8_t>& hits) const;
    void MarkNumbers(const Part& part, int column, std::vector<std::uint8_t>& hits) const;
    void FindAll() const;

    const GridModel* model_;
    std::vector<int> shownColumns_;
    std::vector<Part> parts_;
    std::wstring problem_;
    mutable std::uint64_t revision_ = 0;  ///< of the model, to which `kept_` belongs; 0: to none
    mutable std::vector<std::uint8_t> kept_;
};

}  // namespace orvex
