#include "host/cloudaccount/SystemProxies.h"

#include <QHostAddress>
#include <QNetworkProxyFactory>
#include <QNetworkProxyQuery>
#include <QThreadPool>
#include <chrono>
#include <future>
#include <memory>

namespace orvex::cloud {
namespace {

using namespace std::chrono_literals;

constexpr auto kInterval = 50ms;
constexpr int kMostIntervals = 400;

}  // namespace

bool IsLoopback(const QUrl& url) {
    const QString host = url.host();
    return host == "localhost" || host.endsWith(".localhost") || QHostAddress(host).isLoopback();
}

std::optional<QList<QNetworkProxy>> SystemProxiesFor(const QUrl& url,
                                                     const std::function<bool()>& isCancelled) {
    if (IsLoopback(url)) {
        return QList{QNetworkProxy(QNetworkProxy::NoProxy)};
    }
    QUrl origin;
    origin.setScheme(url.scheme());
    origin.setHost(url.host());
    origin.setPort(url.port());
    const auto promise = std::make_shared<std::promise<QList<QNetworkProxy>>>();
    std::future<QList<QNetworkProxy>> proxies = promise->get_future();
    QThreadPool::globalInstance()->start([promise, origin] {
        promise->set_value(QNetworkProxyFactory::systemProxyForQuery(QNetworkProxyQuery(origin)));
    });
    for (int i = 0; i < kMostIntervals && !isCancelled(); ++i) {
        if (proxies.wait_for(kInterval) == std::future_status::ready) {
            return proxies.get();
        }
    }
    return std::nullopt;
}

}  // namespace orvex::cloud
