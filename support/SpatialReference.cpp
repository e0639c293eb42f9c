#include "support/SpatialReference.h"

#include <cpl_conv.h>
#include <cpl_string.h>
#include <ogr_srs_api.h>
#include <proj.h>

#include <string_view>

#include "support/Files.h"
#include "support/Text.h"

namespace orvex {
namespace {

/// Length of the node that a text begins with, up to its closing bracket.
std::size_t NodeLength(std::string_view text) {
    bool inQuotes = false;
    std::size_t depth = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        inQuotes = inQuotes != (text[i] == '"');
        depth += !inQuotes && text[i] == '[' ? 1 : 0;
        if (!inQuotes && text[i] == ']' && --depth == 0) {
            return i + 1;
        }
    }
    return text.size();
}

/// WKT2 with datum ensembles written as datums. PROJ makes the one or the other of the same code, depending
/// on what it has read before on the same thread.
std::string WithoutEnsembles(std::string_view wkt) {
    constexpr std::string_view kEnsemble = "ENSEMBLE[\"";
    constexpr std::string_view kSuffix = " ensemble";
    std::string text;
    bool inQuotes = false;
    for (std::size_t i = 0; i < wkt.size();) {
        const std::string_view rest = wkt.substr(i);
        if (!inQuotes && rest.starts_with(kEnsemble)) {
            std::string_view name = rest.substr(kEnsemble.size());
            name = name.substr(0, name.find('"'));
            i += kEnsemble.size() + name.size();
            name.remove_suffix(name.ends_with(kSuffix) ? kSuffix.size() : 0);
            text.append("DATUM[\"").append(name);
            inQuotes = true;
        } else if (!inQuotes && (rest.starts_with("MEMBER[") || rest.starts_with("ENSEMBLEACCURACY["))) {
            text.erase(text.find_last_not_of(", \n") + 1);
            i += NodeLength(rest);
        } else {
            inQuotes = inQuotes != (wkt[i] == '"');
            text += wkt[i++];
        }
    }
    return text;
}

/// False for PROJ's own folders, which GDAL gives while nobody has set any.
bool AreSetByHost(const CPLStringList& folders) {
    const auto joined = [&](char separator) {
        std::string text;
        for (int i = 0; i < folders.size(); ++i) {
            text.append(i == 0 ? 0U : 1U, separator).append(folders[i]);
        }
        return text;
    };
    const std::string_view own = proj_info().searchpath;
    return joined(':') != own && joined(';') != own;  // Windows has the latter
}

}  // namespace

std::string ExportWkt(const OGRSpatialReference& crs, const char* format, bool multiLine) {
    const std::string formatOption = std::string("FORMAT=") + format;
    const char* const options[] = {formatOption.c_str(), multiLine ? "MULTILINE=YES" : "MULTILINE=NO",
                                   nullptr};
    char* text = nullptr;
    const OGRErr error = crs.exportToWkt(&text, options);
    std::string wkt = error == OGRERR_NONE && text != nullptr ? text : "";
    CPLFree(text);
    return wkt.find("ENSEMBLE[") == std::string::npos ? wkt : WithoutEnsembles(wkt);
}

void PreferProjData(const std::filesystem::path& folder) {
    if (!FileExists(FromPath(folder / "proj.db"))) {
        return;
    }
    const CPLStringList known(OSRGetPROJSearchPaths());
    const std::string ours = ToUtf8(FromPath(folder));
    CPLStringList paths;
    if (!AreSetByHost(known)) {
        paths.AddString(ours.c_str());
    }
    for (int i = 0; i < known.size(); ++i) {
        if (paths.FindString(known[i]) < 0) {
            paths.AddString(known[i]);
        }
    }
    if (paths.FindString(ours.c_str()) < 0) {
        paths.AddString(ours.c_str());
    }
    OSRSetPROJSearchPaths(paths.List());
}

}  // namespace orvex
