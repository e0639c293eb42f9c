#include "las/LasText.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "las/LASFile.h"
#include "support/Format.h"
#include "support/LasFormat.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr std::array<std::wstring_view, 5> kCaptions{L"Reserved", L"User ID", L"Record ID",
                                                     L"Record Length After Header", L"Description"};
constexpr std::size_t kCaptionWidth = std::ranges::max(kCaptions, {}, &std::wstring_view::size).size();

constexpr std::size_t kBytesPerLine = 8;
constexpr std::size_t kMostLines = 50;

template <typename Record>
void AppendFields(std::wstring& text, const Record& record) {
    const std::array<std::wstring, kCaptions.size()> values{
        std::to_wstring(record.Reserved()), FromUtf8(record.UserId()), std::to_wstring(record.RecordId()),
        std::to_wstring(record.RecordLength()), FromUtf8(record.Description())};
    for (std::size_t i = 0; i < kCaptions.size(); ++i) {
        text.append(kCaptions[i]).append(kCaptionWidth - kCaptions[i].size(), L' ');
        text.append(L" = ").append(values[i]).append(L"\n");
    }
}

void AppendByte(std::wstring& text, std::byte byte) {
    constexpr std::wstring_view kDigits = L"0123456789abcdef";
    const auto value = std::to_integer<unsigned>(byte);
    text += kDigits[value >> 4U];
    text += kDigits[value & 0xFU];
    text += L' ';
}

// Returns the number of lines including a shorter last one. Only full lines end with a line break: the text
// that follows a shorter one continues it.
std::size_t AppendDump(std::wstring& text, std::span<const std::byte> data) {
    for (std::size_t i = 0; i < data.size(); ++i) {
        AppendByte(text, data[i]);
        if ((i + 1) % kBytesPerLine == 0) {
            text += L'\n';
        }
    }
    return (data.size() + kBytesPerLine - 1) / kBytesPerLine;
}

// CRS records are not dumped: the CRS is described elsewhere.
template <typename Record>
bool IsDumped(const Record& record) {
    return record.RecordLength() <= kLongestDump && record.UserId() != las::kProjectionUserId;
}

template <typename Records>
std::wstring RecordsText(const Records& records, std::wstring_view kind) {
    std::wstring text;
    std::size_t lines = 0;
    for (const auto& record : records) {
        AppendFields(text, record);
        lines += kCaptions.size();
        if (IsDumped(record)) {
            lines += AppendDump(text, record.Data());
        }
        if (lines > kMostLines) {
            text.append(L"...\n...\n...\n... ").append(kind).append(L" size exceeds display size");
            break;
        }
    }
    return text;
}

}  // namespace

std::wstring LasVlrText(const LASFile& file) {
    return RecordsText(file.GetVLRs(), L"VLR");
}

std::wstring LasEvlrText(const LASFile& file) {
    return RecordsText(file.GetEVLRs(), L"EVLR");
}

std::wstring LasGpsTimeText(const LASFile& file) {
    if (file.GetVersionCode() < las::kLas12) {
        return {};
    }
    const las::PointFormatFacts* facts = las::FindPointFormat(file.PointFormat());
    if (facts != nullptr && !facts->hasGpsTime) {
        return Text(text::kNoGpsTime);
    }
    return file.Header().HasStandardGpsTime() ? L"Standard GPS Time" : L"GPS-Week-Seconds";
}

std::wstring LasEncodingText(const LASFile& file) {
    constexpr std::pair<std::uint16_t, StringId> kBits[] = {
        {las::encoding::kStandardGpsTime, text::kEncodingStandardGps},
        {las::encoding::kInternalWaveform, text::kEncodingInternalWaveform},
        {las::encoding::kExternalWaveform, text::kEncodingExternalWaveform},
        {las::encoding::kSyntheticReturns, text::kEncodingSynthetic},
        {las::encoding::kWkt, text::kEncodingWkt},
    };
    std::wstring text;
    for (const auto& [bit, name] : kBits) {
        if ((file.Header().GlobalEncoding() & bit) != 0) {
            text += (text.empty() ? L"" : L", ") + Text(name);
        }
    }
    return text;
}

std::wstring LasPointsByReturnText(const LASFile& file, const wchar_t* format) {
    std::wstring text;
    for (int number = 1; number <= file.Header().ReturnCount(); ++number) {
        const std::uint64_t points = file.Header().PointsOfReturn(number);
        if (points > 0) {
            text +=
                FormatText(text.empty() ? L"%d: %s" : L", %d: %s", {number, FormatText(format, {points})});
        }
    }
    return text;
}

std::string ExtraBytesType(const ExtraBytesAttribute& attribute) {
    constexpr std::array kTypes{"",      "uint8",  "int8",  "uint16", "int16", "uint32",
                                "int32", "uint64", "int64", "float",  "double"};
    return attribute.dataType == 0 || attribute.dataType >= kTypes.size()
               ? std::to_string(attribute.size) + " bytes"
               : kTypes[attribute.dataType];
}

std::wstring LasExtraBytesText(const LASFile& file) {
    std::wstring text;
    for (const ExtraBytesAttribute& attribute : file.GetExtraBytes().Attributes()) {
        text += (text.empty() ? L"" : L", ") + attribute.name + L" (" + FromUtf8(ExtraBytesType(attribute)) +
                L")";
    }
    return text;
}

bool IsCopc(const LASFile& file) {
    const auto& vlrs = file.GetVLRs();
    return !vlrs.empty() && vlrs.front().Is(las::kCopcUserId, las::kCopcInfoRecordId);
}

}  // namespace orvex
