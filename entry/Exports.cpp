#include "orvexcommon/Exports.h"

#include "dialog/AddFilesDlg.h"
#include "dialog/CAddingLidarDlg.h"
#include "entry/CallScope.h"
#include "entry/PageTable.h"
#include "settings/OptionStore.h"
#include "support/DesktopQt.h"
#include "support/Environment.h"
#include "support/FilePickers.h"
#include "support/HostObjects.h"
#include "support/LDataError.h"
#include "support/Log.h"
#include "support/ModuleUse.h"

namespace orvex {
namespace {

/// The platform's halves of what the component needs, for one call: the only place where they are chosen.
class ComponentParts {
  public:
    /// `owner` is the parent of messages; null: the active window.
    explicit ComponentParts(QWidget* owner = nullptr) : prompts_(owner) {}

    DialogServices& Services() { return services_; }

  private:
    std::unique_ptr<RegistryStore> registry_ = MakeRegistryStore();
    std::unique_ptr<HostObjects> hostObjects_ = MakeHostObjects();
    UserPromptsQt prompts_;
    std::unique_ptr<FilePickers> pickers_ = MakeFilePickers();
    std::unique_ptr<HelpViewer> help_ = MakeHelpViewer(DataFolder());
    OptionStore options_{*registry_};
    DialogServices services_{prompts_, *pickers_, *help_, options_, *hostObjects_};
};

// No exception leaves the component: the host may be built with another runtime. What happened is logged.
template <typename Result, typename Body>
Result Exported(const wchar_t* name, Result onFailure, Body body) noexcept {
    const ModuleUse use;
    try {
        return body();
    } catch (...) {
        try {
            LogWarning(std::wstring(name) + L": " + CurrentExceptionText());
        } catch (...) {
            return onFailure;  // not even the log: memory is exhausted
        }
    }
    return onFailure;
}

}  // namespace
}  // namespace orvex

using orvex::Exported;

bool ShowAddFilesDialog(AddFilesParams* params) {
    return Exported(L"ShowAddFilesDialog", false, [params] {
        if (params == nullptr) {
            throw orvex::LDataError(L"no record was given");
        }
        const orvex::CallScope scope;
        orvex::ComponentParts parts;
        orvex::AddFilesDlg dialog(*params, parts.Services(), orvex::AddFilesPages(), scope.Parent());
        return dialog.Run();
    });
}

void MessageRegardingAddingLidar(HWND owner, const std::wstring& caption, bool a, bool b, bool c, bool d,
                                 bool e, bool f, bool g, bool& stop) {
    const orvex::LidarFindings findings{a, b, c, d, e, f, g};
    Exported(L"MessageRegardingAddingLidar", false, [&] {
        const orvex::CallScope scope(reinterpret_cast<orvex::NativeWindow>(owner));
        orvex::ComponentParts parts(scope.Parent());
        orvex::ShowLidarMessages(findings, caption, parts.Services().prompts);
        return true;
    });
    // Whether or not the user could be told.
    stop = stop || IsNothingToAdd(findings);
}

AddLidarChoice GetAddingLidarChoice(bool readWriteAllowed) {
    return Exported(L"GetAddingLidarChoice", ADD_LIDAR_READ_ONLY, [readWriteAllowed] {
        orvex::ComponentParts parts;
        return orvex::DecideAddingLidar(parts.Services().options, readWriteAllowed, [](bool allowed) {
            const orvex::CallScope scope;
            orvex::CAddingLidarDlg dialog(allowed, scope.Parent());
            dialog.exec();
            return dialog.Answer();
        });
    });
}
