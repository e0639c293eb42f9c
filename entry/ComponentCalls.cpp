#include "entry/ComponentCalls.h"

#include <new>

#include "dialog/AddFilesDlg.h"
#include "dialog/CAddingLidarDlg.h"
#include "entry/CallScope.h"
#include "entry/PageTable.h"
#include "settings/OptionStore.h"
#include "support/DesktopQt.h"
#include "support/Environment.h"
#include "support/FilePickers.h"
#include "support/Log.h"

namespace orvex {
namespace {

/// The platform's halves of what the component needs, for one call: the only place where they are chosen.
class ComponentParts {
  public:
    /// `parent` is that of messages; null: the active window.
    explicit ComponentParts(const CallHost& host, QWidget* parent = nullptr)
        : hostObjects_(host.makeObjects()), prompts_(parent) {}

    DialogServices& Services() { return services_; }

  private:
    std::unique_ptr<RegistryStore> registry_ = MakeRegistryStore();
    std::unique_ptr<HostObjects> hostObjects_;
    UserPromptsQt prompts_;
    std::unique_ptr<FilePickers> pickers_ = MakeFilePickers();
    std::unique_ptr<HelpViewer> help_ = MakeHelpViewer(DataFolder());
    OptionStore options_{*registry_};
    DialogServices services_{prompts_, *pickers_, *help_, options_, *hostObjects_};
};

CallEnd EndOfException() {
    try {
        throw;
    } catch (const WindowsNotShown&) {
        return CallEnd::NotShown;
    } catch (const InvalidCall&) {
        return CallEnd::Invalid;
    } catch (const std::bad_alloc&) {
        return CallEnd::NoMemory;
    } catch (...) {
        return CallEnd::Failed;
    }
}

}  // namespace

CallOutcome OutcomeOfException(const wchar_t* function) noexcept {
    const CallEnd end = EndOfException();
    try {
        const std::wstring reason = CurrentExceptionText();
        LogWarning(std::wstring(function) + L": " + reason);
        return {end, reason};
    } catch (...) {
        return CallEnd::NoMemory;  // not even the log
    }
}

CallEnd AddFiles(AddFilesParams& params, const CallHost& host) {
    const CallScope scope(host.owner);
    ComponentParts parts(host);
    AddFilesDlg dialog(params, parts.Services(), AddFilesPages(), scope.Parent());
    return dialog.Run() ? CallEnd::Ok : CallEnd::Cancelled;
}

CallEnd AskAddingLidar(bool readWriteAllowed, const CallHost& host, AddLidarChoice& choice) {
    ComponentParts parts(host);
    CallEnd end = CallEnd::Ok;
    choice = DecideAddingLidar(parts.Services().options, readWriteAllowed, [&](bool allowed) {
        const CallScope scope(host.owner);
        CAddingLidarDlg dialog(allowed, scope.Parent());
        end = dialog.exec() == QDialog::Accepted ? CallEnd::Ok : CallEnd::Cancelled;
        return dialog.Answer();
    });
    return end;
}

void TellLidarFindings(const LidarFindings& findings, const std::wstring& caption, const CallHost& host) {
    const CallScope scope(host.owner);
    ComponentParts parts(host, scope.Parent());
    ShowLidarMessages(findings, caption, parts.Services().prompts);
}

}  // namespace orvex
