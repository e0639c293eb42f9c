#include "tools/rules/Rules.h"

#include <algorithm>
#include <array>
#include <functional>
#include <iterator>
#include <map>
#include <tuple>

namespace orvex::rules {
namespace {

bool StartsWithAny(std::string_view text, const auto& prefixes) {
    return std::ranges::any_of(prefixes,
                               [text](std::string_view prefix) { return text.starts_with(prefix); });
}

bool EndsWithAny(std::string_view text, const auto& suffixes) {
    return std::ranges::any_of(suffixes, [text](std::string_view suffix) { return text.ends_with(suffix); });
}

std::string_view NameOf(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

std::string_view FolderOf(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string_view::npos ? std::string_view() : path.substr(0, slash);
}

bool IsTest(std::string_view path) {
    return path.find("/tests/") != std::string_view::npos || path.find("/testing/") != std::string_view::npos;
}

std::string Lower(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
    }
    return lower;
}

constexpr std::array kKinds = {"las", "raster", "feature", "photo", "cloud"};

// The first folder of a path: "las" of "las/page/AddLASFilesPP.cpp".
std::string_view TopFolderOf(std::string_view path) {
    return path.substr(0, path.find('/'));
}

bool IsKind(std::string_view folder) {
    return std::ranges::find(kKinds, folder) != kKinds.end();
}

// A kind's own folder, crs/, report/ and settings/ are core; <kind>/page/ is not.
bool IsCore(std::string_view path) {
    const std::string_view top = TopFolderOf(path);
    const bool isCoreFolder = IsKind(top) || top == "crs" || top == "report" || top == "settings";
    return isCoreFolder && !IsTest(path) && path.find("/page/") == std::string_view::npos;
}

bool IsQtHeader(const Include& include) {
    const std::string_view name = include.name;
    return name.size() > 1 && name[0] == 'Q' &&
           ((name[1] >= 'A' && name[1] <= 'Z') || name.starts_with("Qt")) && !name.ends_with(".h");
}

bool IsWindowsHeader(const Include& include) {
    constexpr std::array headers = {"windows.h",  "windowsx.h", "shlobj",   "shlwapi.h",  "shellapi.h",
                                    "commdlg.h",  "objbase.h",  "ole",      "oaidl.h",    "unknwn.h",
                                    "winreg.h",   "winbase.h",  "windef.h", "htmlhelp.h", "winnt.h",
                                    "combaseapi", "wtypes.h",   "cderr.h"};
    return !include.quoted && StartsWithAny(Lower(include.name), headers);
}

bool IsSeam(std::string_view path) {
    constexpr std::array folders = {
        "support/", "settings/", "entry/", "host/objects/", "include/orvexcommon/", "windows/"};
    constexpr std::array endings = {"_win.cpp", "_win.h"};
    return StartsWithAny(path, folders) || EndsWithAny(path, endings);
}

// The file that a quoted include may mean: from the root, from the public headers, or beside the includer.
std::array<std::string, 3> Candidates(std::string_view includer, const std::string& name) {
    const std::string_view folder = FolderOf(includer);
    return {name, "include/" + name, folder.empty() ? name : std::string(folder) + "/" + name};
}

const std::string* Resolve(const Tree& tree, std::string_view includer, const std::string& name) {
    for (const std::string& candidate : Candidates(includer, name)) {
        const auto found = tree.sources.find(candidate);
        if (found != tree.sources.end()) {
            return &found->first;
        }
    }
    return nullptr;
}

// For each file whether it reaches a Qt header, and how: "a.h -> b.h -> <QString>".
class QtPaths {
  public:
    explicit QtPaths(const Tree& tree) : tree_(tree) {}

    /// Empty when the include reaches none.
    std::string From(std::string_view includer, const Include& include) {
        if (IsQtHeader(include)) {
            return "<" + include.name + ">";
        }
        const std::string* file = include.quoted ? Resolve(tree_, includer, include.name) : nullptr;
        if (file == nullptr) {
            return {};
        }
        const std::string rest = FromFile(*file);
        return rest.empty() ? rest : *file + " -> " + rest;
    }

  private:
    std::string FromFile(const std::string& file) {
        const auto [known, isNew] = paths_.try_emplace(file);  // the empty entry ends a circle of includes
        if (isNew) {
            for (const Include& include : tree_.sources.at(file).includes) {
                std::string path = From(file, include);
                if (!path.empty()) {
                    paths_[file] = std::move(path);
                    break;
                }
            }
        }
        return paths_[file];
    }

    const Tree& tree_;
    std::map<std::string, std::string> paths_;
};

using LineTest = std::function<std::string(const std::string& line)>;

// Every line of code of the files that are not exempt for which the test names something.
std::vector<Violation> CheckLines(const Tree& tree, const std::function<bool(const std::string&)>& isExempt,
                                  const LineTest& test) {
    std::vector<Violation> violations;
    for (const auto& [file, source] : tree.sources) {
        if (isExempt(file)) {
            continue;
        }
        for (std::size_t i = 0; i < source.code.size(); ++i) {
            if (std::string what = test(source.code[i]); !what.empty()) {
                violations.push_back({file, i + 1, std::move(what)});
            }
        }
    }
    return violations;
}

// Whether a line names a text by its number, as a literal with the suffix _lsid or as a StringId of digits.
bool NamesTextByNumber(std::string_view line) {
    constexpr std::string_view digits = "0123456789";
    constexpr std::array beforeNumber = {"StringId{", "StringId("};
    const std::size_t suffix = line.find("_lsid");
    const auto precedesDigit = [&](std::string_view word) {
        const std::size_t at = line.find(word);
        return at != std::string_view::npos && line.find_first_of(digits, at) == at + word.size();
    };
    return (suffix != std::string_view::npos && suffix > 0 &&
            digits.find(line[suffix - 1]) != std::string_view::npos) ||
           std::ranges::any_of(beforeNumber, precedesDigit);
}

bool IsPascalCase(std::string_view stem) {
    const std::size_t suffix = stem.find('_');
    const std::string_view name = stem.substr(0, suffix);
    const auto isAlphanumeric = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
    };
    return !name.empty() && name[0] >= 'A' && name[0] <= 'Z' && std::ranges::all_of(name, isAlphanumeric) &&
           (suffix == std::string_view::npos || Lower(stem.substr(suffix)) == stem.substr(suffix));
}

std::string StemOf(std::string_view path) {
    const std::size_t dot = path.rfind('.');
    return std::string(path.substr(0, dot));
}

}  // namespace

std::vector<Violation> CheckCoreIsWithoutQt(const Tree& tree) {
    std::vector<Violation> violations;
    QtPaths paths(tree);
    for (const auto& [file, source] : tree.sources) {
        if (!IsCore(file)) {
            continue;
        }
        for (const Include& include : source.includes) {
            const std::string path = paths.From(file, include);
            if (!path.empty()) {
                violations.push_back({file, include.line, "a core file includes Qt: " + path});
            }
        }
    }
    return violations;
}

std::vector<Violation> CheckKindsAreApart(const Tree& tree) {
    std::vector<Violation> violations;
    for (const auto& [file, source] : tree.sources) {
        const std::string_view kind = TopFolderOf(file);
        for (const Include& include : source.includes) {
            const std::string_view other = TopFolderOf(include.name);
            // A cloud layer is a LAS file elsewhere.
            const bool isAllowed = other == kind || (kind == "cloud" && other == "las");
            if (IsKind(kind) && include.quoted && IsKind(other) && !isAllowed) {
                violations.push_back(
                    {file, include.line, "a kind of data includes another: " + include.name});
            }
        }
    }
    return violations;
}

std::vector<Violation> CheckHostSeesPublicHeadersOnly(const Tree& tree) {
    constexpr std::array hidden = {"crs", "dialog", "entry", "report", "settings"};
    constexpr std::array inspecting = {"host/companion/", "host/dem/", "host/inspect/", "host/objects/"};
    std::vector<Violation> violations;
    for (const auto& [file, source] : tree.sources) {
        const bool mayInspect = StartsWithAny(file, inspecting);
        for (const Include& include : source.includes) {
            const std::string_view folder = TopFolderOf(include.name);
            const bool isHidden = IsKind(folder) || std::ranges::find(hidden, folder) != hidden.end();
            const bool mayInclude = mayInspect && folder != "dialog" && folder != "entry" &&
                                    (folder != "settings" || file.starts_with("host/objects/"));
            if (file.starts_with("host/") && include.quoted && isHidden && !mayInclude) {
                violations.push_back(
                    {file, include.line, "the host includes what is not public: " + include.name});
            }
        }
    }
    return violations;
}

std::vector<Violation> CheckWindowsStaysInSeams(const Tree& tree) {
    const auto isExempt = [](const std::string& file) { return IsSeam(file) || IsTest(file); };
    std::vector<Violation> violations = CheckLines(tree, isExempt, [](const std::string& line) {
        for (const char* word : {"_WIN32", "_WIN64", "WIN32", "__MINGW32__", "_MSC_VER"}) {
            if (HasWord(line, word)) {
                return std::string(word) + " outside the platform seams";
            }
        }
        return std::string();
    });
    for (const auto& [file, source] : tree.sources) {
        for (const Include& include : source.includes) {
            if (!isExempt(file) && IsWindowsHeader(include)) {
                violations.push_back(
                    {file, include.line, "<" + include.name + "> outside the platform seams"});
            }
        }
    }
    return violations;
}

std::vector<Violation> CheckNoQSettings(const Tree& tree) {
    std::vector<Violation> violations = CheckLines(
        tree, [](const std::string&) { return false; },
        [](const std::string& line) {
            return HasWord(line, "QSettings") ? "QSettings cannot keep the types of option items"
                                              : std::string();
        });
    return violations;
}

std::vector<Violation> CheckTextsGoThroughText(const Tree& tree) {
    const auto isExempt = [](const std::string& file) {
        return file.starts_with("host/strings/") || file == "support/Text.h" ||
               file == "include/orvexcommon/StringLibrary.h";
    };
    return CheckLines(tree, isExempt, [](const std::string& line) -> std::string {
        if (HasWord(line, "LSwchar") || HasWord(line, "LSIDwchar")) {
            return "texts are fetched through Text(text::k...)";
        }
        return NamesTextByNumber(line) ? "a text is named by number instead of text::k..." : "";
    });
}

std::vector<Violation> CheckIncludeCase(const Tree& tree) {
    std::map<std::string, std::string> byLowerCase;
    for (const auto& [file, source] : tree.sources) {
        byLowerCase.emplace(Lower(file), file);
    }
    std::vector<Violation> violations;
    for (const auto& [file, source] : tree.sources) {
        for (const Include& include : source.includes) {
            if (Resolve(tree, file, include.name) != nullptr) {
                continue;
            }
            for (const std::string& candidate : Candidates(file, include.name)) {
                const auto found = byLowerCase.find(Lower(candidate));
                if (found != byLowerCase.end()) {
                    violations.push_back(
                        {file, include.line, "\"" + include.name + "\" is spelled " + found->second});
                    break;
                }
            }
        }
    }
    return violations;
}

std::vector<Violation> CheckFileNames(const Tree& tree) {
    std::vector<Violation> violations;
    std::map<std::string, std::string> paths;
    std::map<std::string, std::string> stems;
    for (const std::string& file : tree.files) {
        const auto [same, isNew] = paths.emplace(Lower(file), file);
        if (!isNew) {
            violations.push_back({file, 0, "differs from " + same->second + " in letter case only"});
        }
        if (Lower(FolderOf(file)) != FolderOf(file)) {
            violations.push_back({file, 0, "a folder name has upper-case letters"});
        }
        if (!tree.sources.contains(file)) {
            continue;
        }
        const std::string stem = StemOf(file);
        // Hosts in C include a name like those of its functions.
        const bool isOtherLanguage = stem == "include/orvexcommon/orvex";
        if (NameOf(stem) != "main" && !isOtherLanguage && !IsPascalCase(NameOf(stem))) {
            violations.push_back({file, 0, "the name of a C++ file is not PascalCase"});
        }
        const auto [pair, isFirst] = stems.emplace(Lower(stem), stem);
        if (isNew && !isFirst && pair->second != stem) {
            violations.push_back({file, 0, "header and source are spelled differently: " + pair->second});
        }
    }
    return violations;
}

std::vector<Violation> CheckAll(const Tree& tree) {
    std::vector<Violation> violations;
    for (const auto check :
         {CheckCoreIsWithoutQt, CheckKindsAreApart, CheckHostSeesPublicHeadersOnly, CheckWindowsStaysInSeams,
          CheckNoQSettings, CheckTextsGoThroughText, CheckIncludeCase, CheckFileNames}) {
        std::ranges::move(check(tree), std::back_inserter(violations));
    }
    std::ranges::sort(violations, [](const Violation& a, const Violation& b) {
        return std::tie(a.file, a.line, a.what) < std::tie(b.file, b.line, b.what);
    });
    return violations;
}

}  // namespace orvex::rules
