#pragma once
// What the LAS page asks of the shared parts, described.
#include <optional>
#include <string>
#include <vector>

#include "dialog/FileAdder.h"
#include "dialog/FolderScan.h"
#include "las/LasInspection.h"
#include "las/LasOpenMode.h"
#include "support/FilePickers.h"
#include "support/UserPrompts.h"

namespace orvex {

/// The extensions of the files that the page lists, upper-cased with their dot.
const std::vector<std::wstring>& LasExtensions();

OpenFilesRequest LasOpenFilesRequest();

/// Adds LAS files: how they are read, asked about and compared.
FileAdder<LasInspection> MakeLasFileAdder();

/// Reads the files of listed rows again.
FileAdder<LasInspection> MakeLasFileRefresher();

/// What the user is to know of a search: folders that could not be read, files of another kind among those
/// named, or that there was nothing. None when all is as expected.
std::optional<Prompt> ScanPrompt(const ScanResult& found);

/// One message that names every file that could not be opened and why; a long list is cut.
Prompt OpenFailuresPrompt(const std::vector<LasFileFailure>& failures);

}  // namespace orvex
