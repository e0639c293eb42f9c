#include "host/utilities/CadKinds.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>

#include "host/utilities/FileStart.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {
namespace {

using namespace std::string_view_literals;

constexpr std::string_view kReadableDwg = "AC1015";

/// First bytes of drawings of each release.
constexpr struct {
    std::string_view code;
    const wchar_t* release;
} kDwgReleases[] = {{"MC0.0", L"R1.0"},  {"AC1.2", L"R1.2"},   {"AC1.40", L"R1.4"},  {"AC1.50", L"R2.05"},
                    {"AC2.10", L"R2.1"}, {"AC2.21", L"R2.21"}, {"AC2.22", L"R2.22"}, {"AC1001", L"R2.22"},
                    {"AC1002", L"R2.5"}, {"AC1003", L"R2.6"},  {"AC1004", L"R9"},    {"AC1006", L"R10"},
                    {"AC1009", L"R12"},  {"AC1012", L"R13"},   {"AC1013", L"R13"},   {"AC1014", L"R14"},
                    {"AC1018", L"2004"}, {"AC1021", L"2007"},  {"AC1024", L"2010"},  {"AC1027", L"2013"},
                    {"AC1032", L"2018"}};

constexpr std::string_view kCompoundFile = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"sv;  // of DGN 8, among others
constexpr std::string_view kBinaryDxf = "AutoCAD Binary DXF";
// A seed element of two or of three dimensions.
constexpr std::array kDgnStarts{"\x08\x09\xFE\x02"sv, "\xC8\x09\xFE\x02"sv};

bool LooksLikeDwg(std::string_view start) {
    return start.starts_with("AC10") ||
           std::ranges::any_of(kDwgReleases, [&](const auto& row) { return start.starts_with(row.code); });
}

[[noreturn]] void RefuseKind(const wchar_t* kind) {
    throw LDataError(FormatText(Text(text::kFeatureOtherContent), {kind}));
}

void RequireDwg(std::string_view start) {
    constexpr std::size_t kCode = 6;
    if (start.starts_with(kReadableDwg)) {
        return;
    }
    if (!LooksLikeDwg(start)) {
        RefuseKind(L"DWG");
    }
    const auto* const row =
        std::ranges::find_if(kDwgReleases, [&](const auto& known) { return start.starts_with(known.code); });
    const bool isKnown = row != std::end(kDwgReleases);
    const std::wstring code =
        WithoutControls(FromUtf8(ValidUtf8(isKnown ? row->code : start.substr(0, kCode))));
    throw LDataError(isKnown ? FormatText(Text(text::kDwgRelease), {row->release, code})
                             : FormatText(Text(text::kDwgUnknownRelease), {code}));
}

void RequireDxf(std::string_view start) {
    if (start.starts_with(kBinaryDxf)) {
        throw LDataError(Text(text::kDxfBinary));
    }
    // A text begins with a group code, which may follow blanks and a byte order mark.
    const std::size_t first = start.find_first_not_of(" \t\r\n\xEF\xBB\xBF");
    if (first == std::string_view::npos || start[first] < '0' || start[first] > '9' ||
        start.find('\0') != std::string_view::npos) {
        RefuseKind(L"DXF");
    }
}

void RequireDgn(std::string_view start) {
    if (start.starts_with(kCompoundFile)) {
        throw LDataError(Text(text::kDgnVersion8));
    }
    if (std::ranges::none_of(kDgnStarts, [&](std::string_view known) { return start.starts_with(known); })) {
        RefuseKind(L"DGN");
    }
}

}  // namespace

void RequireReadable(const std::wstring& path, CadKind kind) {
    const std::string start = ReadStart(path);
    switch (kind) {
        case CadKind::Dwg:
            return RequireDwg(start);
        case CadKind::Dxf:
            return RequireDxf(start);
        case CadKind::Dgn:
            return RequireDgn(start);
    }
}

}  // namespace orvex
