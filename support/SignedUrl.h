#pragma once
// Links that carry their own permission: the part that may be shown, and the time of expiry.
#include <cstdint>
#include <optional>
#include <string>

namespace orvex {

/// A URL without anything that gives access: signature, credential, token, key, password and policy
/// parameters, also in an unknown scheme's names or percent-encoded; user info; fragment. The rest stays as
/// it is: scheme, host, path, other parameters (versionId, X-Amz-Date, X-Amz-Expires, se). For any text, in
/// linear time.
std::wstring ShownUrl(const std::wstring& url);

/// Time of expiry in milliseconds since 1970 UTC, from X-Amz-Date and X-Amz-Expires, X-Goog-Date and
/// X-Goog-Expires, the shared access signature's "se", or "Expires" (seconds since 1970) beside a
/// "Signature". Of several parameters of a name the first counts. nullopt if there is none or it is
/// malformed.
std::optional<std::int64_t> UrlExpiryMs(const std::wstring& url);

}  // namespace orvex
