#pragma once
// The files of a record as the project takes them.
#include <set>
#include <string>
#include <vector>

#include "host/app/Project.h"

class AddFilesParams;

namespace orvex {

/// A folder and a name as a full path.
std::wstring JoinPath(const std::wstring& folder, const std::wstring& name);

/// The LAS files with the layers that the dialog assigned them to, without those whose full path is in
/// `skipped`.
std::vector<NewFile> LasFilesOf(const AddFilesParams& record, const std::set<std::wstring>& skipped);
/// The same for the rasters. A raster without details, which could not be read, keeps its name only.
std::vector<NewFile> RasterFilesOf(const AddFilesParams& record);

/// The layer that the dialog assigned a file of a kind to; `otherwise` when it assigned none.
std::wstring LayerNameOf(const std::map<std::wstring, std::wstring>& layerOfFile, const std::wstring& path,
                         const std::wstring& otherwise);

/// The details objects of a record belong to the host once the dialog ended with OK; this deletes them.
void DeleteDetails(AddFilesParams& record);

}  // namespace orvex
