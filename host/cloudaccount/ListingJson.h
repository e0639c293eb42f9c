#pragma once
// Listings: {"projects": [...]} and {"layers": [...]}, from a server or a file. `source` is the host or the
// file that failures name.
#include <QUrl>
#include <string>
#include <string_view>
#include <vector>

#include "host/cloudaccount/CloudTexts.h"
#include "orvexcommon/CloudAccount.h"

namespace orvex::cloud {

/// Projects of a page.
inline constexpr int kPageLength = 1000;

/// Reads a page of projects into `projects` and `next`. Projects without an id, or with one of more than
/// 4 KiB, are left out; one without a name has its id for one. Throws CloudError.
void ReadProjects(std::string_view json, const std::wstring& source, ArchivingProjectList& list);

/// The project that an element of the array describes; its id is empty if it has none. `place`: offset of the
/// element in the source, for the message of the CloudError that it throws.
ArchivingProject ReadProject(std::string_view json, const std::wstring& source, std::uint64_t place);

/// The text is no JSON.
class MalformedListing final : public CloudError {
    using CloudError::CloudError;
};

/// A page of layers in which relative URLs are absolute, written anew. Of a text that is no JSON, AsNoJson.
/// Throws CloudError if it is nested too deeply, or has too many values or a "next" of more than 4 KiB. A URL
/// that is neither a server's nor below a folder's `base` is emptied.
std::string WithAbsoluteUrls(const std::string& json, const std::wstring& source, const QUrl& base);

/// The same of one layer.
std::string LayerWithAbsoluteUrl(std::string_view json, const std::wstring& source, const QUrl& base);

/// A text for the reader of the page, who says what is wrong with it: nobody takes it for JSON, and so for
/// URLs that have been looked at.
std::string AsNoJson(std::string_view json);

/// A part of a listing's array.
struct ListingPart {
    struct Element {
        std::size_t at = 0;  ///< offset in the text
        std::string_view json;
    };
    std::vector<Element> elements;  ///< those that are in the text completely
    std::size_t end = 0;            ///< offset behind the last of them
    bool isLast = false;            ///< the array ends there
};

/// Splits elements of the array named `key`, at most `most` of them. `place`: offset of `text` in its file;
/// 0: it starts with the listing's object, else between two elements. `isWhole`: the file ends where the text
/// does. Linear, without recursion. Throws CloudError, MalformedListing if no element can be split off.
ListingPart SplitListing(std::string_view text, std::string_view key, std::uint64_t place, bool isWhole,
                         std::size_t most, const std::wstring& source);

}  // namespace orvex::cloud
