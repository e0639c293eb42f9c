#include "entry/tests/foreign/ForeignHost_win.h"

namespace orvex::foreign {
namespace {

constexpr const wchar_t* kWindowClass = L"ForeignHostWindow";
int paints = 0;

LRESULT CALLBACK OnMessage(HWND window, UINT message, WPARAM wide, LPARAM more) {
    if (message == WM_PAINT) {
        ++paints;
    }
    return DefWindowProcW(window, message, wide, more);
}

void RegisterWindowClass() {
    WNDCLASSW description{};
    description.lpfnWndProc = OnMessage;
    description.hInstance = GetModuleHandleW(nullptr);
    description.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_APPWORKSPACE + 1);
    description.lpszClassName = kWindowClass;
    RegisterClassW(&description);
}

BOOL CALLBACK TakeWindow(HWND window, LPARAM windows) {
    reinterpret_cast<std::set<HWND>*>(windows)->insert(window);
    return TRUE;
}

}  // namespace

std::filesystem::path& ComponentFolder() {
    static std::filesystem::path folder;
    return folder;
}

// With the altered search path the library's own company is looked for beside it, not beside this program.
Library::Library(const wchar_t* file)
    : module_(LoadLibraryExW((ComponentFolder() / file).make_preferred().c_str(), nullptr,
                             LOAD_WITH_ALTERED_SEARCH_PATH)) {}

Library::~Library() {
    if (module_ != nullptr) {
        FreeLibrary(module_);
    }
}

Component::Component()
    : show(library.Get<decltype(ShowAddFilesDialog)>("?ShowAddFilesDialog@@YA_NPEAVAddFilesParams@@@Z")),
      message(library.Get<decltype(MessageRegardingAddingLidar)>(
          "?MessageRegardingAddingLidar@@YAXPEAUHWND__@@AEBV?$basic_string@_WU?$char_traits@_W@std@@V?$"
          "allocator@_W"
          "@2@@std@@_N222222AEA_N@Z")),
      choice(
          library.Get<decltype(GetAddingLidarChoice)>("?GetAddingLidarChoice@@YA?AW4AddLidarChoice@@_N@Z")),
      canUnload(library.Get<HRESULT STDAPICALLTYPE()>("DllCanUnloadNow")) {}

MainWindow::MainWindow() {
    RegisterWindowClass();
    window_ = CreateWindowExW(0, kWindowClass, L"A host without Qt", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 60, 60,
                              900, 600, nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
    button_ = CreateWindowExW(0, L"BUTTON", L"Add Files...", WS_CHILD | WS_VISIBLE | WS_TABSTOP, 20, 20, 120,
                              30, window_, nullptr, GetModuleHandleW(nullptr), nullptr);
    SetForegroundWindow(window_);
    SetFocus(button_);
    PumpMessages();
}

MainWindow::~MainWindow() {
    DestroyWindow(window_);
    PumpMessages();
}

int MainWindow::Paints() {
    return paints;
}

int PumpMessages() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
        if (message.message == WM_QUIT) {
            return static_cast<int>(message.wParam);
        }
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return -1;
}

std::set<HWND> WindowsOfThread() {
    std::set<HWND> windows;
    EnumThreadWindows(GetCurrentThreadId(), TakeWindow, reinterpret_cast<LPARAM>(&windows));
    HWND window = nullptr;
    while ((window = FindWindowExW(HWND_MESSAGE, window, nullptr, nullptr)) != nullptr) {
        if (GetWindowThreadProcessId(window, nullptr) == GetCurrentThreadId()) {
            windows.insert(window);
        }
    }
    return windows;
}

std::set<HWND> VisibleOwned(HWND owner) {
    std::set<HWND> owned = WindowsOfThread();
    std::erase_if(owned, [owner](HWND window) {
        return IsWindowVisible(window) == FALSE || GetWindow(window, GW_OWNER) != owner;
    });
    return owned;
}

}  // namespace orvex::foreign
