#include "host/utilities/KmlReader.h"

#include <string_view>

#include "host/utilities/CadReader.h"
#include "host/utilities/FileStart.h"
#include "host/utilities/KmlParser.h"
#include "host/utilities/KmzArchive.h"
#include "support/LDataError.h"
#include "support/MappedFile.h"
#include "support/Text.h"

namespace orvex {
namespace {

FeatureInfo ReadPlain(const std::wstring& path, const std::string& fallbackName) {
    MappedFile file;
    if (file.Open(path, true) != 0) {
        throw LDataError(Text(text::kFileOpenRefused));
    }
    std::uint64_t position = 0;
    return ParseKml(
        [&](std::span<char> buffer) {
            std::size_t read = 0;
            if (file.ReadAt(position, std::as_writable_bytes(buffer), read) != 0) {
                throw LDataError(Text(text::kFileOpenRefused));
            }
            position += read;
            return read;
        },
        fallbackName);
}

/// The file's name without its extension.
std::string NameOf(const std::wstring& path) {
    return ToUtf8(WithExtension(FileNameOf(path), {}));
}

}  // namespace

FeatureInfo ReadKml(const std::wstring& path) {
    PrepareGdalReading();
    // Programs read both by their content.
    const bool isArchive = ReadStart(path).starts_with("PK");
    FeatureInfo info = isArchive ? ReadKmz(path, NameOf(path)) : ReadPlain(path, NameOf(path));
    if (info.tally.Features() == 0) {
        throw LDataError(info.leftOut.empty() ? Text(text::kKmlNoFeatures)
                                              : Text(text::kKmlNoFeatures) + L" " + info.leftOut.front());
    }
    return info;
}

}  // namespace orvex
