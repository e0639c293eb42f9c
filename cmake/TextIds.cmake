# Writes a header that names the texts of a string table:  cmake -DINPUT=strings.en.tsv -DOUTPUT=... -P TextIds.cmake
# Only the id and the name are looked at, so that nothing in a text can look like a list to CMake.
file(READ "${INPUT}" table)
string(REGEX MATCHALL "\n[0-9]+\tk[A-Za-z0-9]+\t" entries "${table}")
string(JOIN "" entries ${entries})
string(REGEX REPLACE "\n([0-9]+)\t(k[A-Za-z0-9]+)\t" "inline constexpr StringId \\2{\\1};\n" constants "${entries}")
# Touches the file only when a name or an id has changed: every source that shows a text includes it.
file(CONFIGURE OUTPUT "${OUTPUT}" @ONLY CONTENT "#pragma once
// The names of the texts. Made from strings.en.tsv by the build.
#include \"orvexcommon/StringLibrary.h\"

namespace orvex::text {

${constants}
}  // namespace orvex::text
")
