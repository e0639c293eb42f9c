#include "host/cloudaccount/CloudTexts.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>

#include "support/Format.h"
#include "support/JsonLimits.h"

namespace orvex::cloud {
namespace {

using Error = QNetworkReply::NetworkError;

constexpr std::size_t kLongestQuote = 200;

struct NetworkFailure {
    Error error;
    CloudStatus status;
    StringId text;
};

constexpr std::array kNetworkFailures = {
    NetworkFailure{Error::HostNotFoundError, CloudStatus::Unreachable, text::kCloudHostUnknown},
    NetworkFailure{Error::ConnectionRefusedError, CloudStatus::Unreachable, text::kCloudConnectionRefused},
    NetworkFailure{Error::RemoteHostClosedError, CloudStatus::Unreachable, text::kCloudNoAnswer},
    NetworkFailure{Error::TimeoutError, CloudStatus::Unreachable, text::kCloudTimedOut},
    NetworkFailure{Error::SslHandshakeFailedError, CloudStatus::Untrusted, text::kCloudTlsFailed},
    NetworkFailure{Error::ProxyConnectionRefusedError, CloudStatus::Unreachable, text::kCloudProxyFailed},
    NetworkFailure{Error::ProxyConnectionClosedError, CloudStatus::Unreachable, text::kCloudProxyFailed},
    NetworkFailure{Error::ProxyNotFoundError, CloudStatus::Unreachable, text::kCloudProxyFailed},
    NetworkFailure{Error::ProxyTimeoutError, CloudStatus::Unreachable, text::kCloudProxyFailed},
    NetworkFailure{Error::ProxyAuthenticationRequiredError, CloudStatus::Unreachable,
                   text::kCloudProxyFailed},
    NetworkFailure{Error::UnknownProxyError, CloudStatus::Unreachable, text::kCloudProxyFailed},
    NetworkFailure{Error::ProtocolFailure, CloudStatus::BadAnswer, text::kCloudNotHttp},
    NetworkFailure{Error::ProtocolUnknownError, CloudStatus::BadAnswer, text::kCloudNotHttp},
    NetworkFailure{Error::ProtocolInvalidOperationError, CloudStatus::BadAnswer, text::kCloudNotHttp}};

struct HttpFailure {
    int first;
    int last;
    CloudStatus status;
    StringId ofAccount;
    StringId ofFile;
};

// The first that matches.
constexpr std::array kHttpFailures = {
    HttpFailure{401, 401, CloudStatus::NotSignedIn, text::kCloudSignInAgain, text::kCloudFileNeedsSignIn},
    HttpFailure{403, 403, CloudStatus::Forbidden, text::kCloudForbidden, text::kCloudLinkRefused},
    HttpFailure{404, 404, CloudStatus::NotFound, text::kCloudNoSuchList, text::kCloudNoSuchFile},
    HttpFailure{410, 410, CloudStatus::NotFound, text::kCloudNoSuchList, text::kCloudNoSuchFile},
    HttpFailure{429, 429, CloudStatus::Busy, text::kCloudBusy, text::kCloudBusy},
    HttpFailure{500, 599, CloudStatus::ServerFailed, text::kCloudServerFailed, text::kCloudServerFailed},
    HttpFailure{0, 999, CloudStatus::BadAnswer, text::kCloudRequestRefused, text::kCloudRequestRefused}};

void Erase(std::wstring& text, const std::wstring& what, const wchar_t* substitute) {
    for (std::size_t at = text.find(what); !what.empty() && at != std::wstring::npos;
         at = text.find(what, at)) {
        text.replace(at, what.size(), substitute);
    }
}

/// The server's own message, if it is as documented: {"error": {"message": ...}}.
std::wstring MessageIn(std::string_view body, std::string_view secret) {
    if (ExcessOf(body) != JsonExcess::None) {
        return {};
    }
    const auto json = nlohmann::json::parse(body, nullptr, false);
    const auto error = json.is_object() ? json.find("error") : json.end();
    if (!json.is_object() || error == json.end() || !error->is_object()) {
        return {};
    }
    const auto message = error->find("message");
    if (message == error->end() || !message->is_string()) {
        return {};
    }
    std::wstring text = WithoutControls(FromUtf8(message->get_ref<const std::string&>()));
    // A server that repeats what it was sent must not bring the token onto the screen.
    Erase(text, FromUtf8(secret), L"");
    if (text.size() > kLongestQuote) {
        text.resize(WholeLength(text, kLongestQuote));
        text += L" ...";
    }
    return text;
}

}  // namespace

CloudOutcome CurrentOutcome() {
    try {
        throw;
    } catch (const CloudError& error) {
        return error.Outcome();
    } catch (...) {
        return {CloudStatus::BadAnswer, CurrentExceptionText()};
    }
}

std::wstring HostOf(const QUrl& url) {
    std::wstring host = WithoutControls(url.host().toStdWString());
    return url.port() < 0 ? host : host + L":" + std::to_wstring(url.port());
}

CloudOutcome HostOutcome(CloudStatus status, StringId text, const QUrl& url) {
    return {status, FormatText(Text(text), {HostOf(url)})};
}

CloudOutcome OutcomeOf(Error error, bool answering, const QUrl& url) {
    if (answering && error == Error::RemoteHostClosedError) {
        return HostOutcome(CloudStatus::Unreachable, text::kCloudCutOff, url);
    }
    const auto failure = std::ranges::find(kNetworkFailures, error, &NetworkFailure::error);
    if (failure == kNetworkFailures.end()) {
        return HostOutcome(CloudStatus::Unreachable, text::kCloudUnreachable, url);
    }
    return HostOutcome(failure->status, failure->text, url);
}

CloudOutcome OutcomeOf(int httpStatus, bool isAccount, const QUrl& url, std::string_view body,
                       std::string_view secret) {
    const auto failure = std::ranges::find_if(kHttpFailures, [httpStatus](const HttpFailure& candidate) {
        return httpStatus >= candidate.first && httpStatus <= candidate.last;
    });
    CloudOutcome outcome{failure->status, FormatText(Text(isAccount ? failure->ofAccount : failure->ofFile),
                                                     {HostOf(url), httpStatus})};
    if (const std::wstring message = MessageIn(body, secret); isAccount && !message.empty()) {
        outcome.message = FormatText(Text(text::kCloudServerSays), {outcome.message, message});
    }
    return outcome;
}

}  // namespace orvex::cloud
