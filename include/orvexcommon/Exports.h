#pragma once
// The exported functions of the component.
#include <string>

#include "orvexcommon/AddFilesParams.h"
#include "orvexcommon/AddLidarChoice.h"

#if defined(_WIN32)
#if defined(ORVEXCOMMON_BUILD)
#define ORVEXCOMMON_API  // the module definition file says what is exported, and under which name
#else
#define ORVEXCOMMON_API __declspec(dllimport)
#endif
struct HWND__;
using HWND = HWND__*;
#else
#define ORVEXCOMMON_API __attribute__((visibility("default")))
/// The QWidget that a message belongs to, as QWidget::winId() gives it; null for none.
using HWND = void*;
#endif

/// Shows the Add Files dialog modally. True only when it ended with OK and at least one result list of
/// `params` is not empty. `params` must not be null and must outlive the call. Needs a QApplication; never
/// throws.
ORVEXCOMMON_API bool ShowAddFilesDialog(AddFilesParams* params);

/// Shows the messages that follow from the host's findings about LiDAR files to be added. `a`: files
/// are appended to existing layers; `b`: the CRS of files differ; `c`: files have no CRS; `d`: a header
/// cannot be true; `e`: the user is to be told of files that are skipped; `f`: files are in the project
/// already; `g`: files can no longer be opened. `owner` may be null. `stop` is set to true, never to false,
/// when nothing may be added. Needs a QApplication; never throws.
ORVEXCOMMON_API void MessageRegardingAddingLidar(HWND owner, const std::wstring& caption, bool a, bool b,
                                                 bool c, bool d, bool e, bool f, bool g, bool& stop);

/// Asks how LiDAR data is to be added, unless the user has asked not to be asked again: then the kept answer.
/// Without `readWriteAllowed` read-write cannot be chosen. Needs a QApplication; never throws.
ORVEXCOMMON_API AddLidarChoice GetAddingLidarChoice(bool readWriteAllowed);
