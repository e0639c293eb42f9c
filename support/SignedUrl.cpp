#include "support/SignedUrl.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <string_view>
#include <utility>

namespace orvex {
namespace {

using View = std::wstring_view;

constexpr View kParameterStarts = L"?&;";
constexpr View kNestedStarts = L"?&;#";  ///< in the URL that is a parameter's value

/// Pieces of a URL as written.
struct UrlParts {
    View scheme;  ///< with ":" and the slashes
    View path;    ///< with host and port
    View query;   ///< with its "?"
};

bool IsLetter(wchar_t c) {
    return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z');
}

bool IsDigit(wchar_t c) {
    return c >= L'0' && c <= L'9';
}

int HexValue(wchar_t c) {
    if (IsDigit(c)) {
        return c - L'0';
    }
    const wchar_t lower = IsLetter(c) ? static_cast<wchar_t>(c | 0x20) : L'\0';
    return lower >= L'a' && lower <= L'f' ? lower - L'a' + 10 : -1;
}

/// Resolves percent escapes once; each byte becomes one character.
std::wstring DecodedOnce(View text) {
    std::wstring decoded;
    decoded.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isEscape = text[i] == L'%' && i + 2 < text.size() && HexValue(text[i + 1]) >= 0 &&
                              HexValue(text[i + 2]) >= 0;
        decoded +=
            isEscape ? static_cast<wchar_t>(HexValue(text[i + 1]) * 16 + HexValue(text[i + 2])) : text[i];
        i += isEscape ? 2 : 0;
    }
    return decoded;
}

/// A URL inside a URL is encoded again at each level.
std::wstring Decoded(View text) {
    constexpr int kMostLevels = 4;
    std::wstring decoded(text);
    for (int level = 0; level < kMostLevels && decoded.find(L'%') != std::wstring::npos; ++level) {
        decoded = DecodedOnce(decoded);
    }
    return decoded;
}

/// Letters and digits of a decoded parameter's name, in lower case. Servers and their proxies do not agree
/// about letter case, "-" and "_".
std::string PlainName(View parameter) {
    std::string name;
    for (const wchar_t c : parameter.substr(0, parameter.find(L'='))) {
        if (IsLetter(c) || IsDigit(c)) {
            name += static_cast<char>(IsLetter(c) ? c | 0x20 : c);
        }
    }
    return name;
}

/// Parameters of a signature scheme, of which only the times are of use to a reader.
bool IsOfSignedScheme(std::string_view name) {
    constexpr std::array<std::string_view, 3> kSchemes{"xamz", "xgoog", "xoss"};
    return std::ranges::any_of(kSchemes, [&](std::string_view scheme) {
        return name.starts_with(scheme) && name.substr(scheme.size()) != "date" &&
               name.substr(scheme.size()) != "expires";
    });
}

bool IsSecretName(std::string_view name) {
    constexpr std::size_t kLongestName = 31;  // what is longer is a token without a name
    constexpr auto kWhole = std::to_array<std::string_view>(
        {"sig",  "sign", "sas", "si",  "sip", "skoid", "sktid", "saoid", "suoid",
         "scid", "sid",  "pw",  "pin", "otp", "code",  "hmac",  "nonce", "hash",
         "md5",  "ak",   "sk",  "qak", "tok", "hdnea", "hdnts"});
    constexpr auto kParts = std::to_array<std::string_view>(
        {"signature", "credential", "token", "secret", "passw", "passphrase", "pwd", "policy", "accesskey",
         "accessid", "keypair", "bearer", "session", "cookie", "jwt", "saml", "ticket", "sharedaccess"});
    constexpr auto kEnds = std::to_array<std::string_view>({"key", "keyid", "pass", "sig"});
    const bool isAuthority = name.find("auth") != std::string_view::npos && !name.ends_with("author");
    return name.size() > kLongestName || isAuthority || IsOfSignedScheme(name) || name.starts_with("qsign") ||
           std::ranges::find(kWhole, name) != kWhole.end() ||
           std::ranges::any_of(kParts,
                               [&](auto part) { return name.find(part) != std::string_view::npos; }) ||
           std::ranges::any_of(kEnds, [&](auto end) { return name.ends_with(end); });
}

/// Calls `use` with each piece between separators; `begin` is the index of its first character.
template <typename Use>
void ForEachPiece(View text, View separators, const Use& use) {
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find_first_of(separators, begin), text.size());
        use(text.substr(begin, end - begin), begin);
        begin = end + 1;
    }
}

/// True if a decoded parameter, or one in the URL that is its value, gives access.
bool HoldsSecret(View decoded) {
    bool isSecret = decoded.find(L"://") != View::npos && decoded.find(L'@') != View::npos;
    ForEachPiece(decoded, kNestedStarts,
                 [&](View piece, std::size_t) { isSecret = isSecret || IsSecretName(PlainName(piece)); });
    return isSecret;
}

/// Length of the scheme with its colon and what leads to the host; browsers accept any number of slashes
/// there.
std::size_t SchemeLength(View url) {
    std::size_t length = 0;
    while (length < url.size() &&
           (IsLetter(url[length]) || IsDigit(url[length]) || View(L"+-.").find(url[length]) != View::npos)) {
        ++length;
    }
    length = length > 0 && length < url.size() && url[length] == L':' ? length + 1 : 0;
    const bool isWeb = length >= 5 && PlainName(url.substr(0, length)).starts_with("http");
    const std::size_t host = std::min(url.find_first_not_of(L"/\\", length), url.size());
    return isWeb ? host : std::min(host, length + 2);
}

/// Index of the host: behind the last "@" of the authority. Where a password's own "/", "?" or "#" has ended
/// that too early, what stands in the place of the port is no number.
std::size_t HostStart(View url, std::size_t start) {
    const std::size_t end = std::min(url.find_first_of(L"/?#", start), url.size());
    const View authority = url.substr(start, end - start);
    if (const std::size_t at = authority.rfind(L'@'); at != View::npos) {
        return start + at + 1;
    }
    const std::size_t colon = authority.rfind(L':');
    const bool isPort = colon == View::npos || authority.back() == L']' ||
                        std::ranges::all_of(authority.substr(colon + 1), IsDigit);
    const std::size_t at = isPort ? View::npos : url.rfind(L'@');
    return at == View::npos || at < end ? start : at + 1;
}

UrlParts Split(View url) {
    const std::size_t scheme = SchemeLength(url);
    std::size_t host = scheme;
    for (std::size_t next = HostStart(url, host); next != host; next = HostStart(url, host)) {
        host = next;
    }
    const std::size_t end = std::min(url.find(L'#', host), url.size());
    const std::size_t query = std::min(url.find(L'?', host), end);
    return {url.substr(0, scheme), url.substr(host, query - host), url.substr(query, end - query)};
}

/// Host, folder or file name without parameters behind "&" or an encoded "?".
View ShownName(View name) {
    // Some proxies take a URL with its user info as part of their path.
    const std::size_t at = name.rfind(L'@');
    name.remove_prefix(name.find(L':') < at && at != View::npos ? at + 1 : 0);
    const std::wstring decoded = Decoded(name);
    const std::size_t start = decoded.find_first_of(kNestedStarts);
    return start == std::wstring::npos || !HoldsSecret(View(decoded).substr(start))
               ? name
               : name.substr(0, name.find_first_of(L"%&"));
}

/// Some stores have the secret in the path: host/p/SECRET/n/...
bool IsSecretFolder(View path, View folder, std::size_t begin) {
    const View before = path.substr(0, begin);
    const bool isFirst = before.size() > 3 && before.find(L'/') == before.size() - 3;
    return isFirst && before.ends_with(L"/p/") && path.substr(begin + folder.size()).starts_with(L"/n/");
}

std::wstring ShownPath(View path) {
    std::wstring shown;
    ForEachPiece(path, L"/;", [&](View piece, std::size_t begin) {
        const bool isParameter = begin > 0 && path[begin - 1] == L';';
        if (!isParameter || !HoldsSecret(Decoded(piece))) {
            shown += begin > 0 ? path.substr(begin - 1, 1) : View();
            shown += isParameter ? piece : IsSecretFolder(path, piece, begin) ? View() : ShownName(piece);
        }
    });
    return shown;
}

std::wstring ShownQuery(View query) {
    std::wstring shown;
    ForEachPiece(query, kParameterStarts, [&](View piece, std::size_t begin) {
        if (begin > 0 && !HoldsSecret(Decoded(piece))) {
            shown += shown.empty() ? L'?' : query[begin - 1];
            shown += piece;
        }
    });
    return shown == L"?" ? std::wstring() : shown;
}

/// Value of the first parameter of a name; nullopt if there is none.
std::optional<std::wstring> Parameter(View query, std::string_view name) {
    std::optional<std::wstring> value;
    ForEachPiece(query, kParameterStarts, [&](View piece, std::size_t begin) {
        if (value || begin == 0) {
            return;
        }
        const std::wstring decoded = DecodedOnce(piece);
        if (PlainName(decoded) == name) {
            value = decoded.substr(std::min(decoded.find(L'='), decoded.size() - 1) + 1);
        }
    });
    return value;
}

/// Reads a time from its characters in order; any mistake stays.
class TimeText {
  public:
    explicit TimeText(View text) : rest_(text) {}

    bool IsGood() const { return isGood_; }
    bool IsAtEnd() const { return rest_.empty(); }
    bool TryTake(wchar_t c) {
        const bool isThere = rest_.starts_with(c);
        rest_.remove_prefix(isThere ? 1 : 0);
        return isThere;
    }
    void Take(wchar_t c) { isGood_ = TryTake(c) && isGood_; }
    int Number(std::size_t digits, int most) {
        isGood_ = isGood_ && rest_.size() >= digits && std::ranges::all_of(rest_.substr(0, digits), IsDigit);
        int number = 0;
        for (std::size_t i = 0; isGood_ && i < digits; ++i) {
            number = number * 10 + (rest_[i] - L'0');
        }
        rest_.remove_prefix(isGood_ ? digits : 0);
        isGood_ = isGood_ && number <= most;
        return number;
    }
    void SkipDigits() { rest_.remove_prefix(std::min(rest_.find_first_not_of(L"0123456789"), rest_.size())); }

  private:
    View rest_;
    bool isGood_ = true;
};

/// Seconds since 1970 at the start of a day, "2026-03-01", or "20260301" without `separator`.
std::int64_t TakeDay(TimeText& text, bool isSeparated) {
    using namespace std::chrono;
    const int year = text.Number(4, 9999);
    if (isSeparated) {
        text.Take(L'-');
    }
    const int month = text.Number(2, 12);
    if (isSeparated) {
        text.Take(L'-');
    }
    const year_month_day date{std::chrono::year(year), std::chrono::month(static_cast<unsigned>(month)),
                              std::chrono::day(static_cast<unsigned>(text.Number(2, 31)))};
    constexpr std::int64_t kSecondsPerDay = 86400;
    // Not a day of the calendar: a number that no caller accepts.
    return date.ok() ? sys_days(date).time_since_epoch().count() * kSecondsPerDay : -1;
}

/// Seconds since 1970 of "20260301T120000Z".
std::optional<std::int64_t> CompactTime(View value) {
    TimeText text(value);
    const std::int64_t day = TakeDay(text, false);
    text.Take(L'T');
    const std::int64_t hours = text.Number(2, 23);
    const std::int64_t minutes = text.Number(2, 59);
    const std::int64_t seconds = text.Number(2, 59);
    text.Take(L'Z');
    const bool isGood = text.IsGood() && text.IsAtEnd() && day >= 0;
    return isGood ? std::optional(day + hours * 3600 + minutes * 60 + seconds) : std::nullopt;
}

/// Seconds that a time zone ("Z", "+02:00") is ahead of UTC. In a URL the plus may have become a blank.
int TakeZone(TimeText& text) {
    if (text.TryTake(L'Z') || text.TryTake(L'z')) {
        return 0;
    }
    const int sign = text.TryTake(L'-') ? -1 : 1;
    if (sign > 0 && !text.TryTake(L' ')) {
        text.Take(L'+');
    }
    const int hours = text.Number(2, 14);
    text.TryTake(L':');
    return sign * (hours * 3600 + text.Number(2, 59) * 60);
}

/// Seconds since 1970 of a date, or of a date and time with zone: "2026-03-01T12:00[:30[.5]]+02:00".
std::optional<std::int64_t> IsoTime(View value) {
    TimeText text(value);
    std::int64_t time = TakeDay(text, true);
    bool isGood = time >= 0;
    if (!text.IsAtEnd()) {
        text.Take(L'T');
        const int hours = text.Number(2, 23);
        text.Take(L':');
        time += hours * 3600 + text.Number(2, 59) * 60;
        time += text.TryTake(L':') ? text.Number(2, 59) : 0;
        if (text.TryTake(L'.')) {
            text.SkipDigits();
        }
        time -= TakeZone(text);
    }
    isGood = isGood && text.IsGood() && text.IsAtEnd();
    return isGood ? std::optional(time) : std::nullopt;
}

/// A number of seconds up to the year 9999; nullopt for anything else.
std::optional<std::int64_t> Seconds(View value) {
    constexpr std::int64_t kMost = 253'402'300'799;
    std::int64_t seconds = 0;
    for (const wchar_t c : value) {
        if (!IsDigit(c) || seconds > kMost) {
            return std::nullopt;
        }
        seconds = seconds * 10 + (c - L'0');
    }
    return value.empty() || seconds > kMost ? std::nullopt : std::optional(seconds);
}

/// Expiry in seconds as a start and a duration state it.
std::optional<std::int64_t> StartAndDuration(View query, const char* startName, const char* durationName) {
    const auto start = CompactTime(Parameter(query, startName).value_or(L""));
    const auto duration = Seconds(Parameter(query, durationName).value_or(L""));
    return start && duration ? std::optional(*start + *duration) : std::nullopt;
}

std::optional<std::int64_t> ExpirySeconds(View query) {
    for (const auto& [start, duration] :
         {std::pair("xamzdate", "xamzexpires"), std::pair("xgoogdate", "xgoogexpires")}) {
        if (Parameter(query, start) || Parameter(query, duration)) {
            return StartAndDuration(query, start, duration);
        }
    }
    if (const auto end = Parameter(query, "se")) {
        return IsoTime(*end);
    }
    const auto end = Parameter(query, "signature") ? Parameter(query, "expires") : std::nullopt;
    return end ? Seconds(*end) : std::nullopt;
}

}  // namespace

std::wstring ShownUrl(const std::wstring& url) {
    const UrlParts parts = Split(url);
    std::wstring shown(parts.scheme);
    shown += ShownPath(parts.path);
    return shown + ShownQuery(parts.query);
}

std::optional<std::int64_t> UrlExpiryMs(const std::wstring& url) {
    constexpr std::int64_t kMsPerSecond = 1000;
    const auto seconds = ExpirySeconds(Split(url).query);
    return seconds ? std::optional(*seconds * kMsPerSecond) : std::nullopt;
}

}  // namespace orvex
