// The system's own dialogs, used as a person would.
#include <gmock/gmock.h>
#include <windows.h>

#include <commctrl.h>
#include <commdlg.h>
#include <dlgs.h>

#include <QApplication>
#include <QDialog>
#include <QTimer>
#include <functional>

#include "support/FilePickers.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

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

class SystemDialogs : public ::testing::Test {
  protected:
    SystemDialogs() : before(CurrentFolder()) {
        folder.Write(L"a.las", "x");
        folder.Write(L"b.LAS", "x");
        request.title = L"Add Files";
        request.initialFolder = FromPath(folder.Path());
        request.filters = {{L"LAS Files (*.las)", L"*.las"}};
        owner.setModal(true);
        owner.show();
    }
    ~SystemDialogs() override {
        EXPECT_EQ(CurrentFolder(), before);
        EXPECT_TRUE(IsWindowEnabled(OwnerHandle()));
    }
    HWND OwnerHandle() const { return reinterpret_cast<HWND>(owner.winId()); }
    PickedFiles PickTyping(const std::wstring& names) {
        const WhenOpen typing([&](HWND dialog) {
            EXPECT_EQ(GetWindow(dialog, GW_OWNER), OwnerHandle());
            EXPECT_FALSE(IsWindowEnabled(OwnerHandle()));
            return TypeNames(dialog, names);
        });
        return pickers->PickFiles(request);
    }

    const std::wstring before;
    testing::TemporaryFolder folder;
    OpenFilesRequest request;
    QDialog owner;
    std::unique_ptr<FilePickers> pickers = MakeFilePickers();
};

TEST_F(SystemDialogs, FilesComeWithFullPathsInTheOrderChosen) {
    const PickedFiles two = PickTyping(L"\"b.LAS\" \"a.las\"");
    EXPECT_EQ(two.outcome, PickOutcome::Picked);
    EXPECT_THAT(two.paths, ElementsAre(folder.Name(L"b.LAS"), folder.Name(L"a.las")));
    EXPECT_THAT(PickTyping(L"a.las").paths, ElementsAre(folder.Name(L"a.las")));
}

TEST_F(SystemDialogs, CancelledAndTooManyAreToldApart) {
    {
        const WhenOpen cancelling(Cancel);
        EXPECT_EQ(pickers->PickFiles(request).outcome, PickOutcome::Cancelled);
    }
    // One name, because Wine writes several beyond the end of the buffer.
    request.bufferCharacters = 12;
    const PickedFiles tooMany = PickTyping(L"a.las");
    EXPECT_EQ(tooMany.outcome, PickOutcome::BufferTooSmall);
    EXPECT_THAT(tooMany.paths, IsEmpty());
}

TEST_F(SystemDialogs, TheFolderBrowserOpensOnTheCurrentFolder) {
    std::filesystem::current_path(folder.Path());
    {
        const std::wstring name = FileNameOf(FromPath(folder.Path()));
        // The browser goes to the folder step by step.
        const WhenOpen agreeing(
            [&](HWND dialog) { return SelectedFolder(dialog) == name && Press(dialog, IDOK); });
        EXPECT_EQ(pickers->PickFolder(L"Folder"), FromPath(folder.Path()));
    }
    {
        const WhenOpen cancelling(Cancel);
        EXPECT_EQ(pickers->PickFolder(L"Folder"), std::nullopt);
    }
    std::filesystem::current_path(ToPath(before));
}

}  // namespace
}  // namespace orvex

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
