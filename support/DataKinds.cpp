#include "support/DataKinds.h"

#include <algorithm>
#include <map>

#include "support/Files.h"
#include "support/Text.h"

namespace orvex {
namespace {

using enum DataKind;

enum Use : unsigned {
    kScanned = 1U,     ///< found by a page's search of a folder
    kNamed = 2U,       ///< taken when it is given by name
    kRecognised = 4U,  ///< its name alone tells the kind
    kUsual = kScanned | kNamed | kRecognised,
};

struct FileType {
    std::wstring_view name;  ///< extension with its dot, or a whole file name; lower case
    DataKind kind;
    unsigned uses;
    int filterRank = 0;                 ///< among the picker's filters of one extension; 0: has none
    std::wstring_view filterName = {};  ///< "TIF" for the filter "TIF Files (*.tif)"
};

/// The one file in the folder of an ArcInfo coverage that stands for it.
constexpr std::wstring_view kCoverageFile = L"hdr.adf";

// In the order in which the filter of all image files names them.
constexpr FileType kFileTypes[] = {
    {L".las", Las, kUsual, 1, L"LAS"},
    {L".laz", Las, kUsual, 2, L"LAZ"},
    {L".tif", Raster, kUsual, 1, L"TIF"},
    {L".tiff", Raster, kUsual},
    {L".jpg", Raster, kUsual, 2, L"JPEG"},
    {L".jpeg", Raster, kUsual},
    {L".rgb", Raster, kUsual},
    {L".png", Raster, kUsual, 3, L"PNG"},
    {L".sid", Raster, kNamed, 6, L"MrSID"},  // such files are picked one by one
    {L".gif", Raster, kUsual, 4, L"GIF"},
    {L".bmp", Raster, kUsual, 5, L"BMP"},
    {L".jp2", Raster, kUsual, 7, L"JP2000"},
    {L".jp2k", Raster, kUsual},
    {L".flt", Raster, kUsual},
    {L".ecw", Raster, kUsual, 8, L"ECW"},
    {L".img", Raster, kUsual, 9, L"IMG"},
    // Elevation formats that are no images.
    {L".asc", Dem, kNamed | kRecognised},
    {L".bil", Dem, kNamed | kRecognised},
    {L".dem", Dem, kNamed | kRecognised},
    {L".dt0", Dem, kNamed | kRecognised},
    {L".dt1", Dem, kNamed | kRecognised},
    {L".dt2", Dem, kNamed | kRecognised},
    {L".grd", Dem, kNamed | kRecognised},
    {L".hgt", Dem, kNamed | kRecognised},
    {kCoverageFile, Dem, kNamed | kRecognised},
};

/// The kind whose filters a page's picker shows.
DataKind FilterKind(DataKind page) {
    return page == Dem ? Raster : page;
}

std::vector<std::wstring> Extensions(DataKind page, Use use) {
    std::vector<std::wstring> extensions;
    for (const FileType& type : kFileTypes) {
        if ((type.kind == page || type.kind == FilterKind(page)) && (type.uses & use) != 0) {
            extensions.push_back(ToUpper(type.name));
        }
    }
    return extensions;
}

}  // namespace

const char* DataKindName(DataKind kind) {
    constexpr const char* kNames[] = {"las", "raster", "dem"};
    return kNames[static_cast<int>(kind)];
}

std::vector<FileFilter> PickerFilters(DataKind page) {
    FileFilter all{L"All Image Files", {}};
    std::map<int, FileFilter> ranked;
    for (const FileType& type : kFileTypes) {
        if (type.kind != FilterKind(page)) {
            continue;
        }
        const std::wstring pattern = L"*" + std::wstring(type.name);
        all.patterns += (all.patterns.empty() ? L"" : L";") + pattern;
        if (type.filterRank != 0) {
            ranked[type.filterRank] = {std::wstring(type.filterName) + L" Files (" + pattern + L")", pattern};
        }
    }
    std::vector<FileFilter> filters;
    filters.reserve(ranked.size());
    for (auto& [rank, filter] : ranked) {
        filters.push_back(std::move(filter));
    }
    if (page == Las) {
        filters.push_back({L"LAS and LAZ Files (*.las, *.laz)", all.patterns});
    } else {
        filters.insert(filters.begin(), std::move(all));
        filters.push_back({L"All Files (*.*)", L"*.*"});
    }
    return filters;
}

std::vector<std::wstring> ScanExtensions(DataKind page) {
    return Extensions(page, kScanned);
}

std::vector<std::wstring> NamedExtensions(DataKind page) {
    return Extensions(page, kNamed);
}

bool IsNamedByFolder(std::wstring_view path) {
    return EqualNoCase(FileNameOf(path), kCoverageFile);
}

std::wstring StandInFor(const std::wstring& path) {
    if (FolderExists(path)) {
        const std::wstring folder = FileNameOf(path).empty() ? FolderOf(path) : path;
        for (const std::wstring& name : {std::wstring(kCoverageFile), ToUpper(kCoverageFile)}) {
            if (std::wstring file = FromPath(ToPath(folder) / ToPath(name)); FileExists(file)) {
                return file;
            }
        }
    }
    return path;
}

bool HasExtension(const std::wstring& path, const std::vector<std::wstring>& extensions) {
    const auto isListed = [&](const std::wstring& text) {
        return std::ranges::find(extensions, text) != extensions.end();
    };
    return isListed(UpperExtensionOf(path)) || isListed(ToUpper(FileNameOf(path)));
}

std::optional<DataKind> DataKindOf(std::wstring_view path) {
    const std::wstring extension = UpperExtensionOf(path);
    const std::wstring name = FileNameOf(path);
    const auto* const found = std::ranges::find_if(kFileTypes, [&](const FileType& type) {
        return (type.uses & kRecognised) != 0 &&
               EqualNoCase(type.name, type.name.starts_with(L'.') ? extension : name);
    });
    return found == std::ranges::end(kFileTypes) ? std::nullopt : std::optional(found->kind);
}

}  // namespace orvex
