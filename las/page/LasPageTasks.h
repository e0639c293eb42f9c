#pragma once
// What the LAS page asks of the shared parts, described.
#include <vector>

#include "dialog/page/FileAdder.h"
#include "dialog/page/FileListPageDescription.h"
#include "las/LasInspection.h"
#include "las/LasOpenMode.h"
#include "support/UserPrompts.h"

namespace orvex {

/// Texts, controls, filters and extensions of the page.
FileListPageDescription DescribeLasPage();

/// Adds LAS files: how they are read, asked about and compared.
FileAdder<LasInspection> MakeLasFileAdder();

/// Reads the files of listed rows again.
FileAdder<LasInspection> MakeLasFileRefresher();

/// One message that names every file that could not be opened and why; a long list is cut.
Prompt OpenFailuresPrompt(const std::vector<LasFileFailure>& failures);

}  // namespace orvex
