// A plain Windows program, without Qt and in another folder than the component, calls it as such hosts do:
//  foreign_host_test FOLDER-OF-THE-COMPONENT
#include <gtest/gtest.h>
#include <objbase.h>
#include <shellscalingapi.h>

#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>
#include <tuple>

#include "entry/tests/foreign/ForeignDriver.h"
#include "orvexcommon/Exports.h"
#include "orvexcommon/LasFileInfo.h"

namespace orvex::foreign {

// Where the component and its libraries are.
std::filesystem::path componentFolder;

namespace {

/// A library loaded from the component's folder, freed when this goes. With the altered search path its own
/// company is looked for beside it, not beside this program.
struct Library {
    explicit Library(const wchar_t* file)
        : module(LoadLibraryExW((componentFolder / file).make_preferred().c_str(), nullptr,
                                LOAD_WITH_ALTERED_SEARCH_PATH)) {}
    ~Library() { FreeLibrary(module); }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    /// Null when there is no such function.
    template <typename Function>
    Function* Get(const char* name) const {
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module, name)));
    }

    HMODULE module;
};

/// The component's functions, found by the names that hosts bind to.
struct Component {
    Library library{L"OrvexCommon.dll"};
    decltype(&ShowAddFilesDialog) show =
        library.Get<decltype(ShowAddFilesDialog)>("?ShowAddFilesDialog@@YA_NPEAVAddFilesParams@@@Z");
    decltype(&MessageRegardingAddingLidar) message = library.Get<decltype(MessageRegardingAddingLidar)>(
        "?MessageRegardingAddingLidar@@YAXPEAUHWND__@@AEBV?$basic_string@_WU?$char_traits@_W@std@@V?$"
        "allocator@_W@2@@std@@_N222222AEA_N@Z");
    decltype(&GetAddingLidarChoice) choice =
        library.Get<decltype(GetAddingLidarChoice)>("?GetAddingLidarChoice@@YA?AW4AddLidarChoice@@_N@Z");
    HRESULT(STDAPICALLTYPE* canUnload)() = library.Get<HRESULT STDAPICALLTYPE()>("DllCanUnloadNow");
};

/// What works the dialog from inside.
struct Driver {
    Library library{L"foreign_driver.dll"};
    DriverBeginFunction* begin = library.Get<DriverBeginFunction>("DriverBegin");
    DriverLeftFunction* left = library.Get<DriverLeftFunction>("DriverLeft");
    DriverHasQtFunction* hasQt = library.Get<DriverHasQtFunction>("DriverHasQt");
    DriverServeFunction* serve = library.Get<DriverServeFunction>("DriverServe");
};

/// Dispatches what is in the thread's queue. The exit code when the loop is to end, else -1.
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

/// The host's main window, with a button that has the focus.
struct MainWindow {
    MainWindow() {
        WNDCLASSW description{};
        description.lpfnWndProc = DefWindowProcW;
        description.hInstance = GetModuleHandleW(nullptr);
        description.lpszClassName = L"ForeignHostWindow";
        RegisterClassW(&description);
        window = CreateWindowExW(0, description.lpszClassName, L"A host without Qt",
                                 WS_OVERLAPPEDWINDOW | WS_VISIBLE, 60, 60, 900, 600, nullptr, nullptr,
                                 description.hInstance, nullptr);
        button = CreateWindowExW(0, L"BUTTON", L"Add Files...", WS_CHILD | WS_VISIBLE | WS_TABSTOP, 20, 20,
                                 120, 30, window, nullptr, description.hInstance, nullptr);
        SetForegroundWindow(window);
        SetFocus(button);
        PumpMessages();
    }
    ~MainWindow() {
        DestroyWindow(window);
        PumpMessages();
    }
    MainWindow(const MainWindow&) = delete;
    MainWindow& operator=(const MainWindow&) = delete;

    HWND window;
    HWND button;
};

BOOL CALLBACK TakeWindow(HWND window, LPARAM windows) {
    reinterpret_cast<std::set<HWND>*>(windows)->insert(window);
    return TRUE;
}

/// The windows of this thread, hidden and message-only ones as well.
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

/// Number of visible top-level windows that a window owns.
std::size_t VisibleOwned(HWND owner) {
    std::set<HWND> owned = WindowsOfThread();
    std::erase_if(owned, [owner](HWND window) {
        return IsWindowVisible(window) == FALSE || GetWindow(window, GW_OWNER) != owner;
    });
    return owned.size();
}

// What a step of the driver sees while a dialog is open.
struct Seen {
    bool ownerEnabled = true;
    std::size_t owned = 0;
    HRESULT canUnload = S_OK;
    int steps = 0;
};
Seen seen;
HWND ownerNow = nullptr;
HRESULT(STDAPICALLTYPE* canUnloadNow)() = nullptr;
bool (*duringStep)() = nullptr;

// Windows of the system's own; with Qt's "offscreen" there are none that could be owned.
bool HasSystemWindows() {
    const wchar_t* platform = _wgetenv(L"ORVEX_QT_PLATFORM");
    return platform == nullptr || std::wstring(platform) != L"offscreen";
}

bool OnStep() {
    seen = {IsWindowEnabled(ownerNow) != FALSE, VisibleOwned(ownerNow), canUnloadNow(), seen.steps + 1};
    return duringStep == nullptr || duringStep();
}

std::string Utf8(const std::filesystem::path& path) {
    const auto text = path.u8string();
    return {text.begin(), text.end()};
}

class ForeignHost : public ::testing::Test {
  protected:
    ForeignHost() {
        folder_ = std::filesystem::temp_directory_path() /
                  ("orvex-foreign-" + std::to_string(GetCurrentProcessId()));
        std::filesystem::create_directories(folder_);
        ownerNow = window_.window;
        canUnloadNow = component_.canUnload;
        duringStep = nullptr;
        seen = {};
    }
    ~ForeignHost() override {
        std::error_code none;
        std::filesystem::remove_all(folder_, none);
    }

    void Begin(const std::string& commands) {
        seen = {};
        driver_.begin(commands.c_str(), OnStep);
    }

    void TellThatNothingCanBeAdded() {
        Begin("click ok");
        bool stop = false;
        component_.message(window_.button, L"Caption", false, false, false, false, false, true, true, stop);
        EXPECT_TRUE(stop);
        EXPECT_EQ(driver_.left(), 0U);
    }

    // Result of the dialog with one file in it.
    bool AddOneFile() {
        driver_.serve(folder_.c_str());
        Begin("drop " + Utf8(folder_ / "a.las") + "\nclick ok");
        AddFilesParams params;
        const bool added = component_.show(&params);
        EXPECT_TRUE(params.lasFiles.empty());
        driver_.serve(nullptr);
        return added;
    }

    bool TellThreeThings() {
        Begin("click ok\nclick ok\nclick ok");
        bool stop = false;
        component_.message(window_.window, L"Caption", true, true, false, true, true, true, false, stop);
        return driver_.left() == 0;
    }

    void ExpectAllIsAsBefore() {
        EXPECT_FALSE(driver_.hasQt());
        EXPECT_TRUE(IsWindowEnabled(window_.window));
        EXPECT_EQ(GetForegroundWindow(), window_.window);
        EXPECT_EQ(GetActiveWindow(), window_.window);
        EXPECT_EQ(GetFocus(), window_.button);
        EXPECT_EQ(VisibleOwned(window_.window), 0U);
        EXPECT_EQ(PumpMessages(), -1);
    }

    std::filesystem::path folder_;
    Component component_;
    Driver driver_;
    MainWindow window_;
};

// The first test: once a dialog has been shown the library stays.
TEST(ForeignHostLoading, TheComponentComesAndGoesUntilItHasShownADialog) {
    for (int round = 0; round < 3; ++round) {
        {
            Component component;
            ASSERT_TRUE(component.library.module) << GetLastError();
            ASSERT_TRUE(component.show && component.message && component.choice);
            EXPECT_FALSE(component.show(nullptr));
        }
        EXPECT_EQ(GetModuleHandleW(L"OrvexCommon.dll"), nullptr) << round;
    }
}

TEST_F(ForeignHost, GetsTheRecordFromTheDialogAsOftenAsItAsks) {
    driver_.serve(folder_.c_str());
    const std::filesystem::path files[] = {folder_ / "a.las", folder_ / L"\u00fcber b.las"};
    for (int round = 0; round < 2; ++round) {
        Begin("drop " + Utf8(files[0]) + "|" + Utf8(files[1]) + "\nclick ok\nclick yes");  // they have no CRS
        AddFilesParams params;
        EXPECT_TRUE(component_.show(&params)) << round;
        EXPECT_EQ(driver_.left(), 0U);
        ASSERT_EQ(params.lasFiles.size(), 1U);
        EXPECT_EQ(params.lasFiles.begin()->second.size(), std::size(files));
        EXPECT_EQ(params.lasFileDetails.size(), std::size(files));
        EXPECT_EQ(seen.canUnload, S_FALSE);
        EXPECT_EQ(component_.canUnload(), S_FALSE) << "the host holds objects";
        for (auto& [path, details] : params.lasFileDetails) {
            EXPECT_EQ(details->FileName(), path);
            delete details;
        }
        EXPECT_EQ(component_.canUnload(), S_OK);
        EXPECT_FALSE(seen.ownerEnabled);
        EXPECT_EQ(seen.owned, HasSystemWindows() ? 1U : 0U);
        ExpectAllIsAsBefore();
    }
    driver_.serve(nullptr);
    FreeLibrary(GetModuleHandleW(L"OrvexCommon.dll"));
    EXPECT_NE(GetModuleHandleW(L"OrvexCommon.dll"), nullptr) << "a worker may still be inside";
}

// What the component could change: DPI awareness, error mode, and S_OK with the kind of apartment or that COM
// is not there. Windows' own input methods may have started it.
std::tuple<PROCESS_DPI_AWARENESS, UINT, HRESULT, APTTYPE> StateOfProcess() {
    PROCESS_DPI_AWARENESS awareness{};
    GetProcessDpiAwareness(nullptr, &awareness);
    APTTYPE apartment = APTTYPE_CURRENT;
    APTTYPEQUALIFIER qualifier{};
    const HRESULT result = CoGetApartmentType(&apartment, &qualifier);
    return {awareness, GetErrorMode(), result, apartment};
}

TEST_F(ForeignHost, NothingIsLeftAfterACall) {
    const auto before = StateOfProcess();
    TellThatNothingCanBeAdded();
    EXPECT_EQ(StateOfProcess(), before);
    const std::set<HWND> after = WindowsOfThread();
    for (int call = 0; call < 10; ++call) {
        TellThatNothingCanBeAdded();
        ExpectAllIsAsBefore();
    }
    EXPECT_FALSE(component_.show(nullptr)) << "refused";
    ExpectAllIsAsBefore();
    EXPECT_EQ(WindowsOfThread(), after);
    for (HWND window : after) {
        wchar_t name[64] = L"";
        GetClassNameW(window, name, 64);
        EXPECT_FALSE(std::wstring(name).starts_with(L"Qt")) << window;
    }
}

TEST_F(ForeignHost, ADisabledOwnerStaysDisabled) {
    EnableWindow(window_.window, FALSE);
    TellThatNothingCanBeAdded();
    EXPECT_FALSE(IsWindowEnabled(window_.window));
}

TEST_F(ForeignHost, QuittingEndsTheDialogsAndReachesTheHost) {
    duringStep = [] {
        if (seen.steps == 2) {  // with the file in the dialog
            PostQuitMessage(7);
        }
        return seen.steps == 1;
    };
    EXPECT_FALSE(AddOneFile()) << "not as Cancel";
    EXPECT_EQ(PumpMessages(), 7);
    ExpectAllIsAsBefore();

    duringStep = [] {
        if (seen.steps == 1) {
            PostQuitMessage(8);
        }
        return false;
    };
    EXPECT_FALSE(TellThreeThings()) << "one after the other, none of them answered";
    EXPECT_EQ(PumpMessages(), 8);
}

TEST_F(ForeignHost, TheDialogEndsWithItsOwner) {
    duringStep = [] {
        if (seen.steps == 2) {
            DestroyWindow(ownerNow);
        }
        return seen.steps == 1;
    };
    EXPECT_FALSE(AddOneFile()) << "not as Cancel";
    EXPECT_FALSE(driver_.hasQt());
}

}  // namespace
}  // namespace orvex::foreign

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    if (argc != 2) {
        return 2;
    }
    orvex::foreign::componentFolder = std::filesystem::absolute(argv[1]);
    return RUN_ALL_TESTS();
}
