#pragma once
// Answers of the cloud server before they are handed to the HTTP library.
#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace httplib {
struct Response;
}

namespace orvex {

struct Reply {
    int status = 200;
    std::vector<std::pair<std::string, std::string>> headers;
    std::string type = "application/json";
    std::string body;
    std::wstring file;  ///< sent instead of `body`, if any: `length` bytes from `offset` on
    std::uint64_t offset = 0;
    std::uint64_t length = 0;
};

/// The error body of a status, in the server's own words. A code and a message of its own need no escaping.
Reply ErrorReply(int status, const std::string& code = {}, const std::string& message = {});

/// The part of a file of `size` bytes that a header "Range" asks for: "bytes=0-99", "bytes=100-" or
/// "bytes=-100" (the last 100). The whole for anything else, several ranges among it: a server need not know
/// them (RFC 9110, 14.2).
Reply FileReply(const std::wstring& file, std::uint64_t size, std::string_view range);

/// Hands an answer to the library, which asks for its body piece by piece and adds the bytes that it has sent
/// to `sent`. The connection is closed after `cutAfter` bytes of the body, unless that is negative.
void SendReply(Reply reply, std::int64_t cutAfter, const std::shared_ptr<std::atomic<std::uint64_t>>& sent,
               httplib::Response& response);

}  // namespace orvex
