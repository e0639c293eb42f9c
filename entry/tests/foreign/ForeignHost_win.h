#pragma once
#include <windows.h>

#include <filesystem>
#include <set>
#include <string>

#include "entry/tests/foreign/ForeignDriver.h"
#include "orvexcommon/Exports.h"

namespace orvex::foreign {

/// Where the component and its libraries are; set before the tests run.
std::filesystem::path& ComponentFolder();

/// A library loaded from the component's folder, freed when this goes.
class Library {
  public:
    explicit Library(const wchar_t* file);
    ~Library();
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    /// Null when there is no such function.
    template <typename Function>
    Function* Get(const char* name) const {
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module_, name)));
    }
    explicit operator bool() const { return module_ != nullptr; }

  private:
    HMODULE module_;
};

/// The component's functions, found by the names that hosts bind to.
struct Component {
    Library library{L"OrvexCommon.dll"};
    decltype(&ShowAddFilesDialog) show;
    decltype(&MessageRegardingAddingLidar) message;
    decltype(&GetAddingLidarChoice) choice;
    HRESULT(STDAPICALLTYPE* canUnload)();
    Component();
};

/// What works the dialog from inside.
struct Driver {
    Library library{L"foreign_driver.dll"};
    DriverBeginFunction* begin = library.Get<DriverBeginFunction>("DriverBegin");
    DriverLeftFunction* left = library.Get<DriverLeftFunction>("DriverLeft");
    DriverHasQtFunction* hasQt = library.Get<DriverHasQtFunction>("DriverHasQt");
    DriverServeFunction* serve = library.Get<DriverServeFunction>("DriverServe");
    DriverWriteLasFunction* writeLas = library.Get<DriverWriteLasFunction>("DriverWriteLas");
};

/// The host's main window, with a button that has the focus.
class MainWindow {
  public:
    MainWindow();
    ~MainWindow();
    MainWindow(const MainWindow&) = delete;
    MainWindow& operator=(const MainWindow&) = delete;

    HWND Handle() const { return window_; }
    HWND Button() const { return button_; }
    /// How often it was painted.
    static int Paints();

  private:
    HWND window_;
    HWND button_;
};

/// Dispatches what is in the thread's queue. The exit code when the loop is to end, else -1.
int PumpMessages();

/// The windows of this thread, hidden and message-only ones as well.
std::set<HWND> WindowsOfThread();

/// The visible top-level windows that a window owns.
std::set<HWND> VisibleOwned(HWND owner);

}  // namespace orvex::foreign
