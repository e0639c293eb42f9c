#include "host/cloudaccount/ListingJson.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "support/Format.h"
#include "support/JsonLimits.h"

namespace orvex::cloud {
namespace {

using Json = nlohmann::ordered_json;

// Ids and names of pages are sent back in addresses, of which servers take some KiB.
constexpr std::size_t kLongestName = 4096;

/// `place`: from 1.
[[noreturn]] void ThrowMalformed(const std::wstring& source, std::uint64_t place) {
    throw MalformedListing(CloudStatus::BadAnswer,
                           FormatText(Text(text::kCloudListMalformed), {source, place}));
}

void RefuseExcess(std::string_view json, const std::wstring& source) {
    const JsonExcess excess = ExcessOf(json);
    if (excess == JsonExcess::Depth) {
        throw CloudError(CloudStatus::BadAnswer, FormatText(Text(text::kCloudListTooDeep), {source}));
    }
    if (excess == JsonExcess::Values) {
        throw CloudError(CloudStatus::BadAnswer,
                         FormatText(Text(text::kCloudListingTooMany), {kMostJsonValues}));
    }
}

/// `place`: offset of the text in its source.
Json Parse(std::string_view json, const std::wstring& source, std::uint64_t place) {
    RefuseExcess(json, source);
    try {
        return Json::parse(json);
    } catch (const Json::parse_error& error) {
        ThrowMalformed(source, place + error.byte);
    }
}

/// Text of a member; empty if there is none.
std::string TextOf(const Json& object, const char* key) {
    const auto member = object.is_object() ? object.find(key) : object.end();
    return object.is_object() && member != object.end() && member->is_string() ? member->get<std::string>()
                                                                               : std::string();
}

/// Name of the page that follows; empty if there is none.
std::string NextOf(const Json& listing, std::string_view json, const std::wstring& source) {
    std::string next = TextOf(listing, "next");
    if (next.size() > kLongestName) {
        ThrowMalformed(source, std::min(json.rfind("\"next\""), json.size() - 1) + 1);
    }
    return next;
}

const Json* ArrayOf(const Json& listing, const char* key) {
    const auto member = listing.is_object() ? listing.find(key) : listing.end();
    return listing.is_object() && member != listing.end() && member->is_array() ? &*member : nullptr;
}

ArchivingProject ProjectOf(const Json& json) {
    ArchivingProject project{TextOf(json, "name"), TextOf(json, "id")};
    if (project.id.size() > kLongestName) {
        project.id.clear();
    }
    if (project.name.empty()) {
        project.name = project.id;
    }
    return project;
}

/// True for files on servers, and for those below a listing's own folder. An encoded separator becomes one
/// in a path: "..%2F" leads out.
bool MayBeNamed(const QUrl& url, const QUrl& base) {
    const QByteArray folder = base.toEncoded();
    const QByteArray encoded = url.toEncoded();
    const QByteArray below = encoded.mid(folder.size()).toLower();
    const bool isInside =
        base.isLocalFile() && encoded.startsWith(folder) && !below.contains("%2f") && !below.contains("%5c");
    return url.isValid() && (url.scheme() == "https" || url.scheme() == "http" || isInside);
}

/// One that may not be named is emptied.
void MakeUrlAbsolute(Json& layer, const QUrl& base) {
    const std::string text = TextOf(layer, "url");
    const QUrl url(QString::fromStdString(text));
    const QUrl absolute = base.resolved(url);
    const bool isAllowed = url.isValid() && MayBeNamed(absolute, base);
    if (!text.empty() && (!isAllowed || url.isRelative())) {
        layer["url"] = isAllowed ? absolute.toEncoded().toStdString() : std::string();
    }
}

/// One name in another encoding does not spoil a whole page. Discarded: no JSON.
Json ParseLayers(std::string_view json, const std::wstring& source) {
    RefuseExcess(json, source);
    return Json::parse(ValidUtf8(json), nullptr, false);
}

/// Walks over JSON text without understanding more of it than brackets and strings.
class Scanner {
  public:
    Scanner(std::string_view text, std::size_t at) : text_(text), at_(at) {}

    std::size_t At() const { return at_; }
    /// The text ends within a value.
    bool IsCut() const { return isCut_; }
    char Next() {
        at_ = std::min(text_.find_first_not_of(" \t\r\n", at_), text_.size());
        return at_ < text_.size() ? text_[at_] : '\0';
    }
    bool Take(char c) {
        const bool found = Next() == c;
        at_ += found ? 1 : 0;
        return found;
    }
    /// A value of any kind, empty if the text ends within it or there is none.
    std::string_view TakeValue() {
        const char first = Next();
        const std::size_t start = at_;
        if (first == '"') {
            SkipString();
        } else if (first == '{' || first == '[') {
            SkipBrackets();
        } else {
            at_ = text_.find_first_of(",]} \t\r\n", at_);
        }
        if (at_ > text_.size()) {
            isCut_ = true;
            at_ = start;
        }
        return text_.substr(start, at_ - start);
    }

  private:
    void SkipString() {
        for (++at_; at_ < text_.size() && text_[at_] != '"'; ++at_) {
            at_ += text_[at_] == '\\' ? 1 : 0;
        }
        at_ = at_ < text_.size() ? at_ + 1 : std::string_view::npos;
    }
    void SkipBrackets() {
        std::size_t depth = 0;
        do {
            at_ = text_.find_first_of("\"[]{}", at_);
            if (at_ >= text_.size()) {
                return;
            }
            const char c = text_[at_];
            if (c == '"') {
                SkipString();
                continue;
            }
            depth += c == '[' || c == '{' ? 1 : 0;
            depth -= c == ']' || c == '}' ? 1 : 0;
            ++at_;
        } while (depth > 0 && at_ < text_.size());
        at_ = depth > 0 ? std::string_view::npos : at_;
    }

    std::string_view text_;
    std::size_t at_;
    bool isCut_ = false;
};

/// Goes to the first element of the array named `key` in an object.
void EnterArray(Scanner& scanner, std::string_view key, const std::wstring& source) {
    if (!scanner.Take('{')) {
        ThrowMalformed(source, scanner.At() + 1);
    }
    while (scanner.Next() == '"') {
        const std::string_view name = scanner.TakeValue();
        if (!scanner.Take(':')) {
            break;
        }
        if (name == "\"" + std::string(key) + "\"" && scanner.Take('[')) {
            return;
        }
        if (scanner.TakeValue().empty() || !scanner.Take(',')) {
            break;
        }
    }
    if (scanner.Next() != '}') {
        ThrowMalformed(source, scanner.At() + 1);
    }
    throw CloudError(CloudStatus::BadAnswer,
                     FormatText(Text(text::kCloudListLacks), {source, FromUtf8(key)}));
}

[[noreturn]] void ThrowWithoutElement(Scanner& scanner, std::uint64_t place, bool isWhole,
                                      const std::wstring& source) {
    if (isWhole || (!scanner.IsCut() && scanner.Next() != '\0')) {
        ThrowMalformed(source, place + scanner.At() + 1);
    }
    throw CloudError(CloudStatus::BadAnswer,
                     FormatText(Text(text::kCloudTooLarge), {source, kMostJsonBytes >> 20U}));
}

}  // namespace

void ReadProjects(std::string_view json, const std::wstring& source, ArchivingProjectList& list) {
    const Json listing = Parse(json, source, 0);
    const Json* projects = ArrayOf(listing, "projects");
    if (projects == nullptr) {
        throw CloudError(CloudStatus::BadAnswer,
                         FormatText(Text(text::kCloudListLacks), {source, L"projects"}));
    }
    list.next = NextOf(listing, json, source);
    for (const Json& element : *projects) {
        if (ArchivingProject project = ProjectOf(element); !project.id.empty()) {
            list.projects.push_back(std::move(project));
        }
    }
}

ArchivingProject ReadProject(std::string_view json, const std::wstring& source, std::uint64_t place) {
    return ProjectOf(Parse(json, source, place));
}

std::string WithAbsoluteUrls(const std::string& json, const std::wstring& source, const QUrl& base) {
    Json listing = ParseLayers(json, source);
    if (listing.is_discarded()) {
        return AsNoJson(json);
    }
    NextOf(listing, json, source);
    if (listing.is_object() && listing.contains("layers")) {
        for (Json& layer : listing["layers"]) {
            MakeUrlAbsolute(layer, base);
        }
    }
    return listing.dump();
}

std::string LayerWithAbsoluteUrl(std::string_view json, const std::wstring& source, const QUrl& base) {
    Json layer = ParseLayers(json, source);
    if (layer.is_discarded()) {
        return AsNoJson(json);
    }
    MakeUrlAbsolute(layer, base);
    return layer.dump();
}

std::string AsNoJson(std::string_view json) {
    return std::string(json) + '?';
}

ListingPart SplitListing(std::string_view text, std::string_view key, std::uint64_t place, bool isWhole,
                         std::size_t most, const std::wstring& source) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    Scanner scanner(text, place == 0 && text.starts_with(byteOrderMark) ? byteOrderMark.size() : 0);
    if (place == 0) {
        EnterArray(scanner, key, source);
    }
    ListingPart part;
    part.end = scanner.At();
    while (!(part.isLast = scanner.Take(']')) && part.elements.size() < most) {
        const bool isFirst = place == 0 && part.elements.empty();
        if ((scanner.Next() == ',') == isFirst) {
            break;
        }
        scanner.Take(',');
        scanner.Next();
        const std::size_t at = scanner.At();
        const std::string_view element = scanner.TakeValue();
        if (element.empty()) {
            break;
        }
        part.elements.push_back({at, element});
        part.end = scanner.At();
    }
    if (part.elements.empty() && !part.isLast) {
        ThrowWithoutElement(scanner, place, isWhole, source);
    }
    return part;
}

}  // namespace orvex::cloud
