#pragma once
// The account that the host signs its user in to.
#include <QDialog>
#include <optional>

#include "orvexcommon/CloudAccount.h"

class QComboBox;
class QLineEdit;

namespace orvex {

class HostPreferences;

/// Account at the address of a service, in a folder named by its full path, or in another one that holds
/// projects.json; nullopt for anything else. A full path is not looked up: that can take long. An address
/// gets along without password, parameters and fragment, which are not used.
std::optional<CloudAccount> AccountAt(const QString& service, const std::wstring& token = {});

/// Account at the start: that of ORVEX_CLOUD_ACCOUNT, with the token of ORVEX_CLOUD_TOKEN or in the file that
/// ORVEX_CLOUD_TOKEN_FILE names; else the one of the preferences. nullopt if nobody is signed in. Throws
/// LDataError if the file of the token cannot be read. ORVEX_CLOUD_TOKEN is unset afterwards.
std::optional<CloudAccount> AccountAtStart(const HostPreferences& preferences);

/// Lets the user choose an account, or sign out.
class CloudAccountDlg final : public QDialog {
    Q_OBJECT

  public:
    /// `signedIn`: the account of now. Its token is not shown, and kept if none is entered for its service.
    CloudAccountDlg(const HostPreferences& preferences, const std::optional<CloudAccount>& signedIn,
                    QWidget* parent);

    /// After OK: the chosen account; nullopt if the user has signed out.
    const std::optional<CloudAccount>& Account() const { return account_; }

  private:
    QWidget* MakeButtons();
    void ChooseFolder();
    void SignIn();
    void SignOut();

    std::optional<CloudAccount> account_;
    QComboBox* service_ = nullptr;
    QLineEdit* token_ = nullptr;
};

}  // namespace orvex
