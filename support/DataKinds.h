#pragma once
// The file types that the component reads, and what each list of extensions takes of them.
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "support/FilePickers.h"

namespace orvex {

/// A kind of data: that of a page, or of the files listed there. A DEM page lists rasters too. The files of a
/// photo page are images, which by their names count as rasters.
enum class DataKind { Las, Raster, Dem, Feature, Photo };

/// Name of a kind in reports and exports: "las".
const char* DataKindName(DataKind kind);

/// Filters of the picker on a kind's page, in the order shown.
std::vector<FileFilter> PickerFilters(DataKind page);

/// Extensions that a page takes when it searches a folder; upper-cased, with their dot.
std::vector<std::wstring> ScanExtensions(DataKind page);

/// Extensions that a page takes of files given by name, such as picked or dropped ones; in the same form. A
/// whole file name ("HDR.ADF") stands for itself.
std::vector<std::wstring> NamedExtensions(DataKind page);

/// True for the file that stands for a folder of files, which together are one raster and go by the folder's
/// name: "hdr.adf" of an ArcInfo coverage.
bool IsNamedByFolder(std::wstring_view path);

/// The file that stands for a folder, with its path; any other path as it is.
std::wstring StandInFor(const std::wstring& path);

/// True if a file has one of the extensions or names.
bool HasExtension(const std::wstring& path, const std::vector<std::wstring>& extensions);

/// Kind of a file that is recognised by its name alone, in any letter case; nullopt for other names. Never
/// Photo.
std::optional<DataKind> DataKindOf(std::wstring_view path);

/// True if a file that counts as `found` by its name can also be read as `asked`: an image as a photo, or as
/// elevations.
bool CanBeReadAs(DataKind found, DataKind asked);

}  // namespace orvex
