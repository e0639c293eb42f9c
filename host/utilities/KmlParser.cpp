#include "host/utilities/KmlParser.h"

#include <expat.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <exception>
#include <map>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "host/utilities/KmlCoordinates.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr int kBufferSize = 65536;
constexpr std::size_t kMostDepth = 256;
constexpr std::size_t kMostOfName = 1000;
constexpr std::size_t kMostOfElement = 40;  // longer names are of no known element

// Expat keeps a tag, comment or declaration until its end, and searches it from its start with every buffer.
constexpr std::uint64_t kMostOfToken = std::uint64_t{4} << 20U;
constexpr std::uint64_t kMostWithoutFeature = std::uint64_t{64} << 20U;

using Parser = std::unique_ptr<std::remove_pointer_t<XML_Parser>, decltype(&XML_ParserFree)>;

template <std::size_t N>
bool IsOneOf(std::string_view name, const std::array<std::string_view, N>& names) {
    return std::ranges::find(names, name) != names.end();
}

constexpr std::array<std::string_view, 2> kContainers{"Document", "Folder"};
constexpr std::array<std::string_view, 2> kCounted{"Placemark", "GroundOverlay"};
constexpr std::array<std::string_view, 4> kNotCounted{"PhotoOverlay", "ScreenOverlay", "Tour", "NetworkLink"};
constexpr std::array<std::string_view, 4> kSides{"west", "south", "east", "north"};

bool IsFeature(std::string_view name) {
    return IsOneOf(name, kContainers) || IsOneOf(name, kCounted) || IsOneOf(name, kNotCounted);
}

/// Name of an element without its namespace's prefix.
std::string_view LocalName(std::string_view name) {
    return name.substr(name.rfind(':') + 1);
}

std::string Trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(kBlanks);
    return std::string(first == std::string_view::npos
                           ? std::string_view()
                           : text.substr(first, text.find_last_not_of(kBlanks) + 1 - first));
}

std::optional<double> Number(const std::string& text) {
    const std::string trimmed = Trimmed(text);
    double value = 0;
    const auto parsed = std::from_chars(trimmed.data(), trimmed.data() + trimmed.size(), value);
    return parsed.ec == std::errc() ? std::optional(value) : std::nullopt;
}

class KmlDocument {
  public:
    KmlDocument(std::string fallbackName, XML_Parser parser)
        : parser_(parser), fallbackName_(std::move(fallbackName)) {}

    void Start(std::string_view name);
    void End();
    void Text(std::string_view text);

    /// Throws LDataError if the bytes passed to the parser since the last progress are too many.
    void RequireProgress(std::uint64_t passed) const;
    bool HasElements() const { return hasElements_; }
    FeatureInfo Finish();

  private:
    struct Container {
        std::string layer;      ///< empty until it has a name
        std::size_t depth = 0;  ///< of its element
        std::size_t features = 0;
        bool isRoot = false;
    };

    std::string_view Parent(std::size_t above = 1) const;
    void StartFeature(std::string_view name);
    void CountFeature();
    std::string Unique(const std::string& name);
    void EndContainerName();
    void EndNumber(std::string_view name);
    void EndBox();

    const XML_Parser parser_;
    const std::string fallbackName_;
    FeatureInfo info_;
    KmlCoordinates coordinates_{[this](double x, double y) { info_.tally.Extend(x, y); }};
    std::vector<std::string> path_;  ///< names of the open elements
    std::vector<Container> containers_;
    std::size_t feature_ = 0;  ///< depth of the feature that is read; 0 if none
    std::string text_;
    bool keepsText_ = false;
    bool isInCoordinates_ = false;
    bool hasElements_ = false;
    std::array<std::optional<double>, 4> box_{};
    std::optional<double> longitude_;
    std::optional<double> latitude_;
    std::map<std::string, std::size_t, std::less<>> names_;  ///< times that a name was given
    std::map<std::string, std::uint64_t, std::less<>> notCounted_;
    std::uint64_t progress_ = 0;  ///< offset of the last feature
};

std::string_view KmlDocument::Parent(std::size_t above) const {
    return path_.size() > above ? std::string_view(path_[path_.size() - 1 - above]) : std::string_view();
}

void KmlDocument::Start(std::string_view name) {
    if (path_.size() == kMostDepth) {
        throw LDataError(orvex::Text(text::kKmlTooDeep));
    }
    path_.emplace_back(name.substr(0, kMostOfElement));
    if (!hasElements_ && name != "kml" && !IsFeature(name)) {
        throw LDataError(FormatText(orvex::Text(text::kFeatureOtherContent), {L"KML"}));
    }
    hasElements_ = true;
    text_.clear();
    keepsText_ = false;
    if (feature_ == 0 && IsFeature(name)) {
        return StartFeature(name);
    }
    if (feature_ == 0) {
        keepsText_ = name == "name" && IsOneOf(Parent(), kContainers);
        return;
    }
    isInCoordinates_ = name == "coordinates" || name == "coord";
    if (isInCoordinates_) {
        coordinates_.Start(name == "coord" ? KmlCoordinates::Form::OneTuple : KmlCoordinates::Form::Tuples);
    }
    keepsText_ = (Parent() == "LatLonBox" && IsOneOf(name, kSides)) || Parent() == "Location";
}

void KmlDocument::StartFeature(std::string_view name) {
    const std::size_t index = containers_.empty() ? 0 : containers_.back().features++;
    if (IsOneOf(name, kContainers)) {
        const bool isRoot = containers_.empty();
        containers_.push_back(
            {isRoot ? fallbackName_ : fmt::format("Layer{}", index), path_.size(), 0, isRoot});
        return;
    }
    feature_ = path_.size();
    if (IsOneOf(name, kCounted)) {
        CountFeature();
    } else {
        ++notCounted_[std::string(name)];
    }
}

void KmlDocument::CountFeature() {
    info_.tally.Count(containers_.empty() ? fallbackName_ : containers_.back().layer);
    progress_ = static_cast<std::uint64_t>(std::max<XML_Index>(XML_GetCurrentByteIndex(parser_), 0));
}

std::string KmlDocument::Unique(const std::string& name) {
    const auto known = names_.find(name);
    if (known == names_.end()) {
        if (names_.size() == FeatureTally::kMostLayers) {
            throw LDataError(
                FormatText(orvex::Text(text::kFeatureTooManyLayers), {FeatureTally::kMostLayers}));
        }
        names_.emplace(name, 1);
        return name;
    }
    return fmt::format("{} (#{})", name, ++known->second);
}

void KmlDocument::EndContainerName() {
    // A name after features comes too late for them.
    if (const std::string name = Trimmed(text_); !name.empty()) {
        containers_.back().layer = Unique(name);
    }
}

void KmlDocument::EndNumber(std::string_view name) {
    const std::optional<double> value = Number(text_);
    if (const auto* const side = std::ranges::find(kSides, name); side != kSides.end()) {
        box_[static_cast<std::size_t>(side - kSides.begin())] = value;
    } else if (name == "longitude") {
        longitude_ = value;
    } else if (name == "latitude") {
        latitude_ = value;
    }
}

void KmlDocument::EndBox() {
    if (std::ranges::all_of(box_, [](const auto& side) { return side.has_value(); })) {
        info_.tally.Extend(*box_[0], *box_[1]);
        info_.tally.Extend(*box_[2], *box_[3]);
    }
    box_ = {};
}

void KmlDocument::End() {
    const std::string name = path_.back();
    const bool isCounted = feature_ != 0 && IsOneOf(path_[feature_ - 1], kCounted);
    if (isInCoordinates_) {
        coordinates_.Finish();
        isInCoordinates_ = false;
    } else if (keepsText_ && feature_ == 0) {
        EndContainerName();
    } else if (keepsText_) {
        EndNumber(name);
    } else if (isCounted && name == "LatLonBox") {
        EndBox();
    } else if (isCounted && name == "Location" && longitude_ && latitude_) {
        info_.tally.Extend(*longitude_, *latitude_);
    }
    keepsText_ = false;
    if (path_.size() == feature_) {
        feature_ = 0;
    } else if (!containers_.empty() && path_.size() == containers_.back().depth) {
        containers_.pop_back();
    }
    path_.pop_back();
}

void KmlDocument::Text(std::string_view text) {
    if (isInCoordinates_ && IsOneOf(path_[feature_ - 1], kCounted)) {
        coordinates_.Add(text);
        progress_ = static_cast<std::uint64_t>(std::max<XML_Index>(XML_GetCurrentByteIndex(parser_), 0));
    } else if (keepsText_) {
        text_.append(text.substr(0, kMostOfName - std::min(kMostOfName, text_.size())));
    }
}

void KmlDocument::RequireProgress(std::uint64_t passed) const {
    const auto parsed = static_cast<std::uint64_t>(std::max<XML_Index>(XML_GetCurrentByteIndex(parser_), 0));
    if (passed > parsed + kMostOfToken || passed > progress_ + kMostWithoutFeature) {
        throw LDataError(orvex::Text(text::kKmlWithoutFeatures));
    }
}

FeatureInfo KmlDocument::Finish() {
    if (const auto links = notCounted_.find("NetworkLink"); links != notCounted_.end()) {
        info_.leftOut.push_back(FormatText(orvex::Text(text::kKmlNetworkLinks), {links->second}));
        notCounted_.erase(links);
    }
    std::wstring kinds;
    for (const auto& [kind, count] : notCounted_) {
        kinds += (kinds.empty() ? L"" : L", ") + FromUtf8(kind) + L" (" + GroupedNumber(count) + L")";
    }
    if (!kinds.empty()) {
        info_.leftOut.push_back(FormatText(orvex::Text(text::kFeatureKindsLeftOut), {kinds}));
    }
    if (coordinates_.Unreadable() != 0) {
        info_.leftOut.push_back(
            FormatText(orvex::Text(text::kKmlBadCoordinates), {coordinates_.Unreadable()}));
    }
    return std::move(info_);
}

/// What Expat's functions get: no exception may pass through its C code.
struct Handling {
    XML_Parser parser;
    KmlDocument document;
    std::exception_ptr error;

    template <typename Function>
    static void Call(void* data, const Function& function) noexcept {
        auto& handling = *static_cast<Handling*>(data);
        // What was parsed together still comes after a stop.
        if (handling.error) {
            return;
        }
        try {
            function(handling.document);
        } catch (...) {
            handling.error = std::current_exception();
            XML_StopParser(handling.parser, XML_FALSE);
        }
    }
};

void SetHandlers(XML_Parser parser, Handling& handling) {
    XML_SetUserData(parser, &handling);
    XML_SetElementHandler(
        parser,
        [](void* data, const XML_Char* name, const XML_Char**) {
            Handling::Call(data, [&](KmlDocument& document) { document.Start(LocalName(name)); });
        },
        [](void* data, const XML_Char*) {
            Handling::Call(data, [](KmlDocument& document) { document.End(); });
        });
    XML_SetCharacterDataHandler(parser, [](void* data, const XML_Char* text, int length) {
        Handling::Call(data, [&](KmlDocument& document) {
            document.Text(std::string_view(text, static_cast<std::size_t>(length)));
        });
    });
    // With this handler Expat expands no entity that the file declares; external ones it does not read
    // anyway.
    XML_SetDefaultHandler(parser, [](void*, const XML_Char*, int) {});
}

[[noreturn]] void ThrowError(XML_Parser parser, const Handling& handling, bool isLast) {
    const XML_Error error = XML_GetErrorCode(parser);
    if (handling.error) {
        std::rethrow_exception(handling.error);
    }
    if (error == XML_ERROR_NO_MEMORY) {
        throw std::bad_alloc();
    }
    if (error == XML_ERROR_UNKNOWN_ENCODING) {
        throw LDataError(Text(text::kKmlCharacters));
    }
    if (!handling.document.HasElements()) {
        throw LDataError(FormatText(Text(text::kFeatureOtherContent), {L"KML"}));
    }
    if (isLast && (error == XML_ERROR_NO_ELEMENTS || error == XML_ERROR_UNCLOSED_TOKEN)) {
        throw LDataError(Text(text::kKmlIncomplete));
    }
    throw LDataError(
        FormatText(Text(text::kKmlDamaged), {static_cast<std::uint64_t>(XML_GetCurrentLineNumber(parser))}));
}

void ParseAll(XML_Parser parser, const KmlBytes& source, Handling& handling) {
    std::uint64_t passed = 0;
    for (bool isLast = false; !isLast;) {
        void* const buffer = XML_GetBuffer(parser, kBufferSize);
        if (buffer == nullptr) {
            throw std::bad_alloc();
        }
        const std::size_t read = source(std::span(static_cast<char*>(buffer), kBufferSize));
        isLast = read == 0;
        passed += read;
        if (XML_ParseBuffer(parser, static_cast<int>(read), isLast ? 1 : 0) != XML_STATUS_OK) {
            ThrowError(parser, handling, isLast);
        }
        handling.document.RequireProgress(passed);
    }
}

}  // namespace

FeatureInfo ParseKml(const KmlBytes& source, const std::string& fallbackName) {
    const Parser parser(XML_ParserCreate(nullptr), &XML_ParserFree);
    if (!parser) {
        throw std::bad_alloc();
    }
    Handling handling{parser.get(), KmlDocument(fallbackName, parser.get()), nullptr};
    SetHandlers(parser.get(), handling);
    ParseAll(parser.get(), source, handling);
    return handling.document.Finish();
}

}  // namespace orvex
