// The system's own dialogs, used as a person would.
#include <gtest/gtest.h>
#include <windows.h>

#include <commctrl.h>
#include <commdlg.h>
#include <dlgs.h>
#include <shlobj.h>

#include <QApplication>
#include <QDialog>
#include <QTimer>
#include <functional>

#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"
#include "support/tests/Pickers.h"

namespace orvex {
namespace {

BOOL CALLBACK TakeDialog(HWND window, LPARAM found) {
    wchar_t className[16] = {};
    GetClassNameW(window, className, 16);
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    if (process != GetCurrentProcessId() || !IsWindowVisible(window) ||
        std::wstring(className) != L"#32770") {
        return TRUE;
    }
    *reinterpret_cast<HWND*>(found) = window;
    return FALSE;
}

/// Acts on the dialog that the next call opens, from a timer: the system's dialogs serve Qt's timers. `act`
/// is repeated until it returns true.
class WhenOpen {
  public:
    explicit WhenOpen(std::function<bool(HWND)> act) {
        QObject::connect(&timer_, &QTimer::timeout, [this, act = std::move(act)] {
            HWND dialog = nullptr;
            EnumWindows(TakeDialog, reinterpret_cast<LPARAM>(&dialog));
            if (dialog != nullptr && act(dialog)) {
                timer_.stop();
            }
        });
        timer_.start(10);
    }
    ~WhenOpen() { EXPECT_FALSE(timer_.isActive()) << "nothing was done to a dialog"; }

  private:
    QTimer timer_;
};

bool Press(HWND dialog, int button) {
    return PostMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(button), 0) != FALSE;
}

bool Cancel(HWND dialog) {
    return Press(dialog, IDCANCEL);
}

bool TypeNames(HWND dialog, const std::wstring& names) {
    const int edit = GetDlgItem(dialog, cmb13) != nullptr ? cmb13 : edt1;
    return SetDlgItemTextW(dialog, edit, names.c_str()) != FALSE && Press(dialog, IDOK);
}

BOOL CALLBACK TakeTree(HWND window, LPARAM found) {
    wchar_t className[32] = {};
    GetClassNameW(window, className, 32);
    if (std::wstring(className) != WC_TREEVIEWW) {
        return TRUE;
    }
    *reinterpret_cast<HWND*>(found) = window;
    return FALSE;
}

/// What is selected in the tree of a folder browser, as it is shown.
std::wstring SelectedFolder(HWND browser) {
    HWND tree = nullptr;
    EnumChildWindows(browser, TakeTree, reinterpret_cast<LPARAM>(&tree));
    wchar_t text[MAX_PATH] = {};
    TVITEMW item{};
    item.mask = TVIF_TEXT;
    item.hItem = TreeView_GetSelection(tree);
    item.pszText = text;
    item.cchTextMax = MAX_PATH;
    SendMessageW(tree, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
    return text;
}

std::wstring CurrentFolder() {
    return FromPath(std::filesystem::current_path());
}

TEST(SystemDialogs, TheFolderBrowserOpensOnTheCurrentFolder) {
    const testing::TemporaryFolder folder;
    const std::wstring before = CurrentFolder();
    QDialog owner;
    owner.show();
    std::filesystem::current_path(folder.Path());
    {
        const std::wstring name = FileNameOf(FromPath(folder.Path()));
        const std::wstring path = CurrentFolder();
        int polls = 0;
        // The browser goes to the folder step by step, and where folders come and go beside it Wine's may
        // stop on the way.
        const WhenOpen agreeing([&](HWND dialog) {
            if (++polls % 200 == 0) {
                SendMessageW(dialog, BFFM_SETSELECTIONW, TRUE, reinterpret_cast<LPARAM>(path.c_str()));
            }
            return SelectedFolder(dialog) == name && Press(dialog, IDOK);
        });
        EXPECT_EQ(MakeFilePickers()->PickFolder(L"Folder", {}), FromPath(folder.Path()));
    }
    {
        const WhenOpen cancelling(Cancel);
        EXPECT_EQ(MakeFilePickers()->PickFolder(L"Folder", {}), std::nullopt);
    }
    std::filesystem::current_path(ToPath(before));
}

}  // namespace

PickedFiles testing::PickTyping(const OpenFilesRequest& request, const std::string& names) {
    const std::wstring before = CurrentFolder();
    QDialog owner;
    owner.setModal(true);
    owner.show();
    HWND window = reinterpret_cast<HWND>(owner.winId());
    const WhenOpen typing([&](HWND dialog) {
        EXPECT_EQ(GetWindow(dialog, GW_OWNER), window);
        EXPECT_FALSE(IsWindowEnabled(window));
        return names.empty() ? Cancel(dialog) : TypeNames(dialog, FromUtf8(names));
    });
    PickedFiles picked = MakeFilePickers()->PickFiles(request);
    EXPECT_EQ(CurrentFolder(), before);
    EXPECT_TRUE(IsWindowEnabled(window));
    return picked;
}

}  // namespace orvex

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
