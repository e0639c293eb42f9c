#pragma once
// Failures of the cloud as sentences for the user. They name a host, never a whole URL.
#include <QNetworkReply>
#include <QUrl>
#include <string>
#include <string_view>

#include "orvexcommon/CloudAccount.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex::cloud {

/// A call ends with this outcome.
class CloudError : public LDataError {
  public:
    CloudError(CloudStatus status, std::wstring text) : LDataError(std::move(text)), status_(status) {}
    CloudOutcome Outcome() const { return {status_, Text()}; }

  private:
    CloudStatus status_;
};

/// Outcome of the exception being handled; to be called in a catch block.
CloudOutcome CurrentOutcome();

/// Host as users know it, with its port unless it is the usual one: "data.example.org", "127.0.0.1:8080".
std::wstring HostOf(const QUrl& url);

/// `text` has one placeholder, for the host.
CloudOutcome HostOutcome(CloudStatus status, StringId text, const QUrl& url);

/// A request that ended without a usable answer. `answering`: the headers had arrived.
CloudOutcome OutcomeOf(QNetworkReply::NetworkError error, bool answering, const QUrl& url);

/// An answer whose HTTP status is no success. `isAccount`: asked with the account, else a file's URL.
/// `body`: the server's JSON, whose error message is quoted if it has one, without `secret`.
CloudOutcome OutcomeOf(int httpStatus, bool isAccount, const QUrl& url, std::string_view body,
                       std::string_view secret);

}  // namespace orvex::cloud
