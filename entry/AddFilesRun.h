#pragma once
#include <span>

#include "dialog/DialogServices.h"
#include "dialog/page/AddFilesPage.h"

class QWidget;

namespace orvex {

/// Shows the Add Files dialog over `parent` (null: none). True when it ended with OK and the record holds
/// anything to add; when it did not end with OK every page has freed what it held.
bool RunAddFiles(AddFilesParams& params, DialogServices& services, std::span<const PageDescription> pages,
                 QWidget* parent);

/// Whether any of the result lists that a host must act on is not empty.
bool HasResults(const AddFilesParams& params);

}  // namespace orvex
