#pragma once

class AddFilesParams;

namespace orvex {

/// Empties the lists and maps that pages write into a record: files, details, layers. Deletes no detail
/// object; those that the host has left in a record may be gone already.
void ClearResults(AddFilesParams& record);

/// True if a list that a host acts on holds anything.
bool HasResults(const AddFilesParams& record);

/// Puts the results that a record held before in front of those of a call. A file that is in both is listed
/// once, and keeps its earlier detail object: the later one is not in the record.
void AddEarlierResults(const AddFilesParams& earlier, AddFilesParams& record);

}  // namespace orvex
