#include "host/cloudserver/CloudServer.h"

#include <algorithm>
#include <atomic>
#include <charconv>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <random>
#include <utility>

#include "host/cloudserver/AccountFolder.h"
#include "host/cloudserver/HttpServer.h"
#include "host/cloudserver/Reply.h"
#include "host/cloudserver/S3Signature.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {

namespace {

constexpr std::size_t kMostRequests = 10'000;  // that are remembered
constexpr std::size_t kMostPage = 1000;
constexpr const char* kAccessKey = "orvex";
constexpr const char* kRegion = "local";
constexpr int kListedUrlSeconds = 3600;

/// "host:port" of a request if it can stand in a URL, else empty.
std::string HostOf(const httplib::Request& request) {
    const std::string host = request.get_header_value("Host");
    const bool isPlain = std::ranges::all_of(host, [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               std::string_view(".-_:[]").find(c) != std::string_view::npos;
    });
    return isPlain && request.get_header_value_count("Host") == 1 ? host : std::string();
}

/// "host" of "host:port", "::1" of "[::1]:port".
std::string_view WithoutPort(std::string_view host) {
    return host.starts_with('[') ? host.substr(1, std::min(host.find(']'), host.size()) - 1)
                                 : host.substr(0, host.find(':'));
}

std::string PathOf(const httplib::Request& request) {
    return request.target.substr(0, request.target.find('?'));
}

/// A number of the query; `ifAbsent` without it, nullopt if malformed.
std::optional<std::size_t> NumberOf(const httplib::Request& request, const char* name, std::size_t ifAbsent) {
    const std::string text = request.get_param_value(name);
    if (text.empty()) {
        return ifAbsent;
    }
    std::size_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(value) : std::nullopt;
}

/// Part of the page that a request asks for; nullopt if malformed.
std::optional<PageRequest> PageOf(const httplib::Request& request) {
    const auto first = NumberOf(request, "page", 0), limit = NumberOf(request, "limit", kMostPage);
    if (!first || !limit || *limit == 0) {
        return std::nullopt;
    }
    return PageRequest{*first, std::min(*limit, kMostPage), FromUtf8(request.get_param_value("filter"))};
}

std::string RandomSecret() {
    std::random_device random;
    std::string secret;
    for (int i = 0; i < 8; ++i) {
        secret += std::to_string(random()) + "/";
    }
    return secret;
}

std::chrono::sys_seconds Now() {
    return std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
}

/// "abc" of "/v1/projects/abc/files"; nullopt for any other path.
std::optional<std::string> ProjectOf(std::string_view path) {
    constexpr std::string_view head = "/v1/projects/", tail = "/files";
    if (!path.starts_with(head) || !path.ends_with(tail) || path.size() <= head.size() + tail.size()) {
        return std::nullopt;
    }
    return PercentDecoded(path.substr(head.size(), path.size() - head.size() - tail.size()));
}

CloudServerSettings Checked(CloudServerSettings settings) {
    if (!FolderExists(FromPath(settings.folder))) {
        throw LDataError(FormatText(Text(text::kCloudServerNoFolder), {FromPath(settings.folder)}));
    }
    return settings;
}

}  // namespace

class CloudServer::Impl {
  public:
    explicit Impl(CloudServerSettings settings)
        : settings_(Checked(std::move(settings))),
          folder_(FromPath(settings_.folder)),
          key_{kAccessKey, settings_.signingSecret.empty() ? RandomSecret() : settings_.signingSecret, ""},
          server_(MakeWireFactory(settings_.certificate, settings_.key),
                  [this](const auto& request, auto& response) { Answer(request, response); }) {
        server_.set_error_handler([](const auto&, httplib::Response& response) {
            if (!response.has_header("Content-Type")) {  // one that the library gives by itself
                response.set_content(ErrorReply(response.status).body, "application/json");
                response.set_header("Connection", "close");  // HttpServer ends it
            }
        });
        address_ = ServerAddress(settings_, server_.Start(settings_.address, settings_.port));
    }
    ~Impl() {
        {
            const std::lock_guard lock(mutex_);
            isEnding_ = true;
        }
        changed_.notify_all();
        server_.Stop();
    }
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    const std::string& Address() const { return address_; }
    std::uint64_t BytesSent() const { return *bytesSent_; }

    void SetFault(const std::string& prefix, CloudFault fault) {
        const std::lock_guard lock(mutex_);
        faults_[prefix] = std::make_shared<CloudFault>(std::move(fault));
    }

    void ClearFaults() {
        {
            const std::lock_guard lock(mutex_);
            faults_.clear();
            ++clearings_;
        }
        changed_.notify_all();
    }

    std::vector<std::string> Requests() const {
        const std::lock_guard lock(mutex_);
        return {requests_.begin(), requests_.end()};
    }

    std::string Sign(const std::string& address, const std::string& file, int seconds) const {
        return SignFileUrl(address, key_.secretKey, file, seconds);
    }

  private:
    void Answer(const httplib::Request& request, httplib::Response& response) {
        const std::shared_ptr<const CloudFault> fault = Begin(request);
        Reply reply;
        try {
            reply = ReplyTo(request, *fault);
        } catch (...) {
            reply = ErrorReply(500, "server_failed", "The listing cannot be read.");
        }
        if (!fault->retryAfter.empty()) {
            reply.headers.emplace_back("Retry-After", fault->retryAfter);
        }
        SendReply(std::move(reply), fault->cutAfter, bytesSent_, response);
    }

    /// Records a request and waits as its fault says; never null.
    std::shared_ptr<const CloudFault> Begin(const httplib::Request& request) {
        const std::string path = PathOf(request);
        std::unique_lock lock(mutex_);
        requests_.push_back(request.method + " " + path);
        if (requests_.size() > kMostRequests) {
            requests_.pop_front();
        }
        std::shared_ptr<const CloudFault> fault = TakeFault(path);
        changed_.wait_for(lock, std::chrono::milliseconds(fault->delayMs),
                          [&, clearings = clearings_] { return isEnding_ || clearings_ != clearings; });
        return fault;
    }

    std::shared_ptr<const CloudFault> TakeFault(const std::string& path) {
        auto longest = faults_.end();
        for (auto it = faults_.begin(); it != faults_.end(); ++it) {
            const bool isLonger = longest == faults_.end() || it->first.size() > longest->first.size();
            if (path.starts_with(it->first) && isLonger && it->second->times != 0) {
                longest = it;
            }
        }
        if (longest == faults_.end()) {
            return std::make_shared<CloudFault>();
        }
        if (longest->second->times > 0) {
            --longest->second->times;
        }
        return longest->second;
    }

    Reply ReplyTo(const httplib::Request& request, const CloudFault& fault) {
        Reply reply;
        if (!fault.redirect.empty()) {
            reply.status = fault.status != 0 ? fault.status : 302;
            reply.headers.emplace_back("Location", fault.redirect);
        } else if (fault.body) {
            reply.status = fault.status != 0 ? fault.status : 200;
            reply.body = *fault.body;
        } else if (fault.status != 0) {
            reply = ErrorReply(fault.status);
        } else {
            reply = UsualReply(request, fault.ignoresRanges);
        }
        return reply;
    }

    Reply UsualReply(const httplib::Request& request, bool ignoresRanges) {
        const std::string path = PathOf(request);
        if (request.method != "GET" && request.method != "HEAD") {
            return ErrorReply(405);
        }
        if (!path.starts_with("/") || HostOf(request).empty()) {
            return ErrorReply(400);
        }
        return path.starts_with("/files/") ? SignedFileReply(request, path, ignoresRanges)
                                           : ListingReply(request, path);
    }

    /// A page in a browser can give a name of its own to this computer's address, and then read what needs no
    /// token.
    bool IsDisguised(const httplib::Request& request) const {
        return settings_.token.empty() && IsLoopback(settings_.address) &&
               !IsLoopback(WithoutPort(HostOf(request)));
    }

    bool IsSignedIn(const httplib::Request& request) const {
        return settings_.token.empty() ||
               EqualSecrets(request.get_header_value("Authorization"), "Bearer " + settings_.token);
    }

    Reply ListingReply(const httplib::Request& request, const std::string& path) {
        if (IsDisguised(request)) {
            return ErrorReply(403);
        }
        if (!IsSignedIn(request)) {
            Reply reply = ErrorReply(401);
            reply.headers.emplace_back("WWW-Authenticate", "Bearer");
            return reply;
        }
        const auto page = PageOf(request);
        if (!page) {
            return ErrorReply(400);
        }
        std::optional<std::string> listing;
        if (path == "/v1/projects") {
            listing = folder_.Projects(*page);
        } else if (const auto project = ProjectOf(path)) {
            // As the client has reached this server, whatever the name that it uses.
            const std::string scheme = settings_.certificate.empty() ? "http://" : "https://";
            const std::string address = scheme + HostOf(request);
            listing = folder_.Layers(*project, *page, [&](const std::string& file) {
                return file.starts_with("files/") ? Sign(address, file, kListedUrlSeconds) : "";
            });
        }
        Reply reply;
        reply.headers.emplace_back("Cache-Control", "no-store");
        reply.body = listing.value_or("");
        return listing ? reply : ErrorReply(404);
    }

    Reply SignedFileReply(const httplib::Request& request, const std::string& path, bool ignoresRanges) {
        switch (VerifyS3Request(request.method, HostOf(request), request.target, key_, Now())) {
            case S3Verdict::Valid:
                break;
            case S3Verdict::Expired:
                return ErrorReply(403, "expired", "The link has expired.");
            default:
                return ErrorReply(403, "bad_signature", "The link is not signed for this request.");
        }
        const std::wstring file = folder_.Find(path.substr(1));
        const auto size = file.empty() ? std::nullopt : FileSizeOf(file);
        if (!size) {
            return ErrorReply(404);
        }
        const std::string tag = "\"" + std::to_string(*size) + "-" + std::to_string(ModifiedMs(file)) + "\"";
        const std::string condition = request.get_header_value("If-Range");
        const bool isWhole = ignoresRanges || (!condition.empty() && condition != tag);
        Reply reply = FileReply(file, *size, isWhole ? "" : request.get_header_value("Range"));
        reply.headers.emplace_back("ETag", tag);
        if (!ignoresRanges) {
            reply.headers.emplace_back("Accept-Ranges", "bytes");
        }
        return reply;
    }

    const CloudServerSettings settings_;
    AccountFolder folder_;
    const S3Credentials key_;
    std::string address_;
    const std::shared_ptr<std::atomic<std::uint64_t>> bytesSent_ =
        std::make_shared<std::atomic<std::uint64_t>>(0);

    mutable std::mutex mutex_;
    std::condition_variable changed_;
    bool isEnding_ = false;
    int clearings_ = 0;
    std::map<std::string, std::shared_ptr<CloudFault>> faults_;
    std::deque<std::string> requests_;

    HttpServer server_;  // last: its threads use the rest
};

bool IsLoopback(std::string_view address) {
    const bool isNumber = address.find_first_not_of("0123456789.") == std::string_view::npos;
    return (isNumber && address.starts_with("127.")) || address == "::1" || address == "localhost";
}

std::string ServerAddress(const CloudServerSettings& settings, int port) {
    const bool isIpv6 = settings.address.find(':') != std::string::npos;
    return (settings.certificate.empty() ? "http://" : "https://") +
           (isIpv6 ? "[" + settings.address + "]" : settings.address) + ":" + std::to_string(port);
}

std::string SignFileUrl(const std::string& address, const std::string& signingSecret, const std::string& file,
                        int seconds) {
    const std::size_t slashes = address.find("//");
    S3Request request;
    request.scheme = address.substr(0, slashes - 1);
    request.host = address.substr(slashes + 2);
    request.path = "/" + PercentDecoded(file);
    request.region = kRegion;
    const auto time = Now() - std::chrono::seconds(seconds > 0 ? 0 : 2 - seconds);
    return PresignS3Url(request, {kAccessKey, signingSecret, ""}, time,
                        std::chrono::seconds(std::max(seconds, 1)));
}

CloudServer::CloudServer(CloudServerSettings settings) : impl_(std::make_unique<Impl>(std::move(settings))) {}

CloudServer::~CloudServer() = default;

std::string CloudServer::Address() const {
    return impl_->Address();
}

void CloudServer::SetFault(const std::string& pathPrefix, CloudFault fault) {
    impl_->SetFault(pathPrefix, std::move(fault));
}

void CloudServer::ClearFaults() {
    impl_->ClearFaults();
}

std::string CloudServer::SignedUrl(const std::string& file, int seconds) const {
    return impl_->Sign(impl_->Address(), file.starts_with("files/") ? file : "files/" + file, seconds);
}

std::uint64_t CloudServer::BytesSent() const {
    return impl_->BytesSent();
}

std::vector<std::string> CloudServer::Requests() const {
    return impl_->Requests();
}

}  // namespace orvex
