#pragma once
#include <string>

class AddFilesParams;

namespace orvex {

/// The record as a person reads it: the files by folder with what is known of each, the layers that they go
/// to, and the options chosen. Lines end in "\n".
std::wstring RecordText(const AddFilesParams& record);

}  // namespace orvex
