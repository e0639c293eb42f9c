#include <windows.h>

#include <htmlhelp.h>
#include <shlwapi.h>

#include "support/Files.h"
#include "support/HelpViewerQt.h"
#include "support/Log.h"
#include "support/NativeWindow_win.h"
#include "support/Text.h"

namespace orvex {
namespace {

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

std::unique_ptr<HelpViewer> MakeHelpViewer(const std::filesystem::path& folder) {
    return std::make_unique<CompiledHelpViewer>(folder);
}

}  // namespace orvex
