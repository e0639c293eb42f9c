// XMP is RDF in XML: a property is an attribute of rdf:Description or an element below it, of which a list
// holds the values in rdf:li.
#include "host/utilities/XmpPacket.h"

#include <expat.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <optional>
#include <vector>

namespace orvex {
namespace {

constexpr char kSeparator = '\n';  // no address holds one
constexpr std::size_t kMostDepth = 64;
constexpr std::size_t kMostProperties = 512;
constexpr std::size_t kMostValue = std::size_t{64} << 10U;
constexpr std::string_view kRdf = "http://www.w3.org/1999/02/22-rdf-syntax-ns#";

struct Address {
    std::string_view ending;  ///< of the address in lower case, without a slash at its end
    XmpVocabulary vocabulary;
    bool isWhole = false;  ///< the address has nothing before it
};
constexpr Address kAddresses[] = {
    {"orvex.com/photo/1.0", XmpVocabulary::Own}, {"/camera/1.0", XmpVocabulary::Camera},
    {"/sensefly/1.0", XmpVocabulary::Camera},    {"camera", XmpVocabulary::Camera, true},
    {"sensefly", XmpVocabulary::Camera, true},   {"/drone-dji/1.0", XmpVocabulary::Dji},
};

std::optional<XmpVocabulary> VocabularyOf(std::string_view address) {
    while (address.ends_with('/')) {
        address.remove_suffix(1);
    }
    std::string lower(address);
    std::ranges::transform(lower, lower.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    for (const Address& known : kAddresses) {
        if (known.isWhole ? lower == known.ending : lower.ends_with(known.ending)) {
            return known.vocabulary;
        }
    }
    return std::nullopt;
}

/// A name as Expat gives it: address, separator, local name.
std::pair<std::string_view, std::string_view> Parts(std::string_view name) {
    const std::size_t at = name.find(kSeparator);
    return at == std::string_view::npos ? std::pair(std::string_view(), name)
                                        : std::pair(name.substr(0, at), name.substr(at + 1));
}

std::string Trimmed(std::string_view text) {
    constexpr std::string_view kBlanks(" \t\r\n\0", 5);
    const std::size_t first = text.find_first_not_of(kBlanks);
    return first == std::string_view::npos
               ? std::string()
               : std::string(text.substr(first, text.find_last_not_of(kBlanks) - first + 1));
}

class PacketReader {
  public:
    XmpProperties Read(std::string_view packet) {
        const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(
            XML_ParserCreateNS(nullptr, kSeparator), XML_ParserFree);
        if (!parser || packet.size() > std::numeric_limits<int>::max()) {
            return {};
        }
        parser_ = parser.get();
        XML_SetUserData(parser_, this);
        XML_SetElementHandler(parser_, OnStart, OnEnd);
        XML_SetCharacterDataHandler(parser_, OnText);
        XML_SetStartDoctypeDeclHandler(parser_, OnDoctype);
        XML_Parse(parser_, packet.data(), static_cast<int>(packet.size()), XML_TRUE);
        return std::move(properties_);
    }

  private:
    using Key = XmpProperties::key_type;

    // An exception must not pass through Expat, which is C: it can only be one for lack of memory.
    template <typename Step>
    static void Guarded(void* self, Step step) noexcept {
        auto& reader = *static_cast<PacketReader*>(self);
        try {
            step(reader);
        } catch (...) {
            XML_StopParser(reader.parser_, XML_FALSE);
        }
    }
    static void XMLCALL OnStart(void* self, const XML_Char* name, const XML_Char** attributes) {
        Guarded(self, [&](PacketReader& reader) { reader.Start(name, attributes); });
    }
    static void XMLCALL OnEnd(void* self, const XML_Char*) {
        Guarded(self, [](PacketReader& reader) { reader.End(); });
    }
    static void XMLCALL OnText(void* self, const XML_Char* text, int length) {
        Guarded(self, [&](PacketReader& reader) {
            if (reader.key_ && reader.value_.size() < kMostValue) {
                reader.value_.append(text, static_cast<std::size_t>(length));
            }
        });
    }
    static void XMLCALL OnDoctype(void* self, const XML_Char*, const XML_Char*, const XML_Char*, int) {
        Guarded(self, [](PacketReader& reader) { XML_StopParser(reader.parser_, XML_FALSE); });
    }

    static std::optional<Key> KeyOf(std::string_view name) {
        const auto [address, local] = Parts(name);
        const std::optional<XmpVocabulary> vocabulary = VocabularyOf(address);
        return vocabulary ? std::optional(Key(*vocabulary, std::string(local))) : std::nullopt;
    }

    void Add(Key key, std::string_view value) {
        std::string trimmed = Trimmed(value);
        if (!trimmed.empty() && properties_.size() < kMostProperties) {
            properties_.try_emplace(std::move(key), std::move(trimmed));
        }
    }

    void Start(std::string_view name, const XML_Char** attributes) {
        if (++depth_ > kMostDepth) {
            XML_StopParser(parser_, XML_FALSE);
            return;
        }
        const auto [address, local] = Parts(name);
        if (key_) {
            value_ += address == kRdf && local == "li" && !Trimmed(value_).empty() ? "," : "";
        } else if (address == kRdf && local == "Description") {
            for (; *attributes != nullptr; attributes += 2) {
                if (std::optional<Key> key = KeyOf(attributes[0])) {
                    Add(*std::move(key), attributes[1]);
                }
            }
        } else if ((key_ = KeyOf(name))) {
            keyDepth_ = depth_;
            value_.clear();
        }
    }

    void End() {
        if (key_ && depth_ == keyDepth_) {
            Add(*std::move(key_), value_);
            key_.reset();
        }
        --depth_;
    }

    XML_Parser parser_ = nullptr;
    XmpProperties properties_;
    std::optional<Key> key_;  ///< of the property that is being read
    std::string value_;
    std::size_t depth_ = 0;
    std::size_t keyDepth_ = 0;
};

}  // namespace

XmpProperties ReadXmpPacket(std::string_view packet) {
    // Some programs put a name of their own before it ("xml:XMP="); a packet in UTF-16 has a byte order mark.
    if (!packet.starts_with("\xFE\xFF") && !packet.starts_with("\xFF\xFE")) {
        packet.remove_prefix(std::min(packet.find('<'), packet.size()));
    }
    // Cameras pad packets with zero bytes.
    while (packet.ends_with('\0')) {
        packet.remove_suffix(1);
    }
    return PacketReader().Read(packet);
}

}  // namespace orvex
