#pragma once
// Pre-signed URLs of S3-compatible object stores: query authentication of AWS Signature Version 4. The
// signature covers the method, the host, the path and every parameter; the body is not signed, and no header
// but "host".
#include <chrono>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvex {

struct S3Credentials {
    std::string accessKey;
    std::string secretKey;
    std::string sessionToken;  ///< of temporary credentials; else empty
};

struct S3Request {
    std::string method = "GET";
    std::string scheme = "https";
    std::string host;  ///< with ":port" unless the port is the scheme's own
    std::string path;  ///< UTF-8, not percent-encoded; begins with "/"
    std::vector<std::pair<std::string, std::string>> parameters;  ///< further ones, not percent-encoded
    std::string region = "us-east-1";
    std::string service = "s3";  ///< or another service that signs as S3 does, such as "s3-outposts"
};

/// Returns the URL that permits the request from `time` on for as long as `expires`, which S3 limits to 1
/// second to 7 days. Parameters stand in the order of their encoded names, the signature last.
std::string PresignS3Url(const S3Request& request, const S3Credentials& credentials,
                         std::chrono::sys_seconds time, std::chrono::seconds expires);

enum class S3Verdict {
    Valid,
    Expired,    ///< signed by this key, but its time is over
    NotSigned,  ///< no signature, or one with parts missing, twice or malformed
    Wrong,      ///< signed by another key, for another request, or for later than `now`
};

/// Checks a request to `host` whose request line names `method` and `target` ("/path?query", encoded). The
/// clock of who signed may be 15 minutes ahead.
S3Verdict VerifyS3Request(std::string_view method, std::string_view host, std::string_view target,
                          const S3Credentials& credentials, std::chrono::sys_seconds now);

/// The text with every byte encoded that is no letter, digit, "-", ".", "_" or "~"; "/" is kept if so asked.
std::string PercentEncoded(std::string_view text, bool keepsSlash = false);

/// The text with "%41" as "A"; a "%" that begins no such code, and "+", stay as they are.
std::string PercentDecoded(std::string_view text);

/// HMAC-SHA-256, 32 bytes.
std::string HmacSha256(std::string_view key, std::string_view message);

/// Compares in a time that does not depend on where the texts differ.
bool EqualSecrets(std::string_view a, std::string_view b);

}  // namespace orvex
