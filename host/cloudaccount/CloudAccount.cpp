#include "orvexcommon/CloudAccount.h"

#include <QString>

#include "host/cloudaccount/Accounts.h"
#include "host/cloudaccount/CloudTexts.h"

namespace orvex {
namespace {

using cloud::CloudError;

/// A damaged address is no folder either, whose message would show what the address may hold.
bool IsServer(const CloudAccount& account) {
    const QString service = QString::fromStdWString(account.service).trimmed();
    const bool isServer =
        service.startsWith("https:", Qt::CaseInsensitive) || service.startsWith("http:", Qt::CaseInsensitive);
    if (!isServer && service.contains("://")) {
        throw CloudError(CloudStatus::Unreachable, Text(text::kCloudServiceInvalid));
    }
    return isServer;
}

}  // namespace

void listArchivingProjects(const CloudAccount& account, ArchivingProjectList& list,
                           const std::wstring& filter, const CloudCall& call) {
    list.projects.clear();
    list.outcome = {};
    try {
        ArchivingProjectList page{.projects = {}, .next = list.next, .outcome = {}};
        if (IsServer(account)) {
            cloud::ListServerProjects(account, filter, page, call);
        } else {
            cloud::ListFolderProjects(account.service, filter, page, call);
        }
        list = std::move(page);
    } catch (...) {
        list.outcome = cloud::CurrentOutcome();
    }
}

CloudOutcome getArchivingProjectFiles(const CloudAccount& account, const std::string& projectId,
                                      const std::string& page, std::string& json, const CloudCall& call) {
    json.clear();
    try {
        json = IsServer(account) ? cloud::ServerProjectFiles(account, projectId, page, call)
                                 : cloud::FolderProjectFiles(account.service, projectId, page);
        return {};
    } catch (...) {
        return cloud::CurrentOutcome();
    }
}

}  // namespace orvex
