#pragma once
// Names of shapefiles and of their fields that every system and every reader accepts.
#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace orvex {

/// The extensions of a shapefile's parts as they are written; the file with the shapes is the last.
inline constexpr const wchar_t* kShapefileParts[] = {L".shx", L".dbf", L".prj", L".cpg", L".shp"};

/// Longest name of a field in bytes.
inline constexpr std::size_t kMostFieldName = 10;

/// At most `bytes` bytes of valid UTF-8, cut between characters.
std::string CutUtf8(std::string_view text, std::size_t bytes);

/// Name of a shapefile, without extension: "<file>_<layer>_<kind>", without the layer if it is empty or named
/// like the file. What Windows forbids in names becomes "_", and long parts are cut.
std::wstring ShapefileName(std::wstring_view file, std::wstring_view layer, std::wstring_view kind);

/// Names of the shapefiles in a folder, in any letter case, and those added to them.
class TakenNames {
  public:
    explicit TakenNames(const std::wstring& folder);

    /// The name, or the first of "<name> (2)", "<name> (3)" ... that is free. The caller adds what it uses.
    std::wstring FreeName(const std::wstring& name) const;
    void Add(const std::wstring& name);

  private:
    std::set<std::wstring> upper_;
    /// Number after which the search for a free name goes on: many layers can be cut to one name.
    mutable std::map<std::wstring, int> last_;
};

/// For each name one of at most kMostFieldName bytes, which begins with a letter, has only letters, digits
/// and "_", and differs from the others in any letter case.
std::vector<std::string> SafeFieldNames(const std::vector<std::string>& names);

}  // namespace orvex
