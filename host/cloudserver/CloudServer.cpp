#include "host/cloudserver/CloudServer.h"

#include <algorithm>
#include <atomic>
#include <charconv>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <fstream>
#include <map>
#include <mutex>
#include <random>
#include <utility>

#include "host/cloudserver/AccountFolder.h"
#include "host/cloudserver/HttpServer.h"
#include "host/cloudserver/Ranges.h"
#include "host/cloudserver/S3Signature.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {

namespace {

constexpr std::size_t kMostRequests = 10'000;  // that are remembered
constexpr std::size_t kMostPage = 1000;
constexpr int kListedUrlSeconds = 3600;
constexpr std::size_t kPiece = 64 << 10;  // of a file that is sent

/// An answer before it is handed to the library.
struct Reply {
    int status = 200;
    std::vector<std::pair<std::string, std::string>> headers;
    std::string type = "application/json";
    std::string body;
    std::wstring file;  ///< sent instead of `body`, if any: `length` bytes from `offset` on
    std::uint64_t offset = 0;
    std::uint64_t length = 0;
};

/// The codes are plain words without anything to escape.
Reply ErrorReply(int status, const std::string& code, const std::string& message) {
    Reply reply;
    reply.status = status;
    reply.body = R"({"error":{"code":")" + code + R"(","message":")" + message + "\"}}";
    return reply;
}

Reply ErrorReply(int status) {
    struct Error {
        int status;
        const char* code;
        const char* message;
    };
    static constexpr Error errors[] = {
        {400, "bad_request", "The request is malformed."},
        {401, "unauthorized", "A valid bearer token is required."},
        {403, "forbidden", "Access is not permitted."},
        {404, "not_found", "There is nothing of this name."},
        {405, "method_not_allowed", "Only GET and HEAD are possible."},
        {416, "range_not_satisfiable", "The range lies outside of the file."},
        {429, "too_many_requests", "There are too many requests."},
    };
    const auto* const found = std::ranges::find(errors, status, &Error::status);
    return found != std::end(errors) ? ErrorReply(status, found->code, found->message)
           : status >= 500           ? ErrorReply(status, "server_failed", "The server failed.")
                                     : ErrorReply(status, "failed", "The request failed.");
}

/// "host:port" of a request if it can stand in a URL, else empty.
std::string HostOf(const httplib::Request& request) {
    const std::string host = request.get_header_value("Host");
    const bool isPlain = std::ranges::all_of(host, [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               std::string_view(".-_:[]").find(c) != std::string_view::npos;
    });
    return isPlain && request.get_header_value_count("Host") == 1 ? host : std::string();
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
          key_{"orvex", settings_.signingSecret.empty() ? RandomSecret() : settings_.signingSecret, ""},
          server_(MakeWireFactory(settings_.certificate, settings_.key),
                  [this](const auto& request, auto& response) { Answer(request, response); }) {
        server_.set_error_handler([](const auto&, httplib::Response& response) {
            if (response.body.empty()) {  // one that the library gave by itself
                response.set_content(ErrorReply(response.status).body, "application/json");
            }
        });
        const int port = server_.Start(settings_.address, settings_.port);
        const bool isIpv6 = settings_.address.find(':') != std::string::npos;
        host_ = (isIpv6 ? "[" + settings_.address + "]" : settings_.address) + ":" + std::to_string(port);
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

    std::string Scheme() const { return settings_.certificate.empty() ? "http" : "https"; }
    const std::string& Host() const { return host_; }
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

    /// URL of a file below the folder at a host; empty if there can be none.
    std::string Sign(const std::string& host, const std::string& file, int seconds) const {
        S3Request request;
        request.scheme = Scheme();
        request.host = host;
        request.path = "/" + PercentDecoded(file);
        request.region = kRegion;
        const auto time = Now() - std::chrono::seconds(seconds > 0 ? 0 : 2 - seconds);
        return PresignS3Url(request, key_, time, std::chrono::seconds(std::max(seconds, 1)));
    }

  private:
    static constexpr const char* kRegion = "local";

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
        Send(std::move(reply), fault->cutAfter, response);
    }

    /// Records a request and waits as its fault says; never null.
    std::shared_ptr<const CloudFault> Begin(const httplib::Request& request) {
        const std::string path = PathOf(request);
        std::unique_lock lock(mutex_);
        requests_.push_back(request.method + " " + path);
        if (requests_.size() > kMostRequests) {
            requests_.pop_front();
        }
        const std::shared_ptr<const CloudFault> fault = TakeFault(path);
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
        return path.starts_with("/files/") ? FileReply(request, path, ignoresRanges)
                                           : ListingReply(request, path);
    }

    bool IsSignedIn(const httplib::Request& request) const {
        return settings_.token.empty() ||
               EqualSecrets(request.get_header_value("Authorization"), "Bearer " + settings_.token);
    }

    Reply ListingReply(const httplib::Request& request, const std::string& path) {
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
            listing = folder_.Layers(*project, *page, [&](const std::string& file) {
                return file.starts_with("files/") ? Sign(HostOf(request), file, kListedUrlSeconds) : "";
            });
        }
        Reply reply;
        reply.headers.emplace_back("Cache-Control", "no-store");
        reply.body = listing.value_or("");
        return listing ? reply : ErrorReply(404);
    }

    Reply FileReply(const httplib::Request& request, const std::string& path, bool ignoresRanges) {
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
        Reply reply = PartOf(*size, isWhole ? "" : request.get_header_value("Range"));
        reply.headers.emplace_back("ETag", tag);
        if (!ignoresRanges) {
            reply.headers.emplace_back("Accept-Ranges", "bytes");
        }
        reply.file = reply.status == 416 ? L"" : file;
        return reply;
    }

    /// Status, headers and part of a file of `size` bytes for a header "Range", empty for none.
    static Reply PartOf(std::uint64_t size, const std::string& header) {
        const RangeAnswer answer = AnswerRange(header, size);
        Reply reply = answer.kind == RangeAnswer::Kind::Outside ? ErrorReply(416) : Reply();
        if (answer.kind == RangeAnswer::Kind::Outside) {
            reply.headers.emplace_back("Content-Range", "bytes */" + std::to_string(size));
            return reply;
        }
        reply.type = "application/octet-stream";
        reply.offset = answer.offset;
        reply.length = answer.length;
        if (answer.kind == RangeAnswer::Kind::Part) {
            reply.status = 206;
            reply.headers.emplace_back("Content-Range",
                                       "bytes " + std::to_string(answer.offset) + "-" +
                                           std::to_string(answer.offset + answer.length - 1) + "/" +
                                           std::to_string(size));
        }
        return reply;
    }

    /// Hands an answer to the library, which asks for the body piece by piece.
    void Send(Reply reply, std::int64_t cutAfter, httplib::Response& response) const {
        response.status = reply.status;
        for (const auto& [name, value] : reply.headers) {
            response.set_header(name, value);
        }
        const std::uint64_t length = reply.file.empty() ? reply.body.size() : reply.length;
        if (length == 0) {
            response.set_header("Content-Type", reply.type);
            return;
        }
        struct Source {
            Reply reply;
            std::ifstream file;
            std::vector<char> piece;
        };
        const auto source = std::make_shared<Source>();
        const std::string type = reply.type;
        if (!reply.file.empty()) {
            source->file.open(ToPath(reply.file), std::ios::binary);
            source->piece.resize(kPiece);
        }
        source->reply = std::move(reply);
        const std::uint64_t cut = cutAfter < 0 ? length : static_cast<std::uint64_t>(cutAfter);
        response.set_content_provider(
            static_cast<std::size_t>(length), type,
            [source, cut, sent = bytesSent_](std::size_t at, std::size_t left, httplib::DataSink& sink) {
                const std::size_t count = static_cast<std::size_t>(
                    std::min<std::uint64_t>({left, kPiece, cut > at ? cut - at : 0}));
                const char* data = source->reply.body.data() + at;
                if (!source->reply.file.empty()) {
                    source->file.seekg(static_cast<std::streamoff>(source->reply.offset + at));
                    source->file.read(source->piece.data(), static_cast<std::streamsize>(count));
                    data = source->piece.data();
                }
                // False closes the connection: the client sees that something is missing.
                const bool isWritten = count > 0 && source->file && sink.write(data, count);
                *sent += isWritten ? count : 0;
                return isWritten;
            });
    }

    const CloudServerSettings settings_;
    AccountFolder folder_;
    const S3Credentials key_;
    std::string host_;
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

CloudServer::CloudServer(CloudServerSettings settings) : impl_(std::make_unique<Impl>(std::move(settings))) {}

CloudServer::~CloudServer() = default;

std::string CloudServer::Address() const {
    return impl_->Scheme() + "://" + impl_->Host();
}

void CloudServer::SetFault(const std::string& pathPrefix, CloudFault fault) {
    impl_->SetFault(pathPrefix, std::move(fault));
}

void CloudServer::ClearFaults() {
    impl_->ClearFaults();
}

std::string CloudServer::SignedUrl(const std::string& file, int seconds) const {
    return impl_->Sign(impl_->Host(), file.starts_with("files/") ? file : "files/" + file, seconds);
}

std::uint64_t CloudServer::BytesSent() const {
    return impl_->BytesSent();
}

std::vector<std::string> CloudServer::Requests() const {
    return impl_->Requests();
}

}  // namespace orvex
