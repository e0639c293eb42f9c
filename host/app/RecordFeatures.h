#pragma once
// Feature files of a record.
#include <string>
#include <vector>

#include "host/app/Project.h"

class AddFilesParams;

namespace orvex {

/// Feature files and the layers of their shapefiles: the record's keys, or the next free "<key> (2)" where
/// the project has a layer of that name.
std::vector<AssignedFile> FeatureFilesOf(const AddFilesParams& record, const Project& project);

/// Their lines of RecordText: files by layer, then the options that matter to them.
std::wstring FeaturesText(const AddFilesParams& record);

}  // namespace orvex
