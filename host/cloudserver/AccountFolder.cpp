#include "host/cloudserver/AccountFolder.h"

#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "host/cloudserver/S3Signature.h"
#include "support/Text.h"

namespace orvex {

namespace {

using Json = nlohmann::json;

constexpr std::size_t kMostListings = 8;
constexpr int kMostDepth = 32;
constexpr std::size_t kMostPageBytes = 4 << 20;  // clients refuse twice as much

/// A component of a path that stays where it is, on every system.
bool IsPlainName(std::string_view name) {
    const bool isPlain = std::ranges::none_of(name, [](char c) {
        return static_cast<unsigned char>(c) < 0x20 || c == '/' || c == '\\' || c == ':' || c == 0x7f;
    });
    return isPlain && !name.empty() && name != "." && name != ".." && name.size() <= 255;
}

/// True for a URL that has a scheme ("https:...") and thus is no path.
bool HasScheme(std::string_view url) {
    const std::size_t colon = url.find_first_of(":/?#");
    return colon != std::string_view::npos && colon > 0 && url[colon] == ':';
}

std::string TextOf(const Json& object, const char* key) {
    const auto found = object.find(key);
    return found != object.end() && found->is_string() ? found->get<std::string>() : std::string();
}

}  // namespace

struct AccountFolder::Entry {
    std::string json;  ///< the object, without its URL if that is a path
    std::string file;  ///< the URL if it is a path
    std::wstring upperName;
};

struct AccountFolder::Listing {
    std::wstring path;
    std::uint64_t size = 0;
    std::optional<FileTime> modified;
    std::vector<Entry> entries;

    void Add(Json& object) {
        const std::string url = TextOf(object, "url");
        const bool isPath = !url.empty() && !HasScheme(url);
        if (isPath) {
            object.erase("url");
        }
        entries.push_back({object.dump(-1, ' ', false, Json::error_handler_t::replace), isPath ? url : "",
                           ToUpper(FromUtf8(TextOf(object, "name")))});
    }

    /// Takes the objects of an array as they are read, so that the whole is never held as a tree.
    void Read(const char* array) {
        bool isOurs = false;
        const auto take = [&](int depth, Json::parse_event_t event, Json& value) {
            if (depth > kMostDepth) {
                throw std::runtime_error("nested too deeply");
            }
            if (depth == 1 && event == Json::parse_event_t::key) {
                isOurs = value.get_ref<const std::string&>() == array;
            }
            if (depth != 2 || event != Json::parse_event_t::object_end) {
                return true;
            }
            if (isOurs) {
                Add(value);
            }
            return false;
        };
        std::ifstream stream(ToPath(path), std::ios::binary);
        if (!stream) {
            throw std::runtime_error("cannot be opened");
        }
        const Json rest = Json::parse(stream, take);
    }
};

AccountFolder::AccountFolder(const std::wstring& folder) : folder_(CanonicalPath(folder)) {}

std::wstring AccountFolder::Find(std::string_view encodedPath) const {
    std::wstring path = folder_;
    std::size_t begin = 0;
    while (begin <= encodedPath.size()) {
        const std::size_t end = std::min(encodedPath.find('/', begin), encodedPath.size());
        const std::string name = PercentDecoded(encodedPath.substr(begin, end - begin));
        if (!IsPlainName(name)) {
            return {};
        }
        path += L'/' + FromUtf8(name);
        begin = end + 1;
    }
    path = NativePath(path);
    if (!FileExists(path)) {
        return {};
    }
    path = CanonicalPath(path);
    const bool isBelow = path.starts_with(folder_) && path.size() > folder_.size() &&
                         (IsSeparator(path[folder_.size()]) || IsSeparator(folder_.back()));
    return isBelow ? path : std::wstring();
}

AccountFolder::ListingPointer AccountFolder::Load(const std::wstring& file, const char* array) {
    // Held while a file is parsed: a second request for it waits instead of parsing it again.
    const std::lock_guard lock(mutex_);
    auto listing = std::make_shared<Listing>();
    listing->path = file;
    listing->size = FileSizeOf(file).value_or(0);
    listing->modified = LastWriteTime(file);
    const auto isCurrent = [&](const ListingPointer& other) {
        return other->path == file && other->size == listing->size && other->modified == listing->modified;
    };
    const auto known = std::ranges::find_if(listings_, isCurrent);
    if (known != listings_.end()) {
        listings_.splice(listings_.begin(), listings_, known);
        return listings_.front();
    }
    listing->Read(array);
    listings_.remove_if([&](const ListingPointer& other) { return other->path == file; });
    listings_.push_front(std::move(listing));
    if (listings_.size() > kMostListings) {
        listings_.pop_back();
    }
    return listings_.front();
}

std::string AccountFolder::Page(const Listing& listing, const char* array, const PageRequest& page,
                                const SignFile& sign) {
    std::string text = std::string("{\"") + array + "\":[";
    const std::wstring filter = ToUpper(page.filter);
    std::size_t count = 0;
    std::size_t i = page.first;
    for (; i < listing.entries.size() && count < page.limit && text.size() < kMostPageBytes; ++i) {
        const Entry& entry = listing.entries[i];
        if (entry.upperName.find(filter) == std::wstring::npos) {
            continue;
        }
        text += count++ == 0 ? "" : ",";
        text += entry.json;
        if (!entry.file.empty()) {
            text.back() = entry.json.size() > 2 ? ',' : ' ';  // in place of the object's end
            text += "\"url\":\"" + (sign ? sign(entry.file) : "") + "\"}";
        }
    }
    const std::string next = i < listing.entries.size() ? std::to_string(i) : "";
    return text + "],\"next\":\"" + next + "\"}";
}

std::optional<std::string> AccountFolder::Projects(const PageRequest& page) {
    const std::wstring file = Find("projects.json");
    return file.empty() ? std::nullopt : std::optional(Page(*Load(file, "projects"), "projects", page, {}));
}

std::optional<std::string> AccountFolder::Layers(const std::string& projectId, const PageRequest& page,
                                                 const SignFile& sign) {
    const std::wstring file =
        IsPlainName(projectId) ? Find("projects/" + PercentEncoded(projectId) + ".json") : std::wstring();
    return file.empty() ? std::nullopt : std::optional(Page(*Load(file, "layers"), "layers", page, sign));
}

}  // namespace orvex
