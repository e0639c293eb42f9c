#include "host/utilities/KmzArchive.h"

#include <cpl_vsi.h>
#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <string_view>

#include "host/utilities/FileStart.h"
#include "host/utilities/KmlParser.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/GdalAccess.h"
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

/// Table of contents of an archive.
struct Table {
    std::uint64_t offset = 0;
    std::uint64_t length = 0;
};

/// Throws if the end of the archive, which tells where its table is, is missing or tells too many entries.
Table FindTable(const std::wstring& path) {
    constexpr std::size_t kRecord = 22;
    constexpr std::uint64_t kMostOfEnd = kRecord + 65535;  // with a comment
    const std::uint64_t size = FileSizeOf(path).value_or(0);
    const std::uint64_t length = std::min(size, kMostOfEnd);
    const std::string end = ReadPart(path, size - length, static_cast<std::size_t>(length));
    const std::size_t record = end.rfind("PK\5\6");
    if (record == std::string::npos || record + kRecord > end.size()) {
        throw LDataError(Text(text::kKmzIncomplete));
    }
    if (LittleEndian(end, record + 10, 2) > kMostEntries) {
        throw LDataError(FormatText(Text(text::kKmzTooManyEntries), {kMostEntries}));
    }
    return {LittleEndian(end, record + 16, 4), LittleEndian(end, record + 12, 4)};
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

/// True if an entry is encrypted, which GDAL does not tell. `name`: of the entry.
bool IsEncrypted(const std::wstring& path, const Table& table, std::string_view name) {
    constexpr std::size_t kHeader = 46;
    constexpr std::uint64_t kMostOfTable = std::uint64_t{4} << 20U;
    const std::string bytes =
        ReadPart(path, table.offset, static_cast<std::size_t>(std::min(table.length, kMostOfTable)));
    std::size_t at = 0;
    while (at + kHeader <= bytes.size() && bytes.compare(at, 4, "PK\1\2") == 0) {
        const std::size_t length = LittleEndian(bytes, at + 28, 2);
        if (bytes.compare(at + kHeader, length, name) == 0) {
            return (LittleEndian(bytes, at + 8, 2) & 1U) != 0;
        }
        at += kHeader + length + LittleEndian(bytes, at + 30, 2) + LittleEndian(bytes, at + 32, 2);
    }
    return false;
}

KmlBytes SourceOf(VSILFILE* file, std::uint64_t most) {
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
    const Table table = FindTable(path);
    const GdalErrorScope ignored;
    InspectionLimits limits;
    limits.read = std::max(limits.read, 4 * FileSizeOf(path).value_or(0));
    const GdalAccess access(AbsolutePath(path), limits, {[](auto, auto) { return std::wstring(); }});
    const std::string archive = fmt::format("/vsizip/{{{}}}", access.Name());
    const Contents contents = List(archive);
    if (IsEncrypted(path, table, contents.document)) {
        throw LDataError(Text(text::kKmzEncrypted));
    }
    FeatureInfo info = ReadDocument(path, archive + "/" + contents.document, fallbackName);
    if (contents.others != 0) {
        info.leftOut.push_back(FormatText(Text(text::kKmzOthers), {contents.others}));
    }
    return info;
}

}  // namespace orvex
