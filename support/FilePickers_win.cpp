#include "support/FilePickers.h"

#include <windows.h>

#include <commdlg.h>
#include <objbase.h>
#include <shlobj.h>

#include <array>
#include <new>

#include "support/GuardedPick.h"
#include "support/NativeWindow_win.h"
#include "support/OpenFileText.h"
#include "support/SystemMemory_win.h"

namespace orvex {
namespace {

constexpr DWORD kOpenFilesFlags =
    OFN_EXPLORER | OFN_ALLOWMULTISELECT | OFN_PATHMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
static_assert(kOpenFilesFlags == 0x80A0C);

// The last bit has no name and no effect; hosts have always seen it.
constexpr UINT kFolderFlags = BIF_RETURNONLYFSDIRS | BIF_DONTGOBELOWDOMAIN | BIF_NEWDIALOGSTYLE | 0x40000;
static_assert(kFolderFlags == 262211);

constexpr std::size_t kLongestPath = 32768;

/// OLE on this thread for as long as this lives, because the browser of the new style has drag and drop;
/// where it was there before, it stays.
class OleApartment {
  public:
    OleApartment() : result_(OleInitialize(nullptr)) {}
    ~OleApartment() {
        if (SUCCEEDED(result_)) {
            OleUninitialize();
        }
    }
    OleApartment(const OleApartment&) = delete;
    OleApartment& operator=(const OleApartment&) = delete;

    /// False on a thread that was given to the multithreaded apartment before.
    explicit operator bool() const { return SUCCEEDED(result_); }

  private:
    HRESULT result_;
};

/// The folder's path; empty when it is no folder of the file system.
std::wstring PathOf(const ITEMIDLIST* folder) {
    std::wstring path(kLongestPath, L'\0');
    if (SHGetPathFromIDListEx(folder, path.data(), static_cast<DWORD>(path.size()), GPFIDL_DEFAULT) ==
        FALSE) {
        return {};
    }
    path.resize(path.find(L'\0'));
    return path;
}

std::wstring CurrentFolder() {
    std::wstring folder(kLongestPath, L'\0');
    folder.resize(GetCurrentDirectoryW(static_cast<DWORD>(folder.size()), folder.data()));
    return folder;
}

/// Puts the current folder back, which is the host's. By its documentation the open dialog does not heed
/// OFN_NOCHANGEDIR.
class KeptFolder {
  public:
    KeptFolder() = default;
    ~KeptFolder() { SetCurrentDirectoryW(folder_.c_str()); }
    KeptFolder(const KeptFolder&) = delete;
    KeptFolder& operator=(const KeptFolder&) = delete;

  private:
    std::wstring folder_ = CurrentFolder();
};

LPARAM AsParameter(const std::wstring& text) {
    return reinterpret_cast<LPARAM>(text.c_str());
}

/// The browser opens on the current folder and shows the path of what is selected.
int CALLBACK OnFolderBrowser(HWND browser, UINT message, LPARAM parameter, LPARAM) noexcept {
    try {
        if (message == BFFM_INITIALIZED) {
            SendMessageW(browser, BFFM_SETSELECTIONW, TRUE, AsParameter(CurrentFolder()));
        } else if (message == BFFM_SELCHANGED) {
            const std::wstring path = PathOf(reinterpret_cast<const ITEMIDLIST*>(parameter));
            SendMessageW(browser, BFFM_SETSTATUSTEXTW, 0, AsParameter(path));
        }
    } catch (const std::bad_alloc&) {
        return 0;  // the browser works without it
    }
    return 0;
}

PickedFiles Pick(const OpenFilesRequest& request) {
    std::wstring buffer(request.bufferCharacters, L'\0');
    const std::wstring filters = OpenFileFilterText(request.filters);
    OPENFILENAMEW dialog{};
    dialog.lStructSize = sizeof(dialog);
    dialog.hwndOwner = ActiveNativeWindow();
    dialog.lpstrFilter = filters.empty() ? nullptr : filters.c_str();
    dialog.nFilterIndex = 1;
    dialog.lpstrFile = buffer.data();
    dialog.nMaxFile = static_cast<DWORD>(buffer.size());
    dialog.lpstrInitialDir = request.initialFolder.empty() ? nullptr : request.initialFolder.c_str();
    dialog.lpstrTitle = request.title.empty() ? nullptr : request.title.c_str();
    dialog.Flags = kOpenFilesFlags;
    const KeptFolder kept;
    if (GetOpenFileNameW(&dialog) != FALSE) {
        return {PickOutcome::Picked, ParseOpenFileSelection(buffer)};
    }
    const DWORD error = CommDlgExtendedError();
    const PickOutcome outcome = OutcomeOfOpenFileError(error);
    if (outcome == PickOutcome::Failed) {
        LogWarning(L"The file dialog failed: error " + std::to_wstring(error));
    }
    return {outcome, {}};
}

/// The system disables the owner while its dialogs are open; their message loop serves Qt's timers and events
/// as well.
class SystemPickers final : public FilePickers {
  public:
    PickedFiles PickFiles(const OpenFilesRequest& request) override {
        return GuardedPick([&] { return Pick(request); });
    }

    std::optional<std::wstring> PickFolder(const std::wstring& title) override {
        const OleApartment apartment;
        BROWSEINFOW browser{};
        browser.hwndOwner = ActiveNativeWindow();
        browser.lpszTitle = title.c_str();
        // The new style needs a single-threaded apartment; without one the old style still serves.
        browser.ulFlags = apartment ? kFolderFlags : kFolderFlags & ~static_cast<UINT>(BIF_NEWDIALOGSTYLE);
        browser.lpfn = OnFolderBrowser;
        const TaskMemory<ITEMIDLIST> chosen(SHBrowseForFolderW(&browser));
        std::wstring folder = chosen ? PathOf(chosen.get()) : std::wstring();
        return folder.empty() ? std::nullopt : std::optional(std::move(folder));
    }
};

}  // namespace

std::unique_ptr<FilePickers> MakeFilePickers() {
    return std::make_unique<SystemPickers>();
}

}  // namespace orvex
