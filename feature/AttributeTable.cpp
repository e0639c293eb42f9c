#include "feature/AttributeTable.h"

#include <cpl_conv.h>
#include <cpl_string.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <string_view>

#include "feature/FeatureFindings.h"
#include "support/ByteReader.h"
#include "support/GdalErrorScope.h"
#include "support/LDataError.h"
#include "support/SidecarFile.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr std::size_t kHeaderBytes = 32;
constexpr std::size_t kFieldBytes = 32;
constexpr std::size_t kNameBytes = 11;
constexpr auto kEndOfFields = std::uint8_t{0x0D};

/// Code pages by the number of the language driver (byte 29 of the header), as dBASE, FoxPro and GIS programs
/// write it. 28591 is ISO 8859-1.
constexpr struct {
    std::uint8_t driver;
    int codePage;
} kLanguageDrivers[] = {
    {1, 437},    {2, 850},    {3, 1252},   {8, 865},   {9, 437},    {10, 850},  {11, 437},   {13, 437},
    {14, 850},   {15, 437},   {16, 850},   {17, 437},  {18, 850},   {19, 932},  {20, 850},   {21, 437},
    {22, 850},   {23, 865},   {24, 437},   {25, 437},  {26, 850},   {27, 437},  {28, 863},   {29, 850},
    {31, 852},   {34, 852},   {35, 852},   {36, 860},  {37, 850},   {38, 866},  {55, 850},   {64, 852},
    {77, 936},   {78, 949},   {79, 950},   {80, 874},  {87, 28591}, {88, 1252}, {89, 1252},  {100, 852},
    {101, 866},  {102, 865},  {103, 861},  {106, 737}, {107, 857},  {108, 863}, {120, 950},  {121, 949},
    {122, 936},  {123, 932},  {124, 874},  {134, 737}, {135, 852},  {136, 857}, {200, 1250}, {201, 1251},
    {202, 1254}, {203, 1253}, {204, 1257},
};

/// Name of a code page for CPLRecode, which knows "CP1252" on every platform.
std::string EncodingOfCodePage(int codePage) {
    constexpr int kUtf8 = 65001;
    constexpr int kIso8859 = 28590;
    constexpr int kMostParts = 16;
    if (codePage == kUtf8) {
        return CPL_ENC_UTF8;
    }
    const int part = codePage - kIso8859;
    return part > 0 && part <= kMostParts ? "ISO-8859-" + std::to_string(part)
                                          : "CP" + std::to_string(codePage);
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

/// The encoding that the text of a .cpg file names: "UTF-8", "1252", "ANSI 1252", "ISO 88591", "Big5".
std::string EncodingNamed(std::string_view text) {
    std::string name;
    std::ranges::copy_if(text, std::back_inserter(name),
                         [](char c) { return static_cast<unsigned char>(c) > ' ' && c != '-' && c != '_'; });
    std::ranges::transform(name, name.begin(),
                           [](char c) { return c >= 'a' && c <= 'z' ? c - ('a' - 'A') : c; });
    if (name == "UTF8") {
        return CPL_ENC_UTF8;
    }
    constexpr std::string_view kIso = "8859";
    const std::size_t digits = std::min(name.find_first_of("0123456789"), name.size());
    const std::string number = name.substr(digits);
    if (number.starts_with(kIso) && number.size() > kIso.size()) {
        return "ISO-8859-" + number.substr(kIso.size());
    }
    const bool isCodePage = number.size() >= 3 && number.size() <= 5 && std::ranges::all_of(number, IsDigit);
    return isCodePage ? EncodingOfCodePage(std::stoi(number)) : std::string(text);
}

std::string_view Trimmed(std::string_view text) {
    constexpr std::string_view kBlank(" \t\r\n\0\x1A", 6);
    const std::size_t first = text.find_first_not_of(kBlank);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(kBlank) - first + 1);
}

/// Text of the .cpg file; empty if there is none.
std::string CpgText(const std::wstring& shapefile) {
    constexpr std::size_t kMostBytes = 64;
    try {
        const std::wstring path = SidecarOf(shapefile, L".cpg");
        const std::vector<std::byte> bytes =
            path.empty() ? std::vector<std::byte>() : RegularFile(path).Read(0, kMostBytes);
        return std::string(Trimmed({reinterpret_cast<const char*>(bytes.data()), bytes.size()}));
    } catch (const LDataError&) {
        return {};
    }
}

/// Encoding of a table; empty if nothing states one.
std::string StatedEncoding(const std::wstring& shapefile, std::uint8_t driver) {
    if (const std::string text = CpgText(shapefile); !text.empty()) {
        return EncodingNamed(text);
    }
    const auto* const found =
        std::ranges::find(kLanguageDrivers, driver, [](const auto& entry) { return entry.driver; });
    return found == std::end(kLanguageDrivers) ? std::string() : EncodingOfCodePage(found->codePage);
}

bool IsAscii(const std::string& text) {
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

/// Names of fields as texts. Most tables have no letter that an encoding matters for.
class FieldNames {
  public:
    FieldNames(const std::wstring& shapefile, std::uint8_t driver) : shapefile_(shapefile), driver_(driver) {}

    std::wstring Decode(const std::string& name) {
        if (IsAscii(name)) {
            return FromUtf8(name);
        }
        if (!isSought_) {
            isSought_ = true;
            encoding_ = StatedEncoding(shapefile_, driver_);
        }
        const bool isGuessedUtf8 = encoding_.empty() && ValidUtf8(name) == name;
        const std::string from = encoding_.empty() ? "CP1252" : encoding_;
        return isGuessedUtf8 || from == CPL_ENC_UTF8 ? FromUtf8(name) : Recode(name, from);
    }
    /// Encoding that is stated, but not known; empty if all is well.
    const std::string& Unknown() const { return unknown_; }

  private:
    std::wstring Recode(const std::string& name, const std::string& from) {
        const GdalErrorScope errors;
        const std::unique_ptr<char, void (*)(void*)> text(CPLRecode(name.c_str(), from.c_str(), CPL_ENC_UTF8),
                                                          CPLFree);
        unknown_ = errors.Messages().empty() ? unknown_ : from;
        return FromUtf8(text.get());
    }

    const std::wstring& shapefile_;
    const std::uint8_t driver_;
    bool isSought_ = false;
    std::string encoding_;
    std::string unknown_;
};

AttributeType TypeOf(char letter, unsigned width, unsigned decimals) {
    constexpr unsigned kMostDigits = 18;  // of a 64-bit integer, whatever they are
    switch (letter) {
        case 'N':
        case 'F':
            return decimals == 0 && width <= kMostDigits ? AttributeType::Integer : AttributeType::Double;
        case 'C':
            return AttributeType::String;
        case 'D':
            return AttributeType::Date;
        case 'L':
            return AttributeType::Logical;
        default:
            return AttributeType::Invalid;
    }
}

/// Reads the descriptions of fields; returns the bytes of a record that they fill.
std::uint64_t ReadFields(const ByteReader& header, FieldNames& names, AttributeTable& table) {
    std::uint64_t width = 1;  // the mark of deleted records
    for (std::uint64_t at = kHeaderBytes; header.Contains(at, kFieldBytes); at += kFieldBytes) {
        if (header.Read<std::uint8_t>(at) == kEndOfFields) {
            break;
        }
        const auto fieldWidth = header.Read<std::uint8_t>(at + 16);
        const std::string name(Trimmed(header.FixedText(at, kNameBytes)));
        table.fields.push_back({names.Decode(name), TypeOf(header.Read<char>(at + kNameBytes), fieldWidth,
                                                           header.Read<std::uint8_t>(at + 17))});
        width += fieldWidth;
    }
    return width;
}

void ReadTable(const std::wstring& shapefile, const RegularFile& file, AttributeTable& table) {
    const std::vector<std::byte> start = file.Read(0, kHeaderBytes);
    const ByteReader fixed(start);
    const auto headerBytes = fixed.Read<std::uint16_t>(8);
    const auto recordBytes = fixed.Read<std::uint16_t>(10);
    if (headerBytes <= kHeaderBytes || recordBytes == 0 || headerBytes > file.Size()) {
        table.findings.push_back(MakeFinding(feature_finding::kTableUnreadable));
        return;
    }
    const std::vector<std::byte> header = file.Read(0, headerBytes);
    FieldNames names(shapefile, fixed.Read<std::uint8_t>(29));
    const std::uint64_t width = ReadFields(ByteReader(header), names, table);
    if (width > recordBytes) {
        table.findings.push_back(MakeFinding(feature_finding::kTableContradicts, {width, recordBytes}));
    }
    if (!names.Unknown().empty()) {
        table.findings.push_back(
            MakeFinding(feature_finding::kEncodingUnknown, {FromUtf8(ValidUtf8(names.Unknown()))}));
    }
    table.recordCount = fixed.Read<std::uint32_t>(4);
    const std::uint64_t complete = (file.Size() - headerBytes) / recordBytes;
    if (complete < *table.recordCount) {
        table.findings.push_back(MakeFinding(feature_finding::kTableCutOff, {complete, *table.recordCount}));
    }
}

}  // namespace

AttributeTable ReadAttributeTable(const std::wstring& shapefile) {
    AttributeTable table;
    const std::wstring path = SidecarOf(shapefile, L".dbf");
    if (path.empty()) {
        table.findings.push_back(MakeFinding(feature_finding::kTableMissing));
        return table;
    }
    try {
        ReadTable(shapefile, RegularFile(path), table);
    } catch (const LDataError&) {
        table.findings.push_back(MakeFinding(feature_finding::kTableUnreadable));
    }
    return table;
}

}  // namespace orvex
