// Adding layers to the cloud page: the menu, its commands and the dialogs that they run.
#include <QAction>
#include <QInputDialog>
#include <QMenu>
#include <QPushButton>
#include <algorithm>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "cloud/page/AddCloudLASFileDlg.h"
#include "cloud/page/AddCloudLASFilesPP.h"
#include "cloud/page/BrowseCloudLayersDlg.h"
#include "dialog/DialogProgress.h"
#include "dialog/page/ControlWidget.h"
#include "support/FilePickers.h"
#include "support/Format.h"
#include "support/HandlerGuard.h"

namespace orvex {
namespace {

template <typename Function>
void UseReal(Function& source, Function& real) {
    if (!source) {
        source = std::move(real);
    }
}

std::optional<std::wstring> AskName(const std::wstring& name, QWidget* parent) {
    QInputDialog dialog(parent);
    const ParentGuard guard(dialog);
    dialog.setObjectName(QStringLiteral("renameLayer"));
    dialog.setWindowTitle(ToQString(Text(text::kCloudRenameTitle)));
    dialog.setLabelText(ToQString(Text(text::kCloudRenameLabel)));
    dialog.setTextValue(ToQString(name));
    dialog.setOkButtonText(ToQString(Text(text::kOk)));
    dialog.setCancelButtonText(ToQString(Text(text::kCancel)));
    dialog.resize(420, dialog.height());
    return dialog.exec() == QDialog::Accepted ? std::optional(ToWide(dialog.textValue().trimmed()))
                                              : std::nullopt;
}

}  // namespace

void AddCloudLASFilesPP::FillSources() {
    CloudSources real;
    real.browse = [this] { return Browse(); };
    real.askUrl = [this](const std::wstring& typed) -> std::optional<std::wstring> {
        DialogServices services = Services();
        AddCloudLASFileDlg dialog(services, window());
        dialog.SetUrl(typed);
        return dialog.exec() == QDialog::Accepted ? std::optional(dialog.Url()) : std::nullopt;
    };
    real.askName = [this](const std::wstring& name) { return AskName(name, window()); };
    real.inspect = [](const std::wstring& url, const CloudCall& call) { return InspectRemoteLas(url, call); };
    real.now = CurrentTimeMs;
    UseReal(sources_.browse, real.browse);
    UseReal(sources_.askUrl, real.askUrl);
    UseReal(sources_.askName, real.askName);
    UseReal(sources_.inspect, real.inspect);
    UseReal(sources_.now, real.now);
}

std::vector<CloudLayer> AddCloudLASFilesPP::Browse() {
    DialogServices services = Services();
    BrowseCloudLayersDlg dialog(Params().hostApplication, services, window());
    return dialog.exec() == QDialog::Accepted ? dialog.SelectedLayers() : std::vector<CloudLayer>();
}

void AddCloudLASFilesPP::MakeAddMenu() {
    struct Entry {
        const char* name;
        StringId text;
        bool isOffered;
        const wchar_t* handler;
        void (AddCloudLASFilesPP::*run)();
    };
    using Page = AddCloudLASFilesPP;
    constexpr Entry kEntries[] = {
        {"32773", text::kCloudBrowseLayersCommand, true, L"OnBrowseLayersInOrvexCloud",
         &Page::OnBrowseLayersInOrvexCloud},
        {"32771", text::kCloudEnterUrlCommand, true, L"OnPresignedUrl", &Page::OnPresignedUrl},
        {"32774", text::kCloudBrowsePackagesCommand, false, L"OnBrowsePackagesInOrvexCloud",
         &Page::OnBrowsePackagesInOrvexCloud},
        {"32776", text::kCloudImportPackageCommand, false, L"OnImportLayerPackageFile",
         &Page::OnImportLayerPackageFile},
    };
    addMenu_ = new QMenu(this);
    addMenu_->setObjectName(QStringLiteral("addMenu"));
    for (const Entry& entry : kEntries) {
        QAction* action = addMenu_->addAction(ToQString(Text(entry.text)));
        action->setObjectName(QLatin1String(entry.name));
        action->setEnabled(entry.isOffered);
        connect(action, &QAction::triggered, this,
                Guarded(Services().prompts, entry.handler, [this, run = entry.run] { (this->*run)(); }));
    }
}

void AddCloudLASFilesPP::OnAdd() {
    const int below = findChild<QPushButton*>(ControlName(kAddButton))->height();
    addMenu_->setActiveAction(addMenu_->actions().front());
    addMenu_->popup(mapToGlobal(QPoint(0, below)));
}

void AddCloudLASFilesPP::OnBrowseLayersInOrvexCloud() {
    std::vector<CloudLayer> layers = sources_.browse();
    std::unordered_set<std::wstring_view> known;
    for (const CloudRow& row : model_->Rows()) {
        known.insert(row.url);
    }
    std::vector<CloudRow> rows;
    for (const CloudLayer& layer : layers) {
        if (known.insert(layer.url).second) {
            rows.push_back(BrowsedRow(layer));
        }
    }
    if (layers.empty()) {
        return;
    }
    const std::size_t added = rows.size();
    known.clear();  // of rows whose addresses change
    Append(std::move(rows));
    Progress().SetOutcome(FormatText(Text(text::kCloudLayersAdded), {added, layers.size() - added}));
}

void AddCloudLASFilesPP::OnPresignedUrl() {
    std::optional<std::wstring> url = sources_.askUrl({});
    while (url && HasUrlIgnoringCase(*url)) {
        ShowMessage(Text(text::kCloudUrlAlreadyListed), text::kInvalidInputCaption, PromptIcon::Error);
        url = sources_.askUrl(*url);
    }
    if (url) {
        std::vector<CloudRow> rows;
        rows.push_back(PresignedRow(*url));
        Append(std::move(rows));
    }
}

bool AddCloudLASFilesPP::HasUrlIgnoringCase(const std::wstring& url) const {
    return std::ranges::any_of(model_->Rows(),
                               [&](const CloudRow& row) { return EqualNoCase(row.url, url); });
}

// Packages are not offered.
void AddCloudLASFilesPP::OnBrowsePackagesInOrvexCloud() {}

void AddCloudLASFilesPP::OnImportLayerPackageFile() {
    OpenFilesRequest request;
    request.filters = {{L"Cloud Package Files (*.CPKG)", L"*.CPKG"}, {L"All Files (*.*)", L"*.*"}};
    Services().pickers.PickFiles(request);
}

void AddCloudLASFilesPP::Append(std::vector<CloudRow> rows) {
    if (!rows.empty()) {
        removed_.clear();  // the places of its rows are others'
        model_->Append(std::move(rows));
    }
    Update();
}

}  // namespace orvex
