// An account on a server; docs/cloud-account.md describes the interface.
#include <algorithm>

#include "host/cloudaccount/Accounts.h"
#include "host/cloudaccount/CloudTexts.h"
#include "host/cloudaccount/HttpClient.h"
#include "host/cloudaccount/ListingJson.h"
#include "host/cloudaccount/SystemProxies.h"
#include "support/Format.h"
#include "support/JsonLimits.h"

namespace orvex::cloud {
namespace {

/// Address of the service, ending in "/".
QUrl ServiceOf(const CloudAccount& account) {
    QUrl url(QString::fromStdWString(account.service).trimmed());
    if (!url.isValid() || url.host().isEmpty()) {
        throw CloudError(CloudStatus::Unreachable, Text(text::kCloudServiceInvalid));
    }
    url.setUserInfo({});
    url.setQuery(QString());
    url.setFragment({});
    if (!url.path().endsWith('/')) {
        url.setPath(url.path(QUrl::FullyEncoded) + '/', QUrl::TolerantMode);
    }
    if (!account.token.empty() && url.scheme() != "https" && !IsLoopback(url)) {
        const CloudOutcome outcome = HostOutcome(CloudStatus::Untrusted, text::kCloudServiceInsecure, url);
        throw CloudError(outcome.status, outcome.message);
    }
    return url;
}

/// The token as a header can carry it.
QByteArray TokenOf(const CloudAccount& account, const QUrl& service) {
    QByteArray token = QString::fromStdWString(account.token).trimmed().toUtf8();
    if (!std::ranges::all_of(token, [](char c) { return c > ' ' && c <= '~'; })) {
        const CloudOutcome outcome = HostOutcome(CloudStatus::NotSignedIn, text::kCloudSignInAgain, service);
        throw CloudError(outcome.status, outcome.message);
    }
    return token;
}

QByteArray Encoded(std::string_view utf8) {
    return QByteArray(utf8.data(), static_cast<qsizetype>(utf8.size())).toPercentEncoding();
}

/// A network's sign-in page answers in place of the service.
void RefuseWebPage(const HttpAnswer& headers) {
    if (headers.contentType.trimmed().toLower().startsWith("text/html")) {
        const CloudOutcome outcome = HostOutcome(CloudStatus::BadAnswer, text::kCloudWebPage, headers.url);
        throw CloudError(outcome.status, outcome.message);
    }
}

std::string Get(const CloudAccount& account, const QUrl& service, const QByteArray& resource,
                const std::string& page, const CloudCall& call) {
    QByteArray url = service.toEncoded() + resource + (resource.contains('?') ? '&' : '?') +
                     "limit=" + QByteArray::number(kPageLength);
    if (!page.empty()) {
        url += "&page=" + Encoded(page);
    }
    HttpRequest request;
    request.url = QUrl::fromEncoded(url);
    request.isAccount = true;
    request.token = TokenOf(account, service);
    request.mostBytes = kMostJsonBytes;
    request.checkHeaders = RefuseWebPage;
    HttpClient client;
    return client.Get(request, call).body.toStdString();
}

}  // namespace

void ListServerProjects(const CloudAccount& account, const std::wstring& filter, ArchivingProjectList& list,
                        const CloudCall& call) {
    const QUrl service = ServiceOf(account);
    QByteArray resource = "v1/projects";
    if (!filter.empty()) {
        resource += "?filter=" + Encoded(ValidUtf8(ToUtf8(filter)));
    }
    const std::string page = list.next;
    ReadProjects(Get(account, service, resource, page, call), HostOf(service), list);
    if (!list.next.empty() && list.next == page) {
        const CloudOutcome outcome = HostOutcome(CloudStatus::BadAnswer, text::kCloudListEndless, service);
        throw CloudError(outcome.status, outcome.message);
    }
}

std::string ServerProjectFiles(const CloudAccount& account, const std::string& projectId,
                               const std::string& page, const CloudCall& call) {
    const QUrl service = ServiceOf(account);
    // Dots alone would be taken for folders on the way.
    if (projectId.find_first_not_of('.') == std::string::npos) {
        throw CloudError(CloudStatus::NotFound,
                         FormatText(Text(text::kCloudProjectInvalid), {FromUtf8(projectId)}));
    }
    const QByteArray resource = "v1/projects/" + Encoded(projectId) + "/files";
    return WithAbsoluteUrls(Get(account, service, resource, page, call), HostOf(service), service);
}

}  // namespace orvex::cloud
