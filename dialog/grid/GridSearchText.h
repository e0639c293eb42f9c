#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace orvex {

/// Texts of one column for searching, by record: as shown, on one line, in upper case, UTF-8. Equal texts are
/// stored once and have one number, so that a search looks at each only once.
class GridSearchText {
  public:
    /// The form in which texts are stored and compared.
    static std::string Folded(std::wstring_view text);

    /// Number of records.
    std::size_t Size() const { return numbers_.size(); }
    /// Adds the text of the next record.
    void Append(std::wstring_view text);
    /// Removes the texts of these records (ascending, unique) and closes the gaps.
    void Remove(const std::vector<std::size_t>& records);

    std::size_t TextCount() const { return ends_.size(); }
    std::string_view TextAt(std::size_t number) const;
    std::size_t NumberOf(std::size_t record) const { return numbers_[record]; }
    /// By number of a text: 1 if it contains `folded`.
    std::vector<std::uint8_t> TextsWith(std::string_view folded) const;

  private:
    std::uint32_t NumberFor(const std::string& text);

    std::string texts_;                   ///< one after the other, each followed by a line feed
    std::vector<std::size_t> ends_;       ///< end of each text, without its line feed
    std::vector<std::uint32_t> numbers_;  ///< by record
    std::unordered_map<std::size_t, std::uint32_t>
        byHash_;  ///< of texts; a second text of a hash is left out
};

}  // namespace orvex
