#include "host/cloudaccount/HttpClient.h"

#include <QAuthenticator>
#include <QCoreApplication>
#include <QDateTime>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QLocale>
#include <QNetworkProxyFactory>
#include <QNetworkReply>
#include <QSslConfiguration>
#include <QSslError>
#include <QSslKey>
#include <QStringList>
#include <QThreadPool>
#include <QTimeZone>
#include <QTimer>
#include <algorithm>
#include <exception>
#include <memory>
#include <utility>

#include "host/cloudaccount/CloudTexts.h"
#include "host/cloudaccount/SystemProxies.h"
#include "support/Format.h"

namespace orvex::cloud {
namespace {

using namespace std::chrono_literals;

constexpr auto kInterval = 50ms;
constexpr std::chrono::milliseconds kLongestBackOff = 60s;
constexpr int kMostAttempts = 4;
constexpr int kMostRedirects = 5;
constexpr std::int64_t kMostErrorBytes = 16 << 10U;
// A caller with windows does not expect its own commands while it is blocked.
constexpr auto kWithoutInput = QEventLoop::ExcludeUserInputEvents;
// What Qt may read ahead of us.
constexpr std::int64_t kReadBuffer = 256 << 10U;

bool IsCancelled(const CloudCall& call) {
    return call.isCancelled && call.isCancelled();
}

[[noreturn]] void ThrowCancelled() {
    throw CloudError(CloudStatus::Cancelled, {});
}

[[noreturn]] void Throw(CloudOutcome outcome) {
    throw CloudError(outcome.status, std::move(outcome.message));
}

/// What the system said about one host.
class KnownProxies final : public QNetworkProxyFactory {
  public:
    explicit KnownProxies(QList<QNetworkProxy> proxies) : proxies_(std::move(proxies)) {}
    QList<QNetworkProxy> queryProxy(const QNetworkProxyQuery&) override { return proxies_; }

  private:
    QList<QNetworkProxy> proxies_;
};

/// The process's trusted authorities, and nothing else that the process may have set: certificates are
/// checked, and no client certificate is sent.
QSslConfiguration CheckedTls() {
    QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
    tls.setPeerVerifyMode(QSslSocket::VerifyPeer);
    tls.setPeerVerifyDepth(0);
    tls.setProtocol(QSsl::TlsV1_2OrLater);
    tls.setLocalCertificateChain({});
    tls.setPrivateKey({});
    return tls;
}

QNetworkRequest RequestOf(const HttpRequest& request, const QUrl& url) {
    QNetworkRequest out(url);
    out.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    out.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    out.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    out.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    out.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    out.setRawHeader("User-Agent", "OrvexCommon");
    // Named, so that Qt does not offer to decompress.
    out.setRawHeader("Accept-Encoding", "identity");
    if (!request.token.isEmpty()) {
        out.setRawHeader("Authorization", "Bearer " + request.token);
    }
    if (!request.range.isEmpty()) {
        out.setRawHeader("Range", request.range);
    }
    out.setSslConfiguration(CheckedTls());
    return out;
}

/// Calls a function about every 50 ms while an event loop of this thread runs.
class Ticks {
  public:
    explicit Ticks(const std::function<void()>& tick) {
        QObject::connect(&timer_, &QTimer::timeout, &timer_, tick);
        timer_.start(kInterval);
    }

  private:
    QTimer timer_;
};

std::wstring TlsReason(const QList<QSslError>& errors) {
    QStringList reasons;
    for (const QSslError& error : errors.first(std::min<qsizetype>(errors.size(), 3))) {
        reasons.append(error.errorString());
    }
    return WithoutControls(reasons.join("; ").toStdWString());
}

/// One request on its way, until its answer is complete or refused.
class Transfer {
  public:
    Transfer(QNetworkAccessManager& manager, const HttpRequest& request, const QUrl& url,
             const HttpLimits& limits, const CloudCall& call, std::uint64_t& received)
        : request_(request), limits_(limits), call_(call), received_(received) {
        answer_.url = url;
        total_.start();
        idle_.start();
        reply_.reset(manager.get(RequestOf(request, url)));
        reply_->setReadBufferSize(kReadBuffer);
        Connect(manager);
    }

    HttpAnswer Run() {
        const Ticks ticks([this] { Guard([this] { Check(); }); });
        if (!reply_->isFinished()) {
            loop_.exec(kWithoutInput);
        }
        if (failure_) {
            std::rethrow_exception(failure_);
        }
        if (!reply_->isFinished()) {
            ThrowCancelled();  // the application is quitting
        }
        return Result();
    }

  private:
    void Connect(QNetworkAccessManager& manager) {
        QNetworkReply* reply = reply_.get();
        QObject::connect(reply, &QNetworkReply::metaDataChanged, reply,
                         [this] { Guard([this] { TakeHeaders(); }); });
        QObject::connect(reply, &QNetworkReply::readyRead, reply, [this] { Guard([this] { TakeBody(); }); });
        QObject::connect(reply, &QNetworkReply::encrypted, reply, [this] { idle_.restart(); });
        QObject::connect(reply, &QNetworkReply::sslErrors, reply,
                         [this](const QList<QSslError>& errors) { tlsReason_ = TlsReason(errors); });
        QObject::connect(reply, &QNetworkReply::finished, reply, [this] { loop_.quit(); });
        // Qt would answer some challenges with the user's login at this computer.
        QObject::connect(
            &manager, &QNetworkAccessManager::authenticationRequired, reply,
            [this](QNetworkReply*, QAuthenticator*) {
                Guard([this] { Throw(OutcomeOf(401, request_.isAccount, answer_.url, {}, {})); });
            });
    }

    /// Exceptions must not pass through Qt: the first one ends the transfer and is kept.
    template <typename Step>
    void Guard(const Step& step) {
        if (failure_) {
            return;
        }
        try {
            step();
        } catch (...) {
            failure_ = std::current_exception();
            reply_->abort();
            loop_.quit();
        }
    }

    void Check() const {
        if (IsCancelled(call_)) {
            ThrowCancelled();
        }
        if (idle_.hasExpired(limits_.idle.count()) || total_.hasExpired(limits_.exchange.count())) {
            Throw(HostOutcome(CloudStatus::Unreachable, text::kCloudTimedOut, answer_.url));
        }
    }

    bool IsSuccess() const { return answer_.status >= 200 && answer_.status < 300; }

    void TakeHeaders() {
        idle_.restart();
        answer_.status = reply_->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        answer_.contentRange = reply_->rawHeader("Content-Range");
        answer_.contentType = reply_->rawHeader("Content-Type");
        answer_.eTag = reply_->rawHeader("ETag");
        answer_.retryAfter = reply_->rawHeader("Retry-After");
        answer_.location = reply_->rawHeader("Location");
        bool isNumber = false;
        const std::int64_t length = reply_->rawHeader("Content-Length").toLongLong(&isNumber);
        answer_.contentLength = isNumber ? std::optional(length) : std::nullopt;
        if (!IsSuccess()) {
            return;
        }
        if (request_.checkHeaders) {
            request_.checkHeaders(answer_);
        }
        if (answer_.contentLength.value_or(0) > request_.mostBytes) {
            ThrowTooLarge();
        }
    }

    void TakeErrorBody(const QByteArray& part) {
        answer_.body += part;
        if (answer_.body.size() > kMostErrorBytes && reply_->isOpen()) {
            reply_->abort();
        }
    }

    void TakeBody() {
        idle_.restart();
        const QByteArray part = reply_->readAll();
        received_ += static_cast<std::uint64_t>(part.size());
        if (!IsSuccess()) {
            TakeErrorBody(part);
            return;
        }
        if (part.size() > request_.mostBytes - answer_.body.size()) {
            ThrowTooLarge();
        }
        answer_.body += part;
    }

    [[noreturn]] void ThrowTooLarge() const {
        if (!request_.range.isEmpty()) {
            Throw(HostOutcome(CloudStatus::BadAnswer, text::kCloudRangeWrong, answer_.url));
        }
        throw CloudError(CloudStatus::BadAnswer, FormatText(Text(text::kCloudTooLarge),
                                                            {HostOf(answer_.url), request_.mostBytes >> 20}));
    }

    HttpAnswer Result() {
        if (reply_->isOpen()) {
            TakeBody();
        }
        if (!tlsReason_.empty()) {
            throw CloudError(CloudStatus::Untrusted,
                             FormatText(Text(text::kCloudUntrusted), {HostOf(answer_.url), tlsReason_}));
        }
        // A failure is told by its status, whatever became of its body.
        const bool isFailure = answer_.status != 0 && !IsSuccess();
        if (!isFailure && reply_->error() != QNetworkReply::NoError) {
            Throw(OutcomeOf(reply_->error(), answer_.status != 0, answer_.url));
        }
        if (!isFailure && answer_.contentLength.value_or(answer_.body.size()) != answer_.body.size()) {
            Throw(HostOutcome(CloudStatus::Unreachable, text::kCloudCutOff, answer_.url));
        }
        return std::move(answer_);
    }

    const HttpRequest& request_;
    const HttpLimits& limits_;
    const CloudCall& call_;
    HttpAnswer answer_;
    std::uint64_t& received_;
    std::wstring tlsReason_;
    std::exception_ptr failure_;
    QElapsedTimer total_;
    QElapsedTimer idle_;
    QEventLoop loop_;
    std::unique_ptr<QNetworkReply> reply_;
};

bool IsRedirect(int status) {
    return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

/// The next address. Throws if it must not be followed.
QUrl RedirectTarget(const HttpAnswer& answer, bool isAccount) {
    const QUrl& from = answer.url;
    QUrl target = from.resolved(QUrl::fromEncoded(answer.location));
    target.setUserInfo({});
    if (answer.location.isEmpty() || !target.isValid() || target.host().isEmpty() ||
        (target.scheme() != "https" && target.scheme() != "http")) {
        Throw(OutcomeOf(answer.status, isAccount, from, {}, {}));
    }
    const bool isInsecure = from.scheme() == "https" && target.scheme() == "http";
    if (isInsecure || (isAccount && !IsSameOrigin(from, target))) {
        const StringId text = isInsecure ? text::kCloudRedirectInsecure : text::kCloudRedirectElsewhere;
        throw CloudError(CloudStatus::Untrusted, FormatText(Text(text), {HostOf(from), HostOf(target)}));
    }
    return target;
}

bool IsWorthRetrying(int status) {
    return status == 429 || status == 502 || status == 503 || status == 504;
}

/// Value of the header Retry-After, seconds or a date; `otherwise` if it is neither.
std::chrono::milliseconds RetryAfter(const QByteArray& value, std::chrono::milliseconds otherwise) {
    bool isNumber = false;
    const qulonglong seconds = value.trimmed().toULongLong(&isNumber);
    if (isNumber) {
        return std::chrono::seconds(std::min<qulonglong>(seconds, 60));
    }
    QDateTime date =
        QLocale::c().toDateTime(QString::fromLatin1(value.trimmed()), "ddd, dd MMM yyyy hh:mm:ss 'GMT'");
    date.setTimeZone(QTimeZone::utc());
    return date.isValid() ? std::chrono::milliseconds(QDateTime::currentDateTimeUtc().msecsTo(date))
                          : otherwise;
}

/// Waits before the attempt after `attempt` (from 1).
void BackOff(const HttpAnswer& answer, int attempt, const HttpLimits& limits, const CloudCall& call) {
    const auto wanted = RetryAfter(answer.retryAfter, limits.backOff * (1 << (attempt - 1)));
    const auto delay = std::clamp(wanted, std::chrono::milliseconds(0), kLongestBackOff);
    const auto seconds = std::chrono::ceil<std::chrono::seconds>(delay).count();
    if (seconds > 0 && call.waiting) {
        call.waiting(FormatText(Text(text::kCloudWaiting), {HostOf(answer.url), seconds}));
    }
    QEventLoop loop;
    QTimer::singleShot(delay, &loop, &QEventLoop::quit);
    std::exception_ptr failure;
    const auto check = [&] {  // what is thrown must not pass through Qt
        try {
            if (!failure && IsCancelled(call)) {
                ThrowCancelled();
            }
        } catch (...) {
            failure = std::current_exception();
            loop.quit();
        }
    };
    check();
    const Ticks ticks(check);
    if (!failure) {
        loop.exec(kWithoutInput);
    }
    if (seconds > 0 && call.waiting) {
        call.waiting({});
    }
    if (failure) {
        std::rethrow_exception(failure);
    }
}

/// A manager waits for its thread, which a server that sends headers without end keeps busy for seconds.
void DestroyElsewhere(std::unique_ptr<QNetworkAccessManager> manager) {
    manager->moveToThread(nullptr);
    QThreadPool::globalInstance()->start([raw = manager.release()] { delete raw; });
}

}  // namespace

bool IsSameOrigin(const QUrl& a, const QUrl& b) {
    const auto portOf = [](const QUrl& url) { return url.port(url.scheme() == "https" ? 443 : 80); };
    return a.scheme() == b.scheme() && a.host() == b.host() && portOf(a) == portOf(b);
}

HttpClient::HttpClient(const HttpLimits& limits) : limits_(limits) {}

void HttpClient::FindProxies(const QUrl& url, const CloudCall& call) {
    if (!proxiesOf_.isEmpty() && IsSameOrigin(proxiesOf_, url)) {
        return;
    }
    auto proxies = SystemProxiesFor(url, [&call] { return IsCancelled(call); });
    if (!proxies && IsCancelled(call)) {
        ThrowCancelled();
    }
    if (!proxies) {
        Throw(HostOutcome(CloudStatus::Unreachable, text::kCloudProxyFailed, url));
    }
    manager_->setProxyFactory(new KnownProxies(std::move(*proxies)));
    proxiesOf_ = url;
}

HttpAnswer HttpClient::Send(const HttpRequest& request, const QUrl& url, const CloudCall& call) {
    try {
        return Transfer(*manager_, request, url, limits_, call, received_).Run();
    } catch (...) {
        DestroyElsewhere(std::move(manager_));
        proxiesOf_.clear();
        throw;
    }
}

HttpAnswer HttpClient::Get(const HttpRequest& request, const CloudCall& call) {
    if (QCoreApplication::instance() == nullptr) {
        throw CloudError(CloudStatus::Unreachable, Text(text::kCloudWithoutApplication));
    }
    if (manager_ == nullptr) {
        manager_ = std::make_unique<QNetworkAccessManager>();
    }
    QUrl url = request.url;
    int attempt = 1;
    for (int redirects = 0; redirects <= kMostRedirects;) {
        if (IsCancelled(call)) {
            ThrowCancelled();
        }
        FindProxies(url, call);
        HttpAnswer answer = Send(request, url, call);
        if ((answer.status >= 200 && answer.status < 300) ||
            (answer.status == 416 && !request.range.isEmpty())) {
            return answer;
        }
        if (IsRedirect(answer.status)) {
            url = RedirectTarget(answer, request.isAccount);
            ++redirects;
        } else if (IsWorthRetrying(answer.status) && attempt < kMostAttempts) {
            BackOff(answer, attempt, limits_, call);
            ++attempt;
        } else {
            const std::string body = answer.body.toStdString();
            Throw(OutcomeOf(answer.status, request.isAccount, url, body, request.token.toStdString()));
        }
    }
    Throw(HostOutcome(CloudStatus::BadAnswer, text::kCloudRedirectEndless, url));
}

}  // namespace orvex::cloud
