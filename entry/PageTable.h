#pragma once
#include <span>

#include "dialog/page/AddFilesPage.h"

namespace orvex {

/// The pages of the Add Files dialog, in the order of the tabs. A kind that has no row has no tab, whatever
/// its switch says.
std::span<const PageDescription> AddFilesPages();

}  // namespace orvex
