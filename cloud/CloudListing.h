#pragma once
// Listings of the layers of a cloud project, as the account's service gives them (docs/cloud-account.md).
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvex {

/// A layer of a project. Texts that are shown hold no control characters; one that the listing lacks reads
/// "Unknown".
struct CloudLayer {
    std::wstring name;
    std::wstring type;
    std::wstring wkt;       ///< of the coordinate reference system
    std::wstring size;      ///< in GiB, "0.125"
    std::wstring points;    ///< number of points, as the listing has it
    std::wstring crs;       ///< name of the coordinate reference system
    std::wstring modified;  ///< as the listing has it
    std::wstring url;       ///< as the listing has it; empty if lacking, endless, or with control characters
    std::wstring id;        ///< the same for the identifier of the layer
    std::wstring project;   ///< the same for that of the project
    std::optional<std::uint64_t> bytes;  ///< nullopt unless it is an unsigned 64-bit integer
};

struct CloudListingPage {
    std::vector<CloudLayer> layers;
    std::string next;  ///< the page that follows; empty after the last
};

/// Reads one page of a listing. Of a key that is there twice the first counts; elements of the list that are
/// no objects are left out. Throws the JSON reader's own error if the text is malformed, and LDataError if it
/// is larger or more deeply nested than a page can be, or no listing. Takes a few times the memory of the
/// text.
CloudListingPage ParseProjectFiles(const std::string& json);

/// True for the projects that the service keeps for its own cycle. `name`: UTF-8.
bool IsCycleArchive(std::string_view name);

/// UTF-8 from the service as it can be shown: blanks in place of control characters and of those that turn
/// the direction of writing, and not endlessly long.
std::wstring ShownCloudText(std::string_view utf8);

/// Bytes in GiB.
double Gibibytes(std::uint64_t bytes);

/// Format of a number of GiB.
inline constexpr const wchar_t* kGibibytesFormat = L"%.3lf";

}  // namespace orvex
