#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "crs/CrsDescription.h"
#include "crs/LayerAssignment.h"
#include "orvexcommon/AddFilesParams.h"
#include "support/Finding.h"

namespace orvex {

struct CloudLayer;
struct RemoteLas;

// Kinds of rows, as their cell says.
inline constexpr const wchar_t* kPresignedUrlKind = L"[ Pre-Signed URL ]";
inline constexpr const wchar_t* kOrvexLasUrlKind = L"[ OrvexLAS URL ]";
inline constexpr const wchar_t* kPackageUrlKind = L"[ Package URL ]";
inline constexpr const wchar_t* kPackageFileKind = L"[ Package File ]";

/// What is known of a row beside what its file says. None of it keeps a row from the record but for a name or
/// a URL that is missing.
namespace cloud_finding {
using enum FindingSeverity;
inline constexpr FindingKind kExpired{"link-expired", Warning, text::kCloudLinkExpired, {.member = "/path"}};
inline constexpr FindingKind kExpiresSoon{
    "link-expires-soon", Warning, text::kCloudLinkExpiresSoon, {.member = "/path"}};
inline constexpr FindingKind kDuplicateName{"duplicate-name", Warning, text::kCloudDuplicateName};
inline constexpr FindingKind kNoName{"no-name", Warning, text::kCloudNoName};
inline constexpr FindingKind kNoUrl{"no-url", Warning, text::kCloudNoUrl};
inline constexpr FindingKind kNotRead{"remote-not-read", Warning, StringId{}};  // the reason
inline constexpr FindingKind kUnusable{"remote-unusable", Error, StringId{}};   // the reason
}  // namespace cloud_finding

/// One layer in the cloud as the grid and the details pane show it.
struct CloudRow {
    std::wstring name;
    std::wstring kind;
    std::optional<double> sizeGib;  ///< size as a number
    std::wstring storedSize;        ///< the same as the browser shows it
    std::wstring points, crsText, modified;
    std::wstring url;                         ///< with its signature: for the record only, never shown
    std::wstring value2, value3;              ///< of the layer and of its project, for the record
    std::optional<std::int64_t> expiresMs;    ///< end of the link, milliseconds since 1970-01-01 UTC
    std::shared_ptr<const RemoteLas> remote;  ///< from a look inside; null: not looked into

    std::wstring path;              ///< the URL as it may be shown
    bool loadable = true;           ///< always: whatever is odd, the record gets the row
    std::wstring summary;           ///< the first finding; empty if there is none
    std::vector<Finding> findings;  ///< set by ApplyCloudRules, worst first
    CrsPtr crs;                     ///< of the file; null: not known
    LayerPlace place;               ///< unused: the host decides
};

/// Row of a URL that the user has entered.
CloudRow PresignedRow(std::wstring url);
/// Row of a layer that was picked in the browser.
CloudRow BrowsedRow(const CloudLayer& layer);

LoadFlag LoadFlagOf(const CloudRow& row);

/// Takes what a look inside has found. ApplyCloudRules must follow.
void TakeRemote(CloudRow& row, std::shared_ptr<const RemoteLas> remote);

/// Finds what is odd about the rows. `order`: their indices in the order in which they go into the record;
/// `now`: milliseconds since 1970-01-01 UTC. Returns the next time at which a link changes its state; nullopt
/// if none does.
std::optional<std::int64_t> ApplyCloudRules(std::vector<CloudRow>& rows, std::span<const std::size_t> order,
                                            std::int64_t now);

/// Writes a row into the record, unless its name or URL is empty, its name is taken there already, or its
/// kind (compared ignoring letter case) is that of a package or unknown.
void StoreCloudRow(const CloudRow& row, AddFilesParams& record);
/// The same for all of `rows`, in their order.
void StoreCloudRows(std::span<const CloudRow> rows, AddFilesParams& record);

/// Everything worth knowing about a URL that is being entered, in sentences: when it expires, and what is odd
/// about it. Never the URL itself. Empty for an empty one.
std::vector<std::wstring> UrlNotes(const std::wstring& url, std::int64_t now);

/// Milliseconds since 1970-01-01 UTC.
std::int64_t CurrentTimeMs();

}  // namespace orvex
