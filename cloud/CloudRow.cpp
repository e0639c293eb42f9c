#include "cloud/CloudRow.h"

#include <algorithm>
#include <chrono>
#include <cwctype>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "cloud/CloudListing.h"
#include "cloud/RemoteLas.h"
#include "support/SignedUrl.h"

namespace orvex {
namespace {

constexpr std::int64_t kHourMs = 60LL * 60 * 1000;
constexpr const wchar_t* kPresignedName = L"Cloud LAS_Layer";

/// Where the record has a row's URL; null: nowhere.
using UrlMember = std::map<std::wstring, std::wstring> AddFilesParams::*;

// The kinds are compared in the upper case of the process's locale, as hosts do.
bool IsKind(std::wstring_view kind, std::wstring_view one) {
    const auto isSame = [](wchar_t a, wchar_t b) {
        return std::towupper(static_cast<std::wint_t>(a)) == std::towupper(static_cast<std::wint_t>(b));
    };
    return kind.size() == one.size() && std::equal(kind.begin(), kind.end(), one.begin(), isSame);
}

UrlMember UrlMemberOf(std::wstring_view kind) {
    if (IsKind(kind, kPresignedUrlKind)) {
        return &AddFilesParams::presignedUrlLayers;
    }
    return IsKind(kind, kOrvexLasUrlKind) ? &AddFilesParams::cloudLasLayers : nullptr;
}

CloudRow RowOfUrl(std::wstring url, const wchar_t* kind) {
    CloudRow row;
    row.kind = kind;
    row.path = ShownUrl(url);
    row.expiresMs = UrlExpiryMs(url);
    row.url = std::move(url);
    return row;
}

// A link that has expired is why its file cannot be read, and comes first.
void AddExpiry(CloudRow& row, std::int64_t now) {
    if (row.expiresMs && *row.expiresMs <= now) {
        row.findings.insert(row.findings.begin(),
                            MakeFinding(cloud_finding::kExpired, {UtcTimeText(*row.expiresMs)}));
    } else if (row.expiresMs && *row.expiresMs <= now + kHourMs) {
        row.findings.push_back(MakeFinding(cloud_finding::kExpiresSoon, {UtcTimeText(*row.expiresMs)}));
    }
}

void AddRemote(CloudRow& row) {
    if (row.remote == nullptr) {
        return;
    }
    const LasRow& file = row.remote->row;
    if (!file.loadable) {
        const bool wasReached = row.remote->status == CloudStatus::Ok;
        row.findings.push_back(
            FindingInWords(wasReached ? cloud_finding::kUnusable : cloud_finding::kNotRead, file.summary));
        return;
    }
    row.findings.insert(row.findings.end(), file.findings.begin(), file.findings.end());
}

/// When a link changes its state next; nullopt: never.
std::optional<std::int64_t> NextChange(const CloudRow& row, std::int64_t now) {
    if (!row.expiresMs || *row.expiresMs <= now) {
        return std::nullopt;
    }
    return *row.expiresMs - kHourMs > now ? *row.expiresMs - kHourMs : *row.expiresMs;
}

/// Names that the record has already, of each kind of rows.
class TakenNames {
  public:
    /// Says what keeps a row from the record.
    void Judge(CloudRow& row) {
        const UrlMember member = UrlMemberOf(row.kind);
        if (row.name.empty()) {
            row.findings.push_back(MakeFinding(cloud_finding::kNoName));
        } else if (row.url.empty()) {
            row.findings.push_back(MakeFinding(cloud_finding::kNoUrl));
        } else if (member != nullptr && !NamesOf(member).insert(row.name).second) {
            row.findings.push_back(MakeFinding(cloud_finding::kDuplicateName, {row.name}));
        }
    }

  private:
    std::unordered_set<std::wstring_view>& NamesOf(UrlMember member) {
        return member == &AddFilesParams::presignedUrlLayers ? presigned_ : listed_;
    }

    std::unordered_set<std::wstring_view> presigned_, listed_;
};

}  // namespace

CloudRow PresignedRow(std::wstring url) {
    CloudRow row = RowOfUrl(std::move(url), kPresignedUrlKind);
    row.name = kPresignedName;
    return row;
}

CloudRow BrowsedRow(const CloudLayer& layer) {
    CloudRow row = RowOfUrl(layer.url, kOrvexLasUrlKind);
    row.name = layer.name;
    if (layer.bytes) {
        row.sizeGib = Gibibytes(*layer.bytes);
    }
    row.storedSize = layer.size;
    row.points = layer.points;
    row.crsText = layer.crs;
    row.modified = layer.modified;
    row.value2 = layer.id;
    row.value3 = layer.project;
    return row;
}

LoadFlag LoadFlagOf(const CloudRow& row) {
    return LoadFlagFor(row.loadable, row.findings, row.place);
}

void TakeRemote(CloudRow& row, std::shared_ptr<const RemoteLas> remote) {
    row.remote = std::move(remote);
    row.crs = row.remote != nullptr && row.remote->row.loadable ? row.remote->row.crs : nullptr;
}

std::optional<std::int64_t> ApplyCloudRules(std::vector<CloudRow>& rows, std::span<const std::size_t> order,
                                            std::int64_t now) {
    TakenNames names;
    std::optional<std::int64_t> next;
    for (const std::size_t index : order) {
        CloudRow& row = rows[index];
        row.findings.clear();
        names.Judge(row);
        AddRemote(row);
        AddExpiry(row, now);
        std::ranges::stable_sort(row.findings, std::ranges::greater(), &Finding::severity);
        row.summary = row.findings.empty() ? std::wstring() : row.findings.front().text;
        if (const auto change = NextChange(row, now); change && (!next || *change < *next)) {
            next = change;
        }
    }
    return next;
}

void StoreCloudRow(const CloudRow& row, AddFilesParams& record) {
    const UrlMember member = UrlMemberOf(row.kind);
    if (row.name.empty() || row.url.empty() || member == nullptr) {
        return;
    }
    (record.*member).try_emplace(row.name, row.url);
    if (member == &AddFilesParams::cloudLasLayers) {
        record.cloudLasLayerValues2.try_emplace(row.name, row.value2);
        record.cloudLasLayerValues3.try_emplace(row.name, row.value3);
    }
}

void StoreCloudRows(std::span<const CloudRow> rows, AddFilesParams& record) {
    for (const CloudRow& row : rows) {
        StoreCloudRow(row, record);
    }
}

std::vector<std::wstring> UrlNotes(const std::wstring& url, std::int64_t now) {
    struct Oddity {
        const wchar_t* characters;
        StringId text;
    };
    constexpr Oddity kOddities[] = {{L"\r\n\u2028\u2029", text::kCloudUrlLineBreaks},
                                    {L" \t\u00A0", text::kCloudUrlBlanks},
                                    {L"\"'\u201C\u201D\u201E", text::kCloudUrlQuotes},
                                    {L"<>", text::kCloudUrlBrackets}};
    std::vector<std::wstring> notes;
    if (url.empty()) {
        return notes;
    }
    CloudRow row;
    row.expiresMs = UrlExpiryMs(url);
    AddExpiry(row, now);
    if (!row.findings.empty()) {
        notes.push_back(row.findings.front().text);
    } else if (row.expiresMs) {
        notes.push_back(FormatText(Text(text::kCloudLinkExpires), {UtcTimeText(*row.expiresMs)}));
    } else {
        notes.push_back(Text(text::kCloudLinkHasNoEnd));
    }
    const std::wstring upper = ToUpper(std::wstring_view(url).substr(0, 8));
    if (!upper.starts_with(L"HTTPS://") && !upper.starts_with(L"HTTP://")) {
        notes.push_back(Text(text::kCloudUrlScheme));
    }
    for (const Oddity& oddity : kOddities) {
        if (url.find_first_of(oddity.characters) != std::wstring::npos) {
            notes.push_back(Text(oddity.text));
        }
    }
    return notes;
}

std::int64_t CurrentTimeMs() {
    using namespace std::chrono;
    return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
}

}  // namespace orvex
