#pragma once
// Photos of a record on their way into a photo layer.
#include <string>
#include <vector>

#include "host/app/PhotoLayer.h"
#include "host/app/Project.h"

class AddFilesParams;

namespace orvex {

/// Folder of a project's photo layers; empty without a project.
std::wstring PhotoFolderOf(const std::wstring& projectFolder);
/// Full path of the layer that a text stands for: it may hold the project token, be relative to the folder of
/// photo layers and lack the extension. Throws LDataError where ResolveProjectPath does.
std::wstring PhotoLayerPath(const std::wstring& typed, const std::wstring& projectFolder);

/// Metadata of photos, in their order.
struct ReadPhotos {
    std::vector<PhotoRecord> photos;
    std::vector<FileFailure> failures;  ///< photos that cannot be read
    bool stopped = false;               ///< the rest was not read
};
/// The range of `progress` is the number of photos. From any thread.
ReadPhotos ReadPhotoMetadata(const std::vector<std::wstring>& paths, Kst::ProgressIf& progress);

/// What became of a record's photos.
struct PhotoImport {
    std::vector<NewFile> files;         ///< photos that can be read, with the project's layer for them
    std::vector<FileFailure> failures;  ///< photos that cannot be read
    PhotoLayerResult layer;
};
/// Reads the photos of a record and writes them to the photo layer that it names, or to a new one. Throws
/// LDataError if the layer cannot be written. `layer.stopped` is set if the user stopped it: nothing is
/// written then. From any thread.
PhotoImport ImportPhotos(const std::vector<std::wstring>& paths, const PhotoTarget& target,
                         Kst::ProgressIf& progress);
/// Where the photos of a record go. Throws like PhotoLayerPath.
PhotoTarget PhotoTargetOf(const AddFilesParams& record, const std::wstring& projectFolder);

/// The photos of a record as text for the user, as RecordText gives the files of other kinds; empty without
/// photos.
std::wstring PhotosText(const AddFilesParams& record);

}  // namespace orvex
