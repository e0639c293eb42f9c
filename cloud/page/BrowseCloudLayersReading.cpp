// The browser's lists: who is signed in, and what the cloud account answers.
#include <QTableView>
#include <algorithm>
#include <utility>

#include "cloud/page/BrowseCloudLayersDlg.h"
#include "cloud/page/CloudListPane.h"
#include "dialog/grid/GridView.h"
#include "support/Format.h"
#include "support/HostObjects.h"
#include "support/LDataError.h"
#include "support/SignedUrl.h"

namespace orvex {
namespace {

/// Overwrites the token when the last request that needs the account has ended.
struct WipeToken {
    void operator()(CloudAccount* account) const {
        volatile wchar_t* token = account->token.data();
        std::fill(token, token + account->token.size(), L'\0');
        delete account;
    }
};

void RequireHost(std::int32_t result) {
    if (result < 0) {
        throw LDataError(FormatText(Text(text::kCloudAccountFailed), {static_cast<std::uint32_t>(result)}));
    }
}

void RequireOk(const CloudOutcome& outcome) {
    if (outcome.status != CloudStatus::Ok) {
        throw LDataError(outcome.message.empty() ? Text(text::kCloudNotRead) : outcome.message);
    }
}

/// A user's token is renewed now and then; it tells those apart who have no names.
bool IsSameUser(const CloudAccount& a, const CloudAccount& b) {
    return a.service == b.service && a.userName == b.userName && (!a.userName.empty() || a.token == b.token);
}

/// Whose projects these are: "anna, https://host/path".
std::wstring ShownAccount(const CloudAccount& account) {
    const std::wstring service = ShownUrl(account.service);
    return ShownCloudText(ToUtf8(account.userName.empty() ? service : account.userName + L", " + service));
}

}  // namespace

/// Null when nobody is signed in.
BrowseCloudLayersDlg::SharedAccount BrowseCloudLayersDlg::AskAccount() const {
    std::int32_t result = kHostOk;
    std::unique_ptr<OrvexApplication> made;
    if (application_ == nullptr) {
        made = services_.hostObjects.CreateApplication(result);
        RequireHost(made ? kHostOk : result < 0 ? result : kHostFail);
    }
    OrvexApplication& application = application_ == nullptr ? *made : *application_;
    const std::unique_ptr<OrvexUserAccount> user = application.GetUserAccount(result);
    if (!user) {
        RequireHost(result == kHostNotImplemented ? kHostOk : result);
        return nullptr;
    }
    const std::shared_ptr<CloudAccount> account(new CloudAccount, WipeToken());
    RequireHost(user->GetUserName(account->userName));
    RequireHost(user->GetService(account->service));
    RequireHost(user->GetToken(account->token));
    return account;
}

void BrowseCloudLayersDlg::ClearLists() {
    layersLater_.stop();
    kept_.Clear();
    project_.reset();
    projectRows_->Clear();
    layerRows_->Clear();
    for (List* list : {&projects_, &layers_}) {
        list->request->Cancel();
        list->progress = {};
        list->pane->SetOwner({});
        list->pane->ShowState(CloudListState::Idle);
    }
}

void BrowseCloudLayersDlg::PopulateFolders() {
    RunStep(projects_.step, [this] {
        ClearLists();
        ContinueReading(projects_);
        if (account_) {
            layers_.pane->ShowState(CloudListState::Idle, Text(text::kCloudNoProjectSelected));
        }
    });
}

void BrowseCloudLayersDlg::ContinueReading(List& list) {
    List* read = &list;
    try {
        // The user may have signed in meanwhile, or the token may be a new one.
        const SharedAccount before = std::exchange(account_, AskAccount());
        if (!account_) {
            ClearLists();
            projects_.pane->ShowState(CloudListState::Idle, Text(text::kCloudNotSignedIn));
            return;
        }
        const bool isAnother = before && !IsSameUser(*before, *account_);
        if (isAnother) {
            ClearLists();
            read = &projects_;
        }
        projects_.pane->SetOwner(ShownAccount(*account_));
        (this->*read->read)();
    } catch (...) {
        read->pane->ShowState(CloudListState::Failed, CurrentExceptionText());
        throw;
    }
}

void BrowseCloudLayersDlg::ReadProjects() {
    projects_.request->Start([this, list = library_.listProjects, account = account_,
                              next = projects_.progress.Next()](const CloudCall& call) {
        const auto page = std::make_shared<ArchivingProjectList>();
        page->next = next;
        list(*account, *page, {}, call);
        RequireOk(page->outcome);
        return CloudRequest::Answer([this, page] { TakeProjects(*page); });
    });
    projects_.pane->ShowState(CloudListState::Reading);
}

void BrowseCloudLayersDlg::TakeProjects(const ArchivingProjectList& page) {
    std::vector<CloudProjectRow> rows;
    std::size_t bytes = 0;
    for (const ArchivingProject& project : page.projects) {
        bytes += project.name.size() + project.id.size();
        if (!IsCycleArchive(project.name) && projects_.progress.IsNew(project.id)) {
            rows.push_back({ShownCloudText(project.name), project.id});
        }
    }
    projectRows_->Append(std::move(rows));
    GridView& grid = projects_.pane->Grid();
    if (!project_ && projectRows_->rowCount() > 0) {
        grid.Table()->selectRow(0);
    }
    projects_.progress.Advance(page.next, bytes);
}

// A filter that hides the project leaves its layers in the window.
void BrowseCloudLayersDlg::OnProject(int row) {
    const CloudProjectRow* project =
        row < 0 ? nullptr : &projectRows_->Rows()[projectRows_->RecordOfRow(row)];
    if (isFiltering_ || project == nullptr || project_ == project->id) {
        return;
    }
    layers_.request->Cancel();
    ClearLayers();
    project_ = project->id;
    layers_.pane->SetOwner(project->name);
    layers_.pane->ShowState(CloudListState::Reading);
    layersLater_.start();
}

// The grid has made another project current if the filter hides this one.
void BrowseCloudLayersDlg::OnProjectsFiltered() {
    isFiltering_ = false;
    const auto& projects = projectRows_->Rows();
    const auto shown = std::ranges::find_if(
        projects, [this](const CloudProjectRow& project) { return project_ == project.id; });
    const int row = projectRows_->RowOfRecord(static_cast<std::size_t>(shown - projects.begin()));
    GridView& grid = projects_.pane->Grid();
    if (row < 0) {
        grid.ClearSelection();
    } else if (row != grid.CurrentRow()) {
        grid.Table()->selectRow(row);
    }
}

/// What is selected is kept.
void BrowseCloudLayersDlg::ClearLayers() {
    layers_.progress = {};
    KeepSelection();
    layerRows_->Clear();
    texts_ = std::make_unique<SharedTexts>();
}

void BrowseCloudLayersDlg::PopulateLayers() {
    RunStep(layers_.step, [this] { ContinueReading(layers_); });
}

void BrowseCloudLayersDlg::ReadLayers() {
    if (layers_.progress.Next().empty()) {
        ClearLayers();  // those of a list that did not end would be there twice
    }
    layers_.request->Start([this, get = library_.getFiles, account = account_, project = *project_,
                            next = layers_.progress.Next()](const CloudCall& call) {
        std::string json;
        RequireOk(get(*account, project, next, json, call));
        const auto page = std::make_shared<const CloudListingPage>(ParseProjectFiles(json));
        return CloudRequest::Answer([this, page, bytes = json.size()] { TakeLayers(*page, bytes); });
    });
    layers_.pane->ShowState(CloudListState::Reading);
}

void BrowseCloudLayersDlg::TakeLayers(const CloudListingPage& page, std::size_t bytes) {
    std::vector<CloudLayerRow> rows;
    rows.reserve(page.layers.size());
    for (const CloudLayer& layer : page.layers) {
        CloudLayerRow row(layer, *texts_);
        if (layers_.progress.IsNew(row.id.empty() ? std::string() : row.Key())) {
            rows.push_back(std::move(row));
        }
    }
    const std::size_t before = layerRows_->Count();
    layerRows_->Append(std::move(rows));
    SelectKept(before);
    layers_.progress.Advance(page.next, bytes);
    if (layers_.progress.IsComplete()) {
        kept_.Forget(*project_);  // those are no longer in the project
    }
    EnableItems();
}

// A failure is told once: nothing more is read until the user wants to.
void BrowseCloudLayersDlg::OnAnswer(List& list, const CloudRequest::Answer& answer) {
    RunStep(list.step, [&] {
        try {
            answer();
            if (!list.progress.IsComplete()) {
                (this->*list.read)();
                return;
            }
        } catch (...) {
            const bool canGoOn = !list.progress.IsComplete();
            list.pane->ShowState(CloudListState::Failed, CurrentExceptionText(), canGoOn);
            throw;
        }
        list.pane->ShowState(CloudListState::Idle, Text(list.empty));
    });
}

}  // namespace orvex
