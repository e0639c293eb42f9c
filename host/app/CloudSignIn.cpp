#include "host/app/CloudSignIn.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QUrl>

#include "host/app/HostPreferences.h"
#include "host/app/HostText.h"
#include "support/LDataError.h"
#include "support/SignedUrl.h"

namespace orvex {

namespace {

constexpr qint64 kLongestToken = 64 << 10U;

/// First line of the file.
std::wstring TokenIn(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        throw LDataError(
            FormatText(Text(text::kCloudTokenUnread), {ToWide(path), ToWide(file.errorString())}));
    }
    return ToWide(QString::fromUtf8(file.readLine(kLongestToken)).trimmed());
}

/// Removes the token from the environment, which every program inherits that this one starts.
QString TakeTokenVariable() {
    QString token = qEnvironmentVariable("ORVEX_CLOUD_TOKEN").trimmed();
    qunsetenv("ORVEX_CLOUD_TOKEN");
    return token;
}

/// The token that belongs to ORVEX_CLOUD_ACCOUNT and to no other account. `variable`: of ORVEX_CLOUD_TOKEN.
std::wstring EnvironmentToken(const QString& variable) {
    const QString path = qEnvironmentVariable("ORVEX_CLOUD_TOKEN_FILE");
    return variable.isEmpty() && !path.isEmpty() ? TokenIn(path) : ToWide(variable);
}

/// Asks the disk, which may take long for a share that is away.
bool HoldsAccount(const QDir& folder) {
    return folder.exists("projects.json");
}

QLabel* Hint(StringId text) {
    auto* label = new QLabel(HostText(text));
    label->setWordWrap(true);
    label->setEnabled(false);
    return label;
}

}  // namespace

std::optional<CloudAccount> AccountAt(const QString& service, const std::wstring& token) {
    const QUrl url(service.trimmed(), QUrl::StrictMode);
    if (url.isValid() && (url.scheme() == "https" || url.scheme() == "http") && !url.host().isEmpty()) {
        constexpr auto kNeedless = QUrl::RemoveUserInfo | QUrl::RemoveQuery | QUrl::RemoveFragment;
        QString address = url.adjusted(kNeedless).toString(QUrl::FullyEncoded);
        while (address.endsWith('/')) {
            address.chop(1);
        }
        return CloudAccount{ToWide(url.host()), ToWide(address), token};
    }
    const QDir folder(QDir::fromNativeSeparators(service.trimmed()));
    if (service.trimmed().isEmpty() || (folder.isRelative() && !HoldsAccount(folder))) {
        return std::nullopt;
    }
    return CloudAccount{ToWide(folder.dirName()), ToWidePath(folder.absolutePath()), {}};
}

std::optional<CloudAccount> AccountAtStart(const HostPreferences& preferences) {
    const QString named = qEnvironmentVariable("ORVEX_CLOUD_ACCOUNT");
    const QString token = TakeTokenVariable();
    if (named.isEmpty()) {
        const QString service = preferences.cloudService.value_or(preferences.sampleAccount);
        std::optional<CloudAccount> account = AccountAt(service);
        if (account && service == preferences.sampleAccount) {
            account->userName = Text(text::kSampleAccount);
        }
        return account;
    }
    std::optional<CloudAccount> account = AccountAt(named, EnvironmentToken(token));
    if (!account) {
        throw LDataError(FormatText(Text(text::kCloudServiceRefused), {ShownUrl(ToWide(named))}));
    }
    return account;
}

CloudAccountDlg::CloudAccountDlg(const HostPreferences& preferences,
                                 const std::optional<CloudAccount>& signedIn, QWidget* parent)
    : QDialog(parent), account_(signedIn) {
    setObjectName("cloudAccount");
    setWindowTitle(HostText(text::kCloudAccountTitle));
    service_ = new QComboBox;
    service_->setObjectName("service");
    service_->setEditable(true);
    service_->setMinimumContentsLength(50);
    for (const QString& service :
         {signedIn ? ToQString(signedIn->service) : QString(), preferences.sampleAccount}) {
        if (!service.isEmpty() && service_->findText(QDir::toNativeSeparators(service)) < 0) {
            service_->addItem(QDir::toNativeSeparators(service));
        }
    }
    token_ = new QLineEdit;
    token_->setObjectName("token");
    token_->setEchoMode(QLineEdit::Password);
    auto* choose = new QPushButton(HostText(text::kCloudChooseFolder));
    connect(choose, &QPushButton::clicked, this, &CloudAccountDlg::ChooseFolder);

    auto* form = new QFormLayout(this);
    form->addRow(HostText(text::kCloudServiceLabel), service_);
    form->addRow(QString(), choose);
    form->addRow(QString(), Hint(text::kCloudServiceHint));
    form->addRow(HostText(text::kCloudTokenLabel), token_);
    form->addRow(QString(), Hint(text::kCloudTokenHint));
    form->addRow(MakeButtons());
}

QWidget* CloudAccountDlg::MakeButtons() {
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel);
    QPushButton* signIn = buttons->addButton(HostText(text::kCloudSignIn), QDialogButtonBox::AcceptRole);
    signIn->setObjectName("signIn");
    QPushButton* signOut =
        buttons->addButton(HostText(text::kCloudSignOut), QDialogButtonBox::DestructiveRole);
    signOut->setObjectName("signOut");
    signOut->setEnabled(account_.has_value());
    connect(signIn, &QPushButton::clicked, this, &CloudAccountDlg::SignIn);
    connect(signOut, &QPushButton::clicked, this, &CloudAccountDlg::SignOut);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    return buttons;
}

void CloudAccountDlg::ChooseFolder() {
    const QString folder =
        QFileDialog::getExistingDirectory(this, HostText(text::kCloudAccountTitle), service_->currentText());
    if (!folder.isEmpty()) {
        service_->setEditText(QDir::toNativeSeparators(folder));
    }
}

void CloudAccountDlg::SignIn() {
    const QString service = service_->currentText();
    std::optional<CloudAccount> chosen = AccountAt(service, ToWide(token_->text().trimmed()));
    const QDir folder(chosen ? ToQString(chosen->service) : QString());
    if (!chosen || (folder.isAbsolute() && !HoldsAccount(folder))) {
        QMessageBox::warning(this, windowTitle(),
                             HostText(text::kCloudServiceRefused, {ShownUrl(ToWide(service.trimmed()))}));
        return;
    }
    if (account_ && account_->service == chosen->service && chosen->token.empty()) {
        chosen->token = account_->token;
    }
    account_ = std::move(chosen);
    accept();
}

void CloudAccountDlg::SignOut() {
    account_.reset();
    accept();
}

}  // namespace orvex
