#include "host/utilities/KmzArchive.h"

#include <cpl_vsi.h>
#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "crs/GdalAccess.h"
#include "host/utilities/FileStart.h"
#include "host/utilities/KmlParser.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/GdalErrorScope.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {
namespace {

// GDAL keeps the list of an archive's entries.
constexpr std::uint64_t kMostEntries = 10'000;

// A document deflates to about a tenth; what is a hundred times larger than its archive is made for that.
constexpr std::uint64_t kMostUnpacked = std::uint64_t{64} << 20U;
constexpr std::uint64_t kMostTimes = 100;

struct CloseVsi {
    void operator()(VSILFILE* file) const noexcept { VSIFCloseL(file); }
};
using VsiFile = std::unique_ptr<VSILFILE, CloseVsi>;

struct CloseVsiDir {
    void operator()(VSIDIR* folder) const noexcept { VSICloseDir(folder); }
};
using VsiFolder = std::unique_ptr<VSIDIR, CloseVsiDir>;

std::uint64_t LittleEndian(std::string_view bytes, std::size_t at, std::size_t length) {
    std::uint64_t value = 0;
    for (std::size_t i = length; i-- > 0;) {
        value = value * 256 + static_cast<unsigned char>(bytes[at + i]);
    }
    return value;
}

/// Throws if the end of the archive, which tells the number of its entries, is missing or tells too many.
void RequireArchive(const std::wstring& path) {
    constexpr std::size_t kRecord = 22;
    constexpr std::size_t kEntries = 10;
    constexpr std::uint64_t kMostOfEnd = kRecord + 65535;  // with a comment
    const std::uint64_t size = FileSizeOf(path).value_or(0);
    const std::string end = ReadPart(path, size - std::min(size, kMostOfEnd),
                                     static_cast<std::size_t>(std::min(size, kMostOfEnd)));
    const std::size_t record = end.rfind("PK\5\6");
    if (record == std::string::npos || record + kRecord > end.size()) {
        throw LDataError(Text(text::kKmzIncomplete));
    }
    if (LittleEndian(end, record + kEntries, 2) > kMostEntries) {
        throw LDataError(FormatText(Text(text::kKmzTooManyEntries), {kMostEntries}));
    }
}

bool HasExtension(std::string_view name, const wchar_t* extension) {
    return UpperExtensionOf(FromUtf8(name)) == extension;
}

struct Contents {
    std::string document;      ///< name of the main document
    std::uint64_t others = 0;  ///< further KML and KMZ files
};

Contents List(const std::string& archive) {
    const VsiFolder folder(VSIOpenDir(archive.c_str(), -1, nullptr));
    if (!folder) {
        throw LDataError(Text(text::kKmzIncomplete));
    }
    Contents contents;
    while (const VSIDIREntry* entry = VSIGetNextDirEntry(folder.get())) {
        const std::string_view name = entry->pszName;
        // macOS adds a file of its own for each.
        const bool isKml = HasExtension(name, L".KML") && !name.starts_with("__MACOSX/");
        contents.others += isKml || HasExtension(name, L".KMZ") ? 1 : 0;
        const bool isMain = EqualNoCase(FromUtf8(name), L"doc.kml");
        if (isKml && (contents.document.empty() || isMain)) {
            contents.document = name;
        }
    }
    if (contents.document.empty()) {
        throw LDataError(Text(text::kKmzWithoutKml));
    }
    --contents.others;
    return contents;
}

/// True if the entry is encrypted. `name`: of the entry, for GDAL.
bool IsEncrypted(const std::wstring& path, const std::string& name) {
    constexpr std::size_t kHeader = 30;
    constexpr std::size_t kMostOfNames = 4096;
    char** const metadata = VSIGetFileMetadata(name.c_str(), "ZIP", nullptr);
    const char* const start = CSLFetchNameValue(metadata, "START_DATA_OFFSET");
    const std::uint64_t data = start == nullptr ? 0 : std::strtoull(start, nullptr, 10);
    CSLDestroy(metadata);
    const std::uint64_t from = data - std::min<std::uint64_t>(data, kHeader + kMostOfNames);
    const std::string bytes = ReadPart(path, from, static_cast<std::size_t>(data - from));
    const std::size_t header = bytes.rfind("PK\3\4");
    return header != std::string::npos && header + kHeader <= bytes.size() &&
           (LittleEndian(bytes, header + 6, 2) & 1U) != 0;
}

ByteSource SourceOf(VSILFILE* file, std::uint64_t most) {
    return [file, most, unpacked = std::uint64_t{0}](std::span<char> buffer) mutable {
        const std::size_t read = VSIFReadL(buffer.data(), 1, buffer.size(), file);
        unpacked += read;
        if (unpacked > most) {
            throw LDataError(FormatText(Text(text::kKmzBomb), {most >> 20U}));
        }
        return read;
    };
}

FeatureInfo ReadDocument(const std::wstring& path, const std::string& name, const std::string& fallbackName) {
    const GdalErrorScope errors;
    const VsiFile file(VSIFOpenL(name.c_str(), "rb"));
    if (IsEncrypted(path, name)) {
        throw LDataError(Text(text::kKmzEncrypted));
    }
    if (!file) {
        throw LDataError(Text(text::kKmzDamaged));
    }
    const std::uint64_t most = std::max(kMostUnpacked, kMostTimes * FileSizeOf(path).value_or(0));
    try {
        return ParseKml(SourceOf(file.get(), most), fallbackName);
    } catch (const LDataError&) {
        // What cannot be unpacked ends too early for the parser.
        if (errors.HasError()) {
            throw LDataError(Text(text::kKmzDamaged));
        }
        throw;
    }
}

}  // namespace

FeatureInfo ReadKmz(const std::wstring& path, const std::string& fallbackName) {
    RequireArchive(path);
    const GdalErrorScope ignored;
    InspectionLimits limits;
    limits.read = std::max(limits.read, 4 * FileSizeOf(path).value_or(0));
    const GdalAccess access(AbsolutePath(path), limits, [](auto, auto) { return std::wstring(); });
    const std::string archive = fmt::format("/vsizip/{{{}}}", access.Name());
    const Contents contents = List(archive);
    FeatureInfo info = ReadDocument(path, archive + "/" + contents.document, fallbackName);
    if (contents.others != 0) {
        info.leftOut.push_back(FormatText(Text(text::kKmzOthers), {contents.others}));
    }
    return info;
}

}  // namespace orvex
