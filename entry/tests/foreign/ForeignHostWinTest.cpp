// A plain Windows program, without Qt and in another folder than the component, calls it as such hosts do:
//  foreign_host_test FOLDER-OF-THE-COMPONENT
#include <gtest/gtest.h>
#include <objbase.h>
#include <shellscalingapi.h>

#include <cstdlib>

#include "entry/tests/foreign/ForeignHost_win.h"
#include "orvexcommon/LasFileInfo.h"

namespace orvex::foreign {
namespace {

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
    seen = {IsWindowEnabled(ownerNow) != FALSE, VisibleOwned(ownerNow).size(), canUnloadNow(),
            seen.steps + 1};
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
        ownerNow = window_.Handle();
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
        component_.message(window_.Button(), L"Caption", false, false, false, false, false, true, true, stop);
        EXPECT_TRUE(stop);
        EXPECT_EQ(driver_.left(), 0U);
    }

    // Result of the dialog with one file in it.
    bool AddOneFile() {
        driver_.serve(folder_.c_str());
        const std::filesystem::path file = folder_ / "a.las";
        EXPECT_TRUE(driver_.writeLas(file.c_str()));
        Begin("drop " + Utf8(file) + "\nclick ok");
        AddFilesParams params;
        const bool added = component_.show(&params);
        EXPECT_TRUE(params.lasFiles.empty());
        driver_.serve(nullptr);
        return added;
    }

    bool TellThreeThings() {
        Begin("click ok\nclick ok\nclick ok");
        bool stop = false;
        component_.message(window_.Handle(), L"Caption", true, true, false, true, true, true, false, stop);
        return driver_.left() == 0;
    }

    void ExpectAllIsAsBefore() {
        EXPECT_FALSE(driver_.hasQt());
        EXPECT_TRUE(IsWindowEnabled(window_.Handle()));
        EXPECT_EQ(GetForegroundWindow(), window_.Handle());
        EXPECT_EQ(GetActiveWindow(), window_.Handle());
        EXPECT_EQ(GetFocus(), window_.Button());
        EXPECT_EQ(VisibleOwned(window_.Handle()).size(), 0U);
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
            ASSERT_TRUE(component.library) << GetLastError();
            ASSERT_TRUE(component.show != nullptr && component.message != nullptr &&
                        component.choice != nullptr);
            EXPECT_FALSE(component.show(nullptr));
        }
        EXPECT_EQ(GetModuleHandleW(L"OrvexCommon.dll"), nullptr) << round;
    }
}

TEST_F(ForeignHost, GetsTheRecordFromTheDialogAsOftenAsItAsks) {
    driver_.serve(folder_.c_str());
    const std::filesystem::path files[] = {folder_ / "a.las", folder_ / L"\u00fcber b.las"};
    for (const auto& file : files) {
        EXPECT_TRUE(driver_.writeLas(file.c_str()));
    }
    for (int round = 0; round < 2; ++round) {
        Begin("drop " + Utf8(files[0]) + "|" + Utf8(files[1]) + "\nclick ok");
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

TEST_F(ForeignHost, NothingIsLeftAfterACall) {
    TellThatNothingCanBeAdded();
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
        EXPECT_NE(std::wstring(name).substr(0, 2), L"Qt") << window;
    }
}

// S_OK and the kind of apartment, or that COM is not there. Windows' own input methods may have started it.
std::pair<HRESULT, APTTYPE> Apartment() {
    APTTYPE apartment = APTTYPE_CURRENT;
    APTTYPEQUALIFIER qualifier{};
    return {CoGetApartmentType(&apartment, &qualifier), apartment};
}

TEST_F(ForeignHost, TheProcessIsAsItWas) {
    const auto apartment = Apartment();
    PROCESS_DPI_AWARENESS before{};
    GetProcessDpiAwareness(nullptr, &before);
    const UINT errorMode = GetErrorMode();
    TellThatNothingCanBeAdded();
    PROCESS_DPI_AWARENESS after{};
    GetProcessDpiAwareness(nullptr, &after);
    EXPECT_EQ(after, before);
    EXPECT_EQ(GetErrorMode(), errorMode);
    EXPECT_EQ(Apartment(), apartment);
}

TEST_F(ForeignHost, ItsWindowIsPaintedWhileTheDialogIsOpen) {
    static int before = 0;
    before = MainWindow::Paints();
    duringStep = [] {
        InvalidateRect(ownerNow, nullptr, TRUE);
        return MainWindow::Paints() > before;
    };
    TellThatNothingCanBeAdded();
}

TEST_F(ForeignHost, ADisabledOwnerStaysDisabled) {
    EnableWindow(window_.Handle(), FALSE);
    TellThatNothingCanBeAdded();
    EXPECT_FALSE(IsWindowEnabled(window_.Handle()));
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
    orvex::foreign::ComponentFolder() = std::filesystem::absolute(argv[1]);
    return RUN_ALL_TESTS();
}
