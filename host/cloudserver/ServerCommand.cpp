#include "host/cloudserver/ServerCommand.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <limits>
#include <optional>
#include <ostream>
#include <string_view>
#include <thread>
#include <utility>

#include "host/cloudserver/CloudServer.h"
#include "host/cloudserver/S3Signature.h"
#include "host/cloudserver/TokenFile.h"
#include "orvexcommon/Version.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {

namespace {

constexpr int kDefaultPort = 8080;
constexpr std::int64_t kMostSeconds = std::int64_t{7} * 24 * 3600;  // what the signature's scheme allows
constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();

struct Options {
    CloudServerSettings server;
    std::wstring tokenFile;  ///< empty: the user's own
    bool asksForToken = true;
    std::wstring signedFile;  ///< only prints its URL
    int expires = 3600;
    std::vector<std::pair<std::string, CloudFault>> faults;  ///< with their path prefixes
    bool help = false;
    bool version = false;
    std::wstring error;

    CloudFault& Fault() {
        if (faults.empty()) {
            faults.emplace_back("/", CloudFault());
        }
        return faults.back().second;
    }
};

struct OptionRow {
    std::wstring_view name;
    enum class Value { None, Words, Number } value;
    std::int64_t least, most;  ///< of a number
    void (*set)(Options& options, const std::wstring& text, std::int64_t number);
};

std::string ReadWholeFile(const std::wstring& path) {
    ForgetStreamError();
    std::ifstream stream(ToPath(path), std::ios::binary);
    std::string content{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    if (!stream || !FileExists(path)) {
        throw LDataError(
            FormatText(Text(text::kInspectUnreadable), {path, SystemErrorText(LastStreamError())}));
    }
    return content;
}

using enum OptionRow::Value;

constexpr OptionRow kOptions[] = {
    {L"--help", None, 0, 0, [](Options& o, const std::wstring&, std::int64_t) { o.help = true; }},
    {L"-h", None, 0, 0, [](Options& o, const std::wstring&, std::int64_t) { o.help = true; }},
    {L"--version", None, 0, 0, [](Options& o, const std::wstring&, std::int64_t) { o.version = true; }},
    {L"--address", Words, 0, 0,
     [](Options& o, const std::wstring& text, std::int64_t) { o.server.address = ToUtf8(text); }},
    {L"--port", Number, 0, 65535,
     [](Options& o, const std::wstring&, std::int64_t n) { o.server.port = static_cast<int>(n); }},
    {L"--token-file", Words, 0, 0,
     [](Options& o, const std::wstring& text, std::int64_t) { o.tokenFile = text; }},
    {L"--no-token", None, 0, 0,
     [](Options& o, const std::wstring&, std::int64_t) { o.asksForToken = false; }},
    {L"--certificate", Words, 0, 0,
     [](Options& o, const std::wstring& text, std::int64_t) { o.server.certificate = ToPath(text); }},
    {L"--key", Words, 0, 0,
     [](Options& o, const std::wstring& text, std::int64_t) { o.server.key = ToPath(text); }},
    {L"--sign", Words, 0, 0, [](Options& o, const std::wstring& text, std::int64_t) { o.signedFile = text; }},
    {L"--expires", Number, 0, kMostSeconds,
     [](Options& o, const std::wstring&, std::int64_t n) { o.expires = static_cast<int>(n); }},
    {L"--fault", Words, 0, 0,
     [](Options& o, const std::wstring& text, std::int64_t) {
         o.faults.emplace_back(ToUtf8(text), CloudFault());
     }},
    {L"--delay", Number, 0, 3'600'000,
     [](Options& o, const std::wstring&, std::int64_t n) { o.Fault().delayMs = static_cast<int>(n); }},
    {L"--status", Number, 200, 599,
     [](Options& o, const std::wstring&, std::int64_t n) { o.Fault().status = static_cast<int>(n); }},
    {L"--retry-after", Words, 0, 0,
     [](Options& o, const std::wstring& text, std::int64_t) { o.Fault().retryAfter = ToUtf8(text); }},
    {L"--cut-after", Number, 0, kMost,
     [](Options& o, const std::wstring&, std::int64_t n) { o.Fault().cutAfter = n; }},
    {L"--redirect", Words, 0, 0,
     [](Options& o, const std::wstring& text, std::int64_t) { o.Fault().redirect = ToUtf8(text); }},
    {L"--body", Words, 0, 0,
     [](Options& o, const std::wstring& text, std::int64_t) { o.Fault().body = ReadWholeFile(text); }},
    {L"--no-ranges", None, 0, 0,
     [](Options& o, const std::wstring&, std::int64_t) { o.Fault().ignoresRanges = true; }},
    {L"--times", Number, 1, std::numeric_limits<int>::max(),
     [](Options& o, const std::wstring&, std::int64_t n) { o.Fault().times = static_cast<int>(n); }},
};

/// Number of nothing but digits; nullopt if it is not in the range.
std::optional<std::int64_t> ParseNumber(const std::wstring& text, const OptionRow& row) {
    std::int64_t number = 0;
    for (const wchar_t c : text) {
        if (c < L'0' || c > L'9' || number > (kMost - 9) / 10) {
            return std::nullopt;
        }
        number = number * 10 + (c - L'0');
    }
    return !text.empty() && number >= row.least && number <= row.most ? std::optional(number) : std::nullopt;
}

/// Takes the option at `i`, written "--name value" or "--name=value".
void ParseOption(const std::vector<std::wstring>& arguments, std::size_t& i, Options& options) {
    const std::wstring& argument = arguments[i];
    const std::size_t equals = argument.find(L'=');
    const std::wstring name = argument.substr(0, equals);
    const auto* const row = std::ranges::find(kOptions, name, &OptionRow::name);
    const bool hasValue = equals != std::wstring::npos;
    if (row == std::end(kOptions) || (hasValue && row->value == None)) {
        options.error = FormatText(Text(text::kInspectUnknownOption), {argument});
        return;
    }
    std::wstring value = hasValue ? argument.substr(equals + 1) : std::wstring();
    if (row->value != None && !hasValue && i + 1 < arguments.size()) {
        value = arguments[++i];
    }
    const auto number = row->value == Number ? ParseNumber(value, *row) : std::optional<std::int64_t>(0);
    if (!number) {
        options.error = FormatText(Text(text::kCloudServerNumberRange), {name, row->least, row->most});
    } else if (row->value == Words && value.empty()) {
        options.error = FormatText(Text(text::kCloudServerNoValue), {name});
    } else {
        row->set(options, value, *number);
    }
}

Options ParseArguments(const std::vector<std::wstring>& arguments) {
    Options options;
    options.server.port = kDefaultPort;
    for (std::size_t i = 0; i < arguments.size() && options.error.empty(); ++i) {
        if (arguments[i].size() > 1 && arguments[i].front() == L'-') {
            ParseOption(arguments, i, options);
        } else if (options.server.folder.empty()) {
            options.server.folder = ToPath(AbsolutePath(arguments[i]));
        } else {
            options.error = FormatText(Text(text::kInspectUnknownOption), {arguments[i]});
        }
    }
    if (!options.error.empty() || options.help || options.version) {
        return options;
    }
    if (options.server.folder.empty()) {
        options.error = Text(text::kCloudServerFolderMissing);
    } else if (options.server.certificate.empty() != options.server.key.empty()) {
        options.error = Text(text::kCloudServerKeyPair);
    } else if (!options.asksForToken && !IsLoopback(options.server.address)) {
        options.error = FormatText(Text(text::kCloudServerOnlyLoopback), {FromUtf8(options.server.address)});
    }
    return options;
}

void WriteLine(std::ostream& out, const std::wstring& line) {
    out << ToUtf8(WithoutControls(line, L"\n")) << std::endl;
}

int PrintSignedUrl(const Options& options, std::ostream& out) {
    const std::wstring folder = FromPath(options.server.folder);
    const std::string file = ToUtf8(options.signedFile);
    if (!FileExists(folder + L"/" + options.signedFile) || !file.starts_with("files/") ||
        options.server.port == 0) {
        throw LDataError(FormatText(Text(text::kCloudServerNotSigned), {options.signedFile, folder}));
    }
    out << SignFileUrl(ServerAddress(options.server, options.server.port), options.server.signingSecret,
                       PercentEncoded(file, true), options.expires)
        << std::endl;
    return kServerOk;
}

int Serve(const Options& options, const std::wstring& tokenFile, const ServerStreams& streams) {
    CloudServer server(options.server);
    for (const auto& [prefix, fault] : options.faults) {
        server.SetFault(prefix, fault);
    }
    WriteLine(streams.out, FormatText(Text(text::kCloudServerServing),
                                      {FromPath(options.server.folder), FromUtf8(server.Address())}));
    WriteLine(streams.out,
              FormatText(Text(options.asksForToken ? text::kCloudServerTokenFrom : text::kCloudServerNoToken),
                         {tokenFile}));
    if (!IsLoopback(options.server.address) && options.server.certificate.empty()) {
        WriteLine(streams.err, Text(text::kCloudServerClearText));
    }
    while (!streams.stop()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    return kServerOk;
}

int Run(Options& options, const ServerStreams& streams) {
    std::wstring tokenFile = options.tokenFile;
    const std::string token = tokenFile.empty() ? UserToken(tokenFile) : ReadToken(tokenFile);
    // Links outlive a restart, and other processes can sign them.
    options.server.signingSecret = PercentEncoded(HmacSha256(token, "signs file links"));
    options.server.token = options.asksForToken ? token : std::string();
    return options.signedFile.empty() ? Serve(options, tokenFile, streams)
                                      : PrintSignedUrl(options, streams.out);
}

}  // namespace

int RunServerCommand(const std::vector<std::wstring>& arguments, const ServerStreams& streams) {
    try {
        Options options = ParseArguments(arguments);
        if (options.help) {
            WriteLine(streams.out, Text(text::kCloudServerUsage));
            return kServerOk;
        }
        if (options.version) {
            WriteLine(streams.out, L"orvex-cloud-server " ORVEX_VERSION_TEXT);
            return kServerOk;
        }
        if (!options.error.empty()) {
            WriteLine(streams.err, options.error);
            WriteLine(streams.err, Text(text::kCloudServerUsage));
            return kServerUsage;
        }
        return Run(options, streams);
    } catch (...) {
        WriteLine(streams.err, CurrentExceptionText());
        return kServerFailed;
    }
}

}  // namespace orvex
