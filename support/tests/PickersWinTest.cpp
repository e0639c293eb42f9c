// The system's own dialogs, used as a person would.
#include <gmock/gmock.h>
#include <windows.h>

#include <commctrl.h>
#include <commdlg.h>
#include <dlgs.h>

#include <QApplication>
#include <QDialog>
#include <QTimer>
#include <chrono>
#include <functional>
#include <thread>

#include "support/FilePickers.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using namespace std::chrono_literals;

struct Search {
    HWND found = nullptr;
};

BOOL CALLBACK TakeDialog(HWND window, LPARAM parameter) {
    wchar_t className[16] = {};
    GetClassNameW(window, className, 16);
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    if (process == GetCurrentProcessId() && IsWindowVisible(window) && std::wstring(className) == L"#32770") {
        reinterpret_cast<Search*>(parameter)->found = window;
        return FALSE;
    }
    return TRUE;
}

/// Waits, on a thread of its own, for the dialog that the next call opens, and does something to it.
class WhenOpen {
  public:
    explicit WhenOpen(std::function<void(HWND)> act)
        : thread_([act = std::move(act)] {
              Search search;
              for (const auto end = std::chrono::steady_clock::now() + 20s;
                   search.found == nullptr && std::chrono::steady_clock::now() < end;
                   std::this_thread::sleep_for(20ms)) {
                  EnumWindows(TakeDialog, reinterpret_cast<LPARAM>(&search));
              }
              ASSERT_NE(search.found, nullptr) << "no dialog came";
              std::this_thread::sleep_for(300ms);  // it fills itself after it is shown
              act(search.found);
              for (int i = 0; IsWindow(search.found) && i < 500; ++i) {
                  std::this_thread::sleep_for(20ms);
              }
              EXPECT_FALSE(IsWindow(search.found)) << "the dialog stayed";
              PostMessageW(search.found, WM_COMMAND, IDCANCEL, 0);
          }) {}

  private:
    std::jthread thread_;
};

void Press(HWND dialog, int button) {
    PostMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(button), 0);
}

void TypeNames(HWND dialog, const std::wstring& names) {
    SetDlgItemTextW(dialog, GetDlgItem(dialog, cmb13) != nullptr ? cmb13 : edt1, names.c_str());
    Press(dialog, IDOK);
}

BOOL CALLBACK TakeTree(HWND window, LPARAM parameter) {
    wchar_t className[32] = {};
    GetClassNameW(window, className, 32);
    if (std::wstring(className) != WC_TREEVIEWW) {
        return TRUE;
    }
    reinterpret_cast<Search*>(parameter)->found = window;
    return FALSE;
}

/// What is selected in the tree of a folder browser, as it is shown.
std::wstring SelectedFolder(HWND browser) {
    Search tree;
    EnumChildWindows(browser, TakeTree, reinterpret_cast<LPARAM>(&tree));
    wchar_t text[MAX_PATH] = {};
    TVITEMW item{};
    item.mask = TVIF_TEXT;
    item.hItem = TreeView_GetSelection(tree.found);
    item.pszText = text;
    item.cchTextMax = MAX_PATH;
    SendMessageW(tree.found, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
    return text;
}

/// Agrees once the folder of this name is selected: the browser goes to it step by step, and takes a press on
/// its button between two of them.
void AgreeTo(HWND browser, const std::wstring& name) {
    for (int i = 0; SelectedFolder(browser) != name && i < 500; ++i) {
        std::this_thread::sleep_for(20ms);
    }
    Press(browser, IDOK);
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
        QObject::connect(&timer, &QTimer::timeout, [this] { ++ticks; });
        timer.start(10);
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
            TypeNames(dialog, names);
        });
        return pickers->PickFiles(request);
    }

    const std::wstring before;
    testing::TemporaryFolder folder;
    OpenFilesRequest request;
    QDialog owner;
    QTimer timer;
    int ticks = 0;
    std::unique_ptr<FilePickers> pickers = MakeFilePickers();
};

TEST_F(SystemDialogs, FilesComeWithFullPathsInTheOrderChosen) {
    const PickedFiles two = PickTyping(L"\"b.LAS\" \"a.las\"");
    EXPECT_EQ(two.outcome, PickOutcome::Picked);
    EXPECT_THAT(two.paths, ElementsAre(folder.Name(L"b.LAS"), folder.Name(L"a.las")));
    EXPECT_GT(ticks, 3) << "timers go on while the dialog is open";
    EXPECT_THAT(PickTyping(L"a.las").paths, ElementsAre(folder.Name(L"a.las")));
}

TEST_F(SystemDialogs, CancelledAndTooManyAreToldApart) {
    {
        const WhenOpen cancelling([](HWND dialog) { Press(dialog, IDCANCEL); });
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
        const WhenOpen agreeing([&](HWND dialog) { AgreeTo(dialog, name); });
        EXPECT_EQ(pickers->PickFolder(L"Folder"), FromPath(folder.Path()));
    }
    {
        const WhenOpen cancelling([](HWND dialog) { Press(dialog, IDCANCEL); });
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
