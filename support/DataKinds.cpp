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
    kNamedPhoto = 8U,  ///< taken by name on the photo page too
    kUsual = kScanned | kNamed | kRecognised,
    kImage = kUsual | kNamedPhoto,
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

// In the order in which a page's filter of all its files names them.
constexpr FileType kFileTypes[] = {
    {L".las", Las, kUsual, 1, L"LAS"},
    {L".laz", Las, kUsual, 2, L"LAZ"},
    {L".tif", Raster, kImage, 1, L"TIF"},
    {L".tiff", Raster, kImage},
    {L".jpg", Raster, kImage, 2, L"JPEG"},
    {L".jpeg", Raster, kImage},
    {L".rgb", Raster, kUsual},
    {L".png", Raster, kImage, 3, L"PNG"},
    {L".sid", Raster, kNamed | kNamedPhoto, 6, L"MrSID"},  // such files are picked one by one
    {L".gif", Raster, kImage, 4, L"GIF"},
    {L".bmp", Raster, kImage, 5, L"BMP"},
    {L".jp2", Raster, kImage, 7, L"JP2000"},
    {L".jp2k", Raster, kImage},
    {L".flt", Raster, kImage},
    {L".ecw", Raster, kImage, 8, L"ECW"},
    {L".img", Raster, kImage, 9, L"IMG"},
    {L".shp", Feature, kUsual, 1, L"Shapefile"},
    {L".dwg", Feature, kUsual, 3, L"DWG"},
    {L".dgn", Feature, kUsual, 2, L"DGN"},
    {L".dxf", Feature, kUsual, 4, L"DXF"},
    {L".kml", Feature, kUsual, 5, L"KML"},
    {L".kmz", Feature, kUsual, 6, L"KMZ"},
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
    return page == Dem || page == Photo ? Raster : page;
}

const wchar_t* AllFilesName(DataKind page) {
    return page == Feature ? L"All Feature Files" : L"All Image Files";
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
    constexpr const char* kNames[] = {"las", "raster", "dem", "feature", "photo"};
    return kNames[static_cast<int>(kind)];
}

std::vector<FileFilter> PickerFilters(DataKind page) {
    FileFilter all{AllFilesName(page), {}};
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
    return Extensions(page, page == Photo ? kNamedPhoto : kNamed);
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

bool CanBeReadAs(DataKind found, DataKind asked) {
    return found == asked || (FilterKind(found) == FilterKind(asked) && !(found == Dem && asked == Photo));
}

}  // namespace orvex
