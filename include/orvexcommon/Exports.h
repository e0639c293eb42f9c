#pragma once
// The exported functions of the component. None of them throws.
//
// Windows are shown on the calling thread. A host that uses Qt calls on the thread of its QApplication. In a
// host without Qt the component brings up Qt for the duration of the call and takes it down again, whichever
// thread calls; two at a time cannot. What cannot be shown (the host has a QCoreApplication only, or its
// QApplication on another thread; there is no display) counts as cancelled, and its reason is in the log.
//
// On Windows the dialogs belong to the host's window: they are placed over it, stay above it, and it takes no
// input until they close. When the host destroys that window, or quits (WM_QUIT, which it still receives),
// they end as with Cancel. Once a dialog has been shown, the library stays loaded until the process ends.
//
// The library exports these functions under the names that Microsoft's compiler gives them, and hosts find
// them by these. But what they pass is laid out as the compiler of this library does it: std::map,
// std::vector and std::wstring of libstdc++, that is mingw-w64's GCC 12 or newer with libstdc++-6.dll, and
// virtual functions by the Itanium ABI. A host built with another compiler or standard library must not pass
// an AddFilesParams or a std::wstring of its own; GetAddingLidarChoice, which takes and returns plain values,
// it may call.
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
/// The window that a message belongs to: a QWidget's winId(); null for none.
using HWND = void*;
#endif

/// Shows the Add Files dialog modally. True only when it ended with OK and at least one result list of
/// `params` is not empty. `params` must not be null and must outlive the call. The dialog belongs to the
/// active window of the calling thread.
ORVEXCOMMON_API bool ShowAddFilesDialog(AddFilesParams* params);

/// Shows the messages that follow from the host's findings about LiDAR files to be added. `a`: files
/// are appended to existing layers; `b`: the CRS of files differ; `c`: files have no CRS; `d`: a header
/// cannot be true; `e`: the user is to be told of files that are skipped; `f`: files are in the project
/// already; `g`: files can no longer be opened. `owner`: null for the active window of the calling thread.
/// `stop` is set to true, never to false, when nothing may be added.
ORVEXCOMMON_API void MessageRegardingAddingLidar(HWND owner, const std::wstring& caption, bool a, bool b,
                                                 bool c, bool d, bool e, bool f, bool g, bool& stop);

/// Asks how LiDAR data is to be added, unless the user has asked not to be asked again: then the kept answer.
/// Without `readWriteAllowed` read-write cannot be chosen. Belongs to the active window of the calling
/// thread.
ORVEXCOMMON_API AddLidarChoice GetAddingLidarChoice(bool readWriteAllowed);
