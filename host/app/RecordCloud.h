#pragma once
// Cloud layers of a record.
#include <string>
#include <vector>

#include "host/app/Project.h"
#include "host/app/RasterJobs.h"

class AddFilesParams;

namespace orvex {

/// Cloud layers of a record in the project's terms.
struct CloudLayers {
    std::vector<NewFile> files;        ///< under names that the project does not have
    std::vector<LayerFile> renewed;    ///< layers of an account that the project has, with links signed anew
    std::vector<FileFailure> renamed;  ///< names in the record that are taken, and what became of them
};

/// Each layer has one file, whose path is its URL as it is in the record.
CloudLayers CloudLayersOf(const AddFilesParams& record, const Project& project);

/// Gives the project's files the new links. Returns their places.
FilePlaces RenewLinks(Project& project, const std::vector<LayerFile>& renewed);

/// Lines of RecordText: the layers with their URLs, which are shown without their signatures.
std::wstring CloudText(const AddFilesParams& record);

/// Path of a file for people: of a cloud layer's, the URL without its signature.
std::wstring ShownPath(LayerKind kind, const std::wstring& path);

/// Name of a cloud layer's file in its URL, for people.
std::wstring FileNameOfUrl(const std::wstring& url);

}  // namespace orvex
