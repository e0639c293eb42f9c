#include "host/cloudaccount/SystemProxies.h"

#include <QHostAddress>
#include <QNetworkProxyFactory>
#include <QNetworkProxyQuery>
#include <chrono>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

namespace orvex::cloud {
namespace {

using namespace std::chrono_literals;

using Clock = std::chrono::steady_clock;

constexpr auto kInterval = 50ms;
constexpr int kMostIntervals = 400;
constexpr auto kKeptFor = 1min;

/// Scheme, host and port of a URL.
QUrl OriginOf(const QUrl& url) {
    QUrl origin;
    origin.setScheme(url.scheme());
    origin.setHost(url.host());
    origin.setPort(url.port());
    return origin;
}

/// A question to the system, on a thread of its own. The thread is left behind while the system does not
/// answer: Qt's application waits for its pool when it is destroyed, and a full pool starts no other look-up.
class LookUp {
  public:
    static std::shared_ptr<LookUp> Start(const QUrl& origin) {
        auto lookUp = std::make_shared<LookUp>();
        const std::lock_guard guard(lookUp->lock_);  // keeps the thread from ending while it is detached
        std::thread([lookUp, origin] {
            lookUp->End(QNetworkProxyFactory::systemProxyForQuery(QNetworkProxyQuery(origin)));
        }).detach();
        return lookUp;
    }

    /// nullopt: not answered yet.
    std::optional<QList<QNetworkProxy>> Wait(std::chrono::milliseconds most) {
        std::unique_lock guard(lock_);
        ended_.wait_for(guard, most, [this] { return proxies_.has_value(); });
        return proxies_;
    }
    bool IsOld() {
        const std::lock_guard guard(lock_);
        return proxies_.has_value() && Clock::now() - endedAt_ > kKeptFor;
    }

  private:
    void End(QList<QNetworkProxy> proxies) {
        const std::lock_guard guard(lock_);
        proxies_ = std::move(proxies);
        endedAt_ = Clock::now();
        ended_.notify_all();
    }

    std::mutex lock_;
    std::condition_variable ended_;
    std::optional<QList<QNetworkProxy>> proxies_;
    Clock::time_point endedAt_;
};

/// The look-up of an origin that is under way or has ended within the last minute, else a new one.
std::shared_ptr<LookUp> LookUpOf(const QUrl& origin) {
    static std::mutex lock;
    static std::map<QByteArray, std::shared_ptr<LookUp>> lookUps;
    const std::lock_guard guard(lock);
    std::erase_if(lookUps, [](const auto& entry) { return entry.second->IsOld(); });
    const QByteArray key = origin.toEncoded();
    if (!lookUps.contains(key)) {
        lookUps.emplace(key, LookUp::Start(origin));
    }
    return lookUps.at(key);
}

}  // namespace

bool IsLoopback(const QUrl& url) {
    const QString host = url.host();
    return host == "localhost" || QHostAddress(host).isLoopback();
}

std::optional<QList<QNetworkProxy>> SystemProxiesFor(const QUrl& url,
                                                     const std::function<bool()>& isCancelled) {
    if (IsLoopback(url)) {
        return QList{QNetworkProxy(QNetworkProxy::NoProxy)};
    }
    const std::shared_ptr<LookUp> lookUp = LookUpOf(OriginOf(url));
    for (int i = 0; i < kMostIntervals && !isCancelled(); ++i) {
        if (auto proxies = lookUp->Wait(kInterval)) {
            return proxies;
        }
    }
    return std::nullopt;
}

}  // namespace orvex::cloud
