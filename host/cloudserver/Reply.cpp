#include "host/cloudserver/Reply.h"

#include <httplib.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <fstream>
#include <limits>
#include <optional>

#include "support/Text.h"

namespace orvex {

namespace {

constexpr std::uint64_t kPiece = 64 << 10;  // of a body that is sent

struct Error {
    int status;
    const char* code;
    const char* message;
};

constexpr std::array<Error, 10> kErrors = {{
    {400, "bad_request", "The request is malformed."},
    {401, "unauthorized", "A valid bearer token is required."},
    {403, "forbidden", "Access is not permitted."},
    {404, "not_found", "There is nothing of this name."},
    {405, "method_not_allowed", "Only GET and HEAD are possible."},
    {414, "uri_too_long", "The address is too long."},
    {416, "range_not_satisfiable", "The range lies outside of the file."},
    {429, "too_many_requests", "There are too many requests."},
    {500, "server_failed", "The server failed."},
    {503, "unavailable", "The server is busy."},
}};

/// A number of nothing but digits; the greatest of all for one that is too large.
std::optional<std::uint64_t> NumberOf(std::string_view text) {
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (end != text.data() + text.size() || error == std::errc::invalid_argument) {
        return std::nullopt;
    }
    return error == std::errc() ? value : std::numeric_limits<std::uint64_t>::max();
}

struct Part {
    std::uint64_t offset = 0;
    std::uint64_t length = 0;  ///< 0: outside of the file
};

/// nullopt for the whole file.
std::optional<Part> ParseRange(std::string_view header, std::uint64_t size) {
    constexpr std::string_view unit = "bytes=";
    const std::size_t dash = header.find('-');
    if (!header.starts_with(unit) || dash == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view firstText = header.substr(unit.size(), dash - unit.size());
    const std::string_view lastText = header.substr(dash + 1);
    const auto first = NumberOf(firstText), last = NumberOf(lastText);
    if (firstText.empty() && last) {
        const std::uint64_t length = std::min(*last, size);
        return Part{size - length, length};
    }
    if (!first || (!last && !lastText.empty()) || (last && *last < *first)) {
        return std::nullopt;
    }
    return *first < size ? Part{*first, std::min(last.value_or(size - 1), size - 1) - *first + 1} : Part{};
}

/// Body of an answer, read while it is sent.
class Body {
  public:
    explicit Body(Reply reply) : reply_(std::move(reply)) {
        if (!reply_.file.empty()) {
            file_.open(ToPath(reply_.file), std::ios::binary);
            piece_.resize(kPiece);
        }
    }

    std::uint64_t Length() const { return reply_.file.empty() ? reply_.body.size() : reply_.length; }

    /// The bytes at an offset; null if the file has none there any more.
    const char* Piece(std::uint64_t at, std::size_t count) {
        if (reply_.file.empty()) {
            return reply_.body.data() + at;
        }
        file_.seekg(static_cast<std::streamoff>(reply_.offset + at));
        file_.read(piece_.data(), static_cast<std::streamsize>(count));
        return file_ ? piece_.data() : nullptr;
    }

  private:
    const Reply reply_;
    std::ifstream file_;
    std::vector<char> piece_;
};

}  // namespace

Reply ErrorReply(int status, const std::string& code, const std::string& message) {
    static constexpr Error other = {0, "failed", "The request failed."};
    const auto* const found = std::ranges::find(kErrors, status, &Error::status);
    const Error& error = found != kErrors.end() ? *found : other;
    Reply reply;
    reply.status = status;
    reply.body = std::string(R"({"error":{"code":")") + (code.empty() ? error.code : code) +
                 R"(","message":")" + (message.empty() ? error.message : message) + "\"}}";
    return reply;
}

Reply FileReply(const std::wstring& file, std::uint64_t size, std::string_view range) {
    const std::string total = "/" + std::to_string(size);
    const std::optional<Part> part = ParseRange(range, size);
    if (part && part->length == 0) {
        Reply reply = ErrorReply(416);
        reply.headers.emplace_back("Content-Range", "bytes *" + total);
        return reply;
    }
    Reply reply;
    reply.type = "application/octet-stream";
    reply.file = file;
    reply.offset = part ? part->offset : 0;
    reply.length = part ? part->length : size;
    if (part) {
        reply.status = 206;
        reply.headers.emplace_back("Content-Range", "bytes " + std::to_string(part->offset) + "-" +
                                                        std::to_string(part->offset + part->length - 1) +
                                                        total);
    }
    return reply;
}

void SendReply(Reply reply, std::int64_t cutAfter, const std::shared_ptr<std::atomic<std::uint64_t>>& sent,
               httplib::Response& response) {
    response.status = reply.status;
    for (const auto& [name, value] : reply.headers) {
        response.set_header(name, value);
    }
    const std::string type = reply.type;
    const auto body = std::make_shared<Body>(std::move(reply));
    if (body->Length() == 0) {
        response.set_header("Content-Type", type);
        return;
    }
    const std::uint64_t end = cutAfter < 0 ? body->Length() : static_cast<std::uint64_t>(cutAfter);
    response.set_content_provider(
        static_cast<std::size_t>(body->Length()), type,
        [body, end, sent](std::size_t at, std::size_t left, httplib::DataSink& sink) {
            const auto count =
                static_cast<std::size_t>(std::min<std::uint64_t>({left, kPiece, end > at ? end - at : 0}));
            const char* const data = count > 0 ? body->Piece(at, count) : nullptr;
            // Counted before the client has the bytes. False closes the connection: it sees that some are
            // missing.
            *sent += count;
            const bool isWritten = data != nullptr && sink.write(data, count);
            *sent -= isWritten ? 0 : count;
            return isWritten;
        });
}

}  // namespace orvex
