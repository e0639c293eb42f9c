#pragma once
// GET over HTTP and HTTPS for one thread: redirects, retries, limits and cancelling in one place.
#include <QByteArray>
#include <QNetworkAccessManager>
#include <QUrl>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "orvexcommon/CloudAccount.h"

namespace orvex::cloud {

struct HttpLimits {
    std::chrono::milliseconds idle{30'000};       ///< without connection or byte
    std::chrono::milliseconds exchange{120'000};  ///< from a request to the last byte of its answer
    std::chrono::milliseconds backOff{1'000};  ///< before the second attempt; doubles with each further one
};

struct HttpAnswer {
    int status = 0;  ///< HTTP status; 0 if there was no answer
    QUrl url;        ///< the URL that answered, after redirects
    QByteArray body;
    QByteArray contentRange;
    QByteArray contentType;
    QByteArray eTag;
    QByteArray retryAfter;
    QByteArray location;
    std::optional<std::int64_t> contentLength;
};

struct HttpRequest {
    QUrl url;
    bool isAccount = false;  ///< a request with the account: redirects must stay with its service
    QByteArray token;        ///< bearer token; empty: none
    QByteArray range;        ///< value of the header Range; empty: none
    std::int64_t mostBytes = 0;
    /// Looks at the headers of an answer that is neither a redirect nor a failure; throws to end it there.
    std::function<void(const HttpAnswer& headers)> checkHeaders = {};
};

/// True if both have the same scheme, host and port.
bool IsSameOrigin(const QUrl& a, const QUrl& b);

/// Keeps connections for the next request. No cookies, no cache, no stored passwords, HTTP/1.1 without
/// compression; proxies are the system's.
class HttpClient {
  public:
    explicit HttpClient(const HttpLimits& limits = {});

    /// Returns an answer with a status of 2xx, for a range 416 as well; throws CloudError otherwise. Belongs
    /// to the thread of the first call.
    HttpAnswer Get(const HttpRequest& request, const CloudCall& call);
    /// Bytes of bodies received so far, whatever became of them.
    std::uint64_t Received() const { return received_; }

  private:
    void FindProxies(const QUrl& url, const CloudCall& call);
    HttpAnswer Send(const HttpRequest& request, const QUrl& url, const CloudCall& call);

    HttpLimits limits_;
    std::unique_ptr<QNetworkAccessManager> manager_;
    QUrl proxiesOf_;  ///< the URL whose proxies the manager knows
    std::uint64_t received_ = 0;
};

}  // namespace orvex::cloud
