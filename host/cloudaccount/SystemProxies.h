#pragma once
#include <QList>
#include <QNetworkProxy>
#include <QUrl>
#include <functional>
#include <optional>

namespace orvex::cloud {

/// True for an address of this machine.
bool IsLoopback(const QUrl& url);

/// The system's proxies for a host, in the order in which they are to be tried. Searching for the network's
/// configuration can take seconds: it is done elsewhere, and nullopt is returned when `isCancelled` says so
/// or it does not end. Answers are kept for a minute, for all threads. Addresses of this machine are reached
/// directly. The system, whose rules can be a program from the network, is told nothing but scheme, host and
/// port.
std::optional<QList<QNetworkProxy>> SystemProxiesFor(const QUrl& url,
                                                     const std::function<bool()>& isCancelled);

}  // namespace orvex::cloud
