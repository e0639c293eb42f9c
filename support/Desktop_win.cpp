#include <windows.h>

#include <commdlg.h>
#include <htmlhelp.h>
#include <objbase.h>
#include <shlobj.h>
#include <shlwapi.h>

#include <QGuiApplication>

#include "support/DesktopQt.h"
#include "support/FilePickers.h"
#include "support/Files.h"
#include "support/Handle_win.h"
#include "support/Log.h"
#include "support/OpenFileText.h"
#include "support/Text.h"

namespace orvex {
namespace {

/// The system's window of the active window of the application; null if there is none, or if Qt's platform
/// has no system windows (offscreen).
HWND ActiveNativeWindow() {
    const QWidget* window = ActiveQtWindow();
    const auto handle = reinterpret_cast<HWND>(window == nullptr ? 0 : window->window()->winId());
    return IsWindow(handle) != FALSE ? handle : nullptr;
}

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

/// The browser opens on its initial folder and shows the path of what is selected. `data`: that folder, a
/// std::wstring.
int CALLBACK OnFolderBrowser(HWND browser, UINT message, LPARAM parameter, LPARAM data) noexcept {
    try {
        if (message == BFFM_INITIALIZED) {
            SendMessageW(browser, BFFM_SETSELECTIONW, TRUE,
                         AsParameter(*reinterpret_cast<const std::wstring*>(data)));
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

    std::optional<std::wstring> PickFolder(const std::wstring& title,
                                           const std::wstring& initialFolder) override {
        const OleApartment apartment;
        const std::wstring first = initialFolder.empty() ? CurrentFolder() : initialFolder;
        BROWSEINFOW browser{};
        browser.hwndOwner = ActiveNativeWindow();
        browser.lpszTitle = title.c_str();
        // The new style needs a single-threaded apartment; without one the old style still serves.
        browser.ulFlags = apartment ? kFolderFlags : kFolderFlags & ~static_cast<UINT>(BIF_NEWDIALOGSTYLE);
        browser.lpfn = OnFolderBrowser;
        browser.lParam = reinterpret_cast<LPARAM>(&first);
        const TaskMemory<ITEMIDLIST> chosen(SHBrowseForFolderW(&browser));
        std::wstring folder = chosen ? PathOf(chosen.get()) : std::wstring();
        return folder.empty() ? std::nullopt : std::optional(std::move(folder));
    }

    std::optional<std::wstring> PickSaveFile(const SaveFileRequest& request) override {
        return PickSaveFileQt(request);
    }

    bool ShowInFolder(const std::wstring& path) override {
        const OleApartment apartment;
        TaskMemory<ITEMIDLIST> item(ILCreateFromPathW(path.c_str()));
        if (!item) {  // the file has gone
            item.reset(ILCreateFromPathW(FolderOf(path).c_str()));
        }
        return apartment && item && SUCCEEDED(SHOpenFolderAndSelectItems(item.get(), 0, nullptr, 0));
    }
};

using HtmlHelpFunction = decltype(&HtmlHelpW);

/// Null where the system has no HTML help. The library stays loaded, because its windows outlive the call; it
/// is not linked, because without it everything else still works.
HtmlHelpFunction FindHtmlHelp() {
    static const HMODULE library = LoadLibraryExW(L"hhctrl.ocx", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    if (library == nullptr) {
        return nullptr;
    }
    // By way of a pointer to void: GCC warns of a cast between types of functions.
    return reinterpret_cast<HtmlHelpFunction>(reinterpret_cast<void*>(GetProcAddress(library, "HtmlHelpW")));
}

/// The compiled manual in a window over the active one, else the HTML manual in the browser.
class CompiledHelpViewer final : public HelpViewer {
  public:
    explicit CompiledHelpViewer(const std::filesystem::path& folder)
        : compiled_(FromPath(folder / "orvex.chm")), browser_(folder) {}

    bool Show(HelpTopic topic) override { return ShowCompiled(topic) || browser_.Show(topic); }
    std::wstring ManualPath() const override { return browser_.ManualPath(); }

  private:
    bool ShowCompiled(HelpTopic topic) const {
        // HTML help shows an empty page for a manual on a network drive.
        if (!FileExists(compiled_) || PathIsNetworkPathW(compiled_.c_str()) != FALSE) {
            return false;
        }
        const HtmlHelpFunction htmlHelp = FindHtmlHelp();
        if (htmlHelp == nullptr || htmlHelp(ActiveNativeWindow(), compiled_.c_str(), HH_HELP_CONTEXT,
                                            static_cast<DWORD_PTR>(topic)) == nullptr) {
            LogWarning(L"HTML help does not show " + compiled_);
            return false;
        }
        return true;
    }

    std::wstring compiled_;
    HelpViewerQt browser_;
};

}  // namespace

std::unique_ptr<FilePickers> MakeFilePickers() {
    return std::make_unique<SystemPickers>();
}

std::unique_ptr<HelpViewer> MakeHelpViewer(const std::filesystem::path& folder) {
    return std::make_unique<CompiledHelpViewer>(folder);
}

// Qt asks for the state that belongs to the last message of this thread, which is an old one when another
// program's window had the keyboard till now, or when the host has a message loop of its own.
bool IsControlKeyHeld() {
    return GetAsyncKeyState(VK_CONTROL) < 0 ||
           QGuiApplication::queryKeyboardModifiers().testFlag(Qt::ControlModifier);
}

bool IsShiftKeyHeld() {
    return GetAsyncKeyState(VK_SHIFT) < 0 ||
           QGuiApplication::queryKeyboardModifiers().testFlag(Qt::ShiftModifier);
}

}  // namespace orvex
