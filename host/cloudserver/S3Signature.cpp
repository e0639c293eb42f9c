#include "host/cloudserver/S3Signature.h"

#include <QtCore/QCryptographicHash>
#include <QtCore/QMessageAuthenticationCode>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <map>
#include <optional>

namespace orvex {

namespace {

using namespace std::chrono_literals;
using Parameters = std::vector<std::pair<std::string, std::string>>;

constexpr std::string_view kAlgorithm = "AWS4-HMAC-SHA256";
constexpr std::chrono::seconds kMostExpires = 7 * 24h;
constexpr std::chrono::seconds kClockSkew = 15min;

bool IsUnreserved(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '.' || c == '_' || c == '~';
}

std::optional<unsigned> HexDigit(char c) {
    if (c >= '0' && c <= '9') {
        return static_cast<unsigned>(c - '0');
    }
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? std::optional(static_cast<unsigned>(lower - 'a') + 10)
                                        : std::nullopt;
}

QByteArray View(std::string_view text) {
    return QByteArray::fromRawData(text.data(), static_cast<qsizetype>(text.size()));
}

std::string Hex(const QByteArray& bytes) {
    return bytes.toHex().toStdString();
}

std::string Sha256Hex(std::string_view text) {
    return Hex(QCryptographicHash::hash(View(text), QCryptographicHash::Sha256));
}

std::string Lower(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c; });
    return lower;
}

/// "20130524T000000Z".
std::string TimeText(std::chrono::sys_seconds time) {
    const auto day = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss clock(time - day);
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%04d%02u%02uT%02d%02d%02dZ", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                  static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                  static_cast<int>(clock.seconds().count()));
    return text.data();
}

/// A number of nothing but digits.
std::optional<unsigned> Digits(std::string_view text) {
    unsigned value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool whole = !text.empty() && error == std::errc() && end == text.data() + text.size();
    return whole ? std::optional(value) : std::nullopt;
}

std::optional<std::chrono::sys_seconds> ParseTime(std::string_view text) {
    if (text.size() != 16 || text[8] != 'T' || text[15] != 'Z') {
        return std::nullopt;
    }
    const auto year = Digits(text.substr(0, 4)), month = Digits(text.substr(4, 2)),
               day = Digits(text.substr(6, 2));
    const auto hour = Digits(text.substr(9, 2)), minute = Digits(text.substr(11, 2)),
               second = Digits(text.substr(13, 2));
    if (!year || !month || !day || !hour || !minute || !second) {
        return std::nullopt;
    }
    const std::chrono::year_month_day date(std::chrono::year(static_cast<int>(*year)),
                                           std::chrono::month(*month), std::chrono::day(*day));
    if (!date.ok() || *hour > 23 || *minute > 59 || *second > 59) {
        return std::nullopt;
    }
    return std::chrono::sys_days(date) + std::chrono::hours(*hour) + std::chrono::minutes(*minute) +
           std::chrono::seconds(*second);
}

/// The parameters, encoded, in the order that is signed.
std::string CanonicalQuery(const Parameters& parameters) {
    Parameters encoded;
    for (const auto& [name, value] : parameters) {
        encoded.emplace_back(PercentEncoded(name), PercentEncoded(value));
    }
    std::ranges::sort(encoded);
    std::string query;
    for (const auto& [name, value] : encoded) {
        query.append(query.empty() ? "" : "&").append(name).append("=").append(value);
    }
    return query;
}

/// Day, region and service that a signing key is made for.
struct Scope {
    std::string day, region, service;
    std::string Text() const { return day + "/" + region + "/" + service + "/aws4_request"; }
};

std::string Lines(std::initializer_list<std::string> lines) {
    std::string text;
    for (const std::string& line : lines) {
        text.append(text.empty() ? "" : "\n").append(line);
    }
    return text;
}

std::string Signature(const S3Request& request, const std::string& query, const Scope& scope,
                      const std::string& time, const std::string& secretKey) {
    const std::string canonical = Lines({request.method, PercentEncoded(request.path, true), query,
                                         "host:" + Lower(request.host), "", "host", "UNSIGNED-PAYLOAD"});
    const std::string toSign = Lines({std::string(kAlgorithm), time, scope.Text(), Sha256Hex(canonical)});
    std::string key = "AWS4" + secretKey;
    for (const std::string& part : {scope.day, scope.region, scope.service, std::string("aws4_request")}) {
        key = HmacSha256(key, part);
    }
    return Hex(View(HmacSha256(key, toSign)));
}

/// Decoded parameters of a query; nullopt if one of the signature's own stands twice.
std::optional<Parameters> ParseQuery(std::string_view query) {
    Parameters parameters;
    while (!query.empty()) {
        const std::string_view part = query.substr(0, query.find('&'));
        query.remove_prefix(std::min(part.size() + 1, query.size()));
        const std::size_t equals = std::min(part.find('='), part.size());
        std::string name = PercentDecoded(part.substr(0, equals));
        const auto isSame = [&](const auto& other) { return other.first == name; };
        if (name.starts_with("X-Amz-") && std::ranges::any_of(parameters, isSame)) {
            return std::nullopt;
        }
        if (!part.empty()) {
            parameters.emplace_back(std::move(name),
                                    PercentDecoded(part.substr(std::min(equals + 1, part.size()))));
        }
    }
    return parameters;
}

std::string ValueOf(const Parameters& parameters, std::string_view name) {
    const auto found = std::ranges::find(parameters, name, &Parameters::value_type::first);
    return found == parameters.end() ? std::string() : found->second;
}

/// Scope of "KEY/20130524/us-east-1/s3/aws4_request"; nullopt if malformed or of another key.
std::optional<Scope> ParseCredential(std::string_view text, std::string_view accessKey) {
    if (!text.starts_with(accessKey)) {
        return std::nullopt;
    }
    text.remove_prefix(accessKey.size());
    std::vector<std::string> parts;
    while (text.starts_with('/')) {
        text.remove_prefix(1);
        parts.emplace_back(text.substr(0, text.find('/')));
        text.remove_prefix(parts.back().size());
    }
    if (!text.empty() || parts.size() != 4 || parts[3] != "aws4_request") {
        return std::nullopt;
    }
    return Scope{parts[0], parts[1], parts[2]};
}

}  // namespace

std::string PercentEncoded(std::string_view text, bool keepsSlash) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string encoded;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (IsUnreserved(c) || (keepsSlash && c == '/')) {
            encoded += c;
        } else {
            encoded += {'%', digits[byte >> 4], digits[byte & 15U]};
        }
    }
    return encoded;
}

std::string PercentDecoded(std::string_view text) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isCode =
            text[i] == '%' && i + 2 < text.size() && HexDigit(text[i + 1]) && HexDigit(text[i + 2]);
        decoded += isCode ? static_cast<char>(*HexDigit(text[i + 1]) * 16 + *HexDigit(text[i + 2])) : text[i];
        i += isCode ? 2 : 0;
    }
    return decoded;
}

std::string HmacSha256(std::string_view key, std::string_view message) {
    return QMessageAuthenticationCode::hash(View(message), View(key), QCryptographicHash::Sha256)
        .toStdString();
}

bool EqualSecrets(std::string_view a, std::string_view b) {
    // Of texts of any length, their digests have one.
    const std::string digestA = HmacSha256("compare", a), digestB = HmacSha256("compare", b);
    unsigned difference = 0;
    for (std::size_t i = 0; i < digestA.size(); ++i) {
        difference |= static_cast<unsigned>(digestA[i] ^ digestB[i]);
    }
    return difference == 0;
}

std::string PresignS3Url(const S3Request& request, const S3Credentials& credentials,
                         std::chrono::sys_seconds time, std::chrono::seconds expires) {
    const std::string timeText = TimeText(time);
    const Scope scope{timeText.substr(0, 8), request.region, request.service};
    Parameters parameters = request.parameters;
    parameters.emplace_back("X-Amz-Algorithm", kAlgorithm);
    parameters.emplace_back("X-Amz-Credential", credentials.accessKey + "/" + scope.Text());
    parameters.emplace_back("X-Amz-Date", timeText);
    parameters.emplace_back("X-Amz-Expires", std::to_string(expires.count()));
    parameters.emplace_back("X-Amz-SignedHeaders", "host");
    if (!credentials.sessionToken.empty()) {
        parameters.emplace_back("X-Amz-Security-Token", credentials.sessionToken);
    }
    const std::string query = CanonicalQuery(parameters);
    return request.scheme + "://" + request.host + PercentEncoded(request.path, true) + "?" + query +
           "&X-Amz-Signature=" + Signature(request, query, scope, timeText, credentials.secretKey);
}

S3Verdict VerifyS3Request(std::string_view method, std::string_view host, std::string_view target,
                          const S3Credentials& credentials, std::chrono::sys_seconds now) {
    const std::size_t question = std::min(target.find('?'), target.size());
    const auto query = ParseQuery(target.substr(std::min(question + 1, target.size())));
    if (!query || ValueOf(*query, "X-Amz-Signature").empty()) {
        return S3Verdict::NotSigned;
    }
    Parameters parameters = *query;
    std::erase_if(parameters, [](const auto& parameter) { return parameter.first == "X-Amz-Signature"; });
    const auto time = ParseTime(ValueOf(parameters, "X-Amz-Date"));
    const auto expires = Digits(ValueOf(parameters, "X-Amz-Expires"));
    const auto scope = ParseCredential(ValueOf(parameters, "X-Amz-Credential"), credentials.accessKey);
    if (!time || !expires || *expires == 0 || std::chrono::seconds(*expires) > kMostExpires || !scope ||
        ValueOf(parameters, "X-Amz-Algorithm") != kAlgorithm ||
        ValueOf(parameters, "X-Amz-SignedHeaders") != "host") {
        return S3Verdict::NotSigned;
    }
    S3Request request;
    request.method = method;
    request.host = host;
    request.path = PercentDecoded(target.substr(0, question));
    const std::string expected =
        Signature(request, CanonicalQuery(parameters), *scope, TimeText(*time), credentials.secretKey);
    const bool isOfDay = TimeText(*time).starts_with(scope->day) && scope->day.size() == 8;
    if (!EqualSecrets(expected, ValueOf(*query, "X-Amz-Signature")) || !isOfDay || *time > now + kClockSkew ||
        ValueOf(parameters, "X-Amz-Security-Token") != credentials.sessionToken) {
        return S3Verdict::Wrong;
    }
    return now > *time + std::chrono::seconds(*expires) ? S3Verdict::Expired : S3Verdict::Valid;
}

}  // namespace orvex
