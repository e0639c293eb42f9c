#pragma once
// Rules of the source tree that no compiler checks.
#include <string>
#include <vector>

#include "tools/rules/Tree.h"

namespace orvex::rules {

struct Violation {
    std::string file;
    std::size_t line = 0;  ///< from 1; 0 for the file as a whole
    std::string what;
};

/// Core files reach no Qt header, neither directly nor through headers of the tree. Core are the folder of a
/// kind of data (las/, raster/ ...) without its page/ folder, crs/, report/ and settings/.
std::vector<Violation> CheckCoreIsWithoutQt(const Tree& tree);
/// No kind of data includes another; what two of them need is in crs/, support/ or dialog/.
std::vector<Violation> CheckKindsAreApart(const Tree& tree);
/// The host includes of the component the public headers and support/ only. Its parts that are built from the
/// component's inspection on purpose (dem/, inspect/, objects/) may include what that takes.
std::vector<Violation> CheckHostSeesPublicHeadersOnly(const Tree& tree);
/// Windows conditions and headers stay in the seams' folders.
std::vector<Violation> CheckWindowsStaysInSeams(const Tree& tree);
/// Option items keep their types, which QSettings cannot write.
std::vector<Violation> CheckNoQSettings(const Tree& tree);
/// Texts are fetched through Text(), so that a test finds every id.
std::vector<Violation> CheckTextsGoThroughText(const Tree& tree);
/// Included names are spelled like the files, as a case-sensitive file system needs it.
std::vector<Violation> CheckIncludeCase(const Tree& tree);
/// Folders are lower-case, C++ files PascalCase (with a lower-case suffix for a platform's half), and no two
/// paths differ in letter case only, as a case-insensitive file system needs it.
std::vector<Violation> CheckFileNames(const Tree& tree);

/// All of the above, by file and line.
std::vector<Violation> CheckAll(const Tree& tree);

}  // namespace orvex::rules
