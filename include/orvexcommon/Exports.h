#pragma once
// The exported functions of the component. None of them throws.
//
// Windows are shown on the calling thread. A host that uses Qt calls on the thread of its QApplication. In a
// host without Qt the component starts Qt for the duration of the call, on whichever thread calls, one at a
// time. A window that cannot be shown (the host has only a QCoreApplication, or its QApplication on another
// thread; the display or Qt's platform plugin cannot be used) counts as cancelled, and the log has the
// reason.
//
// On Windows the host's window owns the dialogs: they are centred on it and stay above it, and it is disabled
// until they close. If the host destroys the owner, on any platform, or quits (it still receives WM_QUIT),
// the dialogs are cancelled. Once a dialog has been shown, the library stays loaded until the process ends.
//
// The functions are exported under the names of Microsoft's compiler, by which hosts bind to them. Their
// arguments, however, have the layout of this library's compiler: std::map, std::vector and std::wstring of
// libstdc++ (mingw-w64's GCC 12 or newer with libstdc++-6.dll) and virtual functions of the Itanium ABI. A
// host built with another compiler or standard library must not pass its own AddFilesParams or std::wstring;
// it may call GetAddingLidarChoice, which takes and returns plain values, or use orvex.h.
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
/// Owner of a message: a QWidget's winId(); null for none.
using HWND = void*;
#endif

/// Shows the Add Files dialog modally. True only if it ends with OK and anything was chosen; what a record
/// holds from an earlier call does not count. `params`, which should be a fresh record, must not be null and
/// must outlive the call. The calling thread's active window owns the dialog.
ORVEXCOMMON_API bool ShowAddFilesDialog(AddFilesParams* params);

/// Shows the messages for the host's findings about LiDAR files to be added. `a`: files are appended to
/// existing layers; `b`: files differ in CRS; `c`: files have no CRS; `d`: a header is implausible; `e`: the
/// user is to be told of skipped files; `f`: files are in the project already; `g`: files can no longer be
/// opened. `owner`: null for the calling thread's active window. `stop` is set to true, never to false, if
/// nothing may be added (`f` and `g`), even if no message can be shown.
ORVEXCOMMON_API void MessageRegardingAddingLidar(HWND owner, const std::wstring& caption, bool a, bool b,
                                                 bool c, bool d, bool e, bool f, bool g, bool& stop);

/// Asks how LiDAR data is to be added, or returns the stored answer if the user has ticked "do not ask
/// again". Without `readWriteAllowed` read-write cannot be chosen; an answer stored earlier is returned all
/// the same. ADD_LIDAR_READ_ONLY as well if the user cancels, and if the dialog cannot be shown. The calling
/// thread's active window owns the dialog.
ORVEXCOMMON_API AddLidarChoice GetAddingLidarChoice(bool readWriteAllowed);
