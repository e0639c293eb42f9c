#pragma once
#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace orvex {

/// Vocabularies of XMP that say something about a photo's pose, whatever the spelling of their addresses.
enum class XmpVocabulary {
    Own,     ///< of this system
    Camera,  ///< of photogrammetry programs and of the makers of their drones
    Dji,
};

/// Properties of those vocabularies by their names, as UTF-8; the entries of a list are joined by commas.
using XmpProperties = std::map<std::pair<XmpVocabulary, std::string>, std::string>;

/// Reads a packet. What comes before an error is kept, since cameras write packets that are cut off.
/// Documents with entities of their own, which no packet has, and elements nested too deeply are not read on.
XmpProperties ReadXmpPacket(std::string_view packet);

}  // namespace orvex
