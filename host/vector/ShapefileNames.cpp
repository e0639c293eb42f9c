#include "host/vector/ShapefileNames.h"

#include <algorithm>
#include <array>
#include <cwctype>

#include "support/Files.h"
#include "support/Text.h"

namespace orvex {

namespace {

// Together with a kind and a number within the 255 bytes that file systems allow.
constexpr std::size_t kMostFileBytes = 100;
constexpr std::size_t kMostLayerBytes = 100;
constexpr wchar_t kStandIn = L'_';

bool IsForbidden(wchar_t c) {
    constexpr std::wstring_view kForbidden = L"<>:\"/\\|?*";
    constexpr wchar_t kDelete = 0x7F;
    constexpr wchar_t kNoText = 0xFFFD;  // stands for bytes that are none
    return c < L' ' || c == kDelete || c == kNoText || kForbidden.find(c) != kForbidden.npos;
}

/// True for names that Windows takes for devices, with any extension.
bool IsDevice(std::wstring_view name) {
    std::wstring start = ToUpper(name.substr(0, name.find(L'.')));
    start.erase(start.find_last_not_of(L' ') + 1);
    constexpr std::array<std::wstring_view, 6> kDevices = {L"CON", L"PRN",    L"AUX",
                                                           L"NUL", L"CONIN$", L"CONOUT$"};
    constexpr std::wstring_view kNumbers = L"0123456789\u00B9\u00B2\u00B3";
    const bool isPort = start.size() == 4 && (start.starts_with(L"COM") || start.starts_with(L"LPT")) &&
                        kNumbers.find(start[3]) != kNumbers.npos;
    return isPort || std::ranges::find(kDevices, start) != kDevices.end();
}

/// One part of a name.
std::wstring SafePart(std::wstring_view part, std::size_t bytes) {
    std::wstring safe = FromUtf8(ValidUtf8(ToUtf8(part)));
    std::ranges::replace_if(safe, IsForbidden, kStandIn);
    safe = FromUtf8(CutUtf8(ToUtf8(safe), bytes));
    safe.erase(0, safe.find_first_not_of(L' '));
    safe.erase(safe.find_last_not_of(L' ') + 1);
    return safe;
}

/// Bytes of the character at the start of `text`, which is not empty; 0 if it is none.
std::size_t CharacterBytes(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text.front());
    const std::size_t length = lead < 0x80 ? 1 : lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    return length <= text.size() ? length : 0;
}

bool IsFieldCharacter(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 0x80 || c == '_' || (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') ||
           (c >= 'a' && c <= 'z');
}

bool BeginsWithLetter(const std::string& name) {
    return !name.empty() && name.front() != '_' && (name.front() < '0' || name.front() > '9');
}

std::string SafeFieldName(const std::string& name) {
    std::string safe = ValidUtf8(name);
    std::ranges::replace_if(
        safe, [](char c) { return !IsFieldCharacter(c); }, '_');
    safe = CutUtf8(safe, kMostFieldName);
    return BeginsWithLetter(safe) ? safe : CutUtf8("F" + safe, kMostFieldName);
}

}  // namespace

std::string CutUtf8(std::string_view text, std::size_t bytes) {
    std::string cut = ValidUtf8(text);
    std::size_t end = 0;
    while (end < cut.size()) {
        const std::size_t next =
            end + std::max<std::size_t>(CharacterBytes(std::string_view(cut).substr(end)), 1);
        if (next > bytes) {
            break;
        }
        end = next;
    }
    cut.resize(end);
    return cut;
}

std::wstring ShapefileName(std::wstring_view file, std::wstring_view layer, std::wstring_view kind) {
    std::wstring name = SafePart(file, kMostFileBytes);
    const std::wstring part = EqualNoCase(file, layer) ? std::wstring() : SafePart(layer, kMostLayerBytes);
    name += part.empty() ? part : kStandIn + part;
    name += kStandIn + std::wstring(kind);
    if (IsDevice(name)) {
        return kStandIn + name;
    }
    if (name.front() == L'.') {
        name.front() = kStandIn;  // no hidden file
    }
    return name;
}

TakenNames::TakenNames(const std::wstring& folder) {
    ListFolder(folder, [this](const FolderEntry& entry) {
        const std::wstring upper = ToUpper(FileNameOf(entry.path));
        constexpr std::wstring_view kParts[] = {L".SHP", L".SHX", L".DBF", L".PRJ",     L".CPG", L".QIX",
                                                L".SBN", L".SBX", L".QPJ", L".SHP.XML", L".IDM", L".IND"};
        for (const std::wstring_view part : kParts) {
            if (upper.ends_with(part)) {
                upper_.insert(upper.substr(0, upper.size() - part.size()));
            }
        }
        return true;
    });
}

std::wstring TakenNames::FreeName(const std::wstring& name) const {
    if (!upper_.contains(ToUpper(name))) {
        return name;
    }
    int& number = last_.try_emplace(ToUpper(name), 1).first->second;
    std::wstring numbered;
    do {
        numbered = name + L" (" + std::to_wstring(++number) + L")";
    } while (upper_.contains(ToUpper(numbered)));
    return numbered;
}

void TakenNames::Add(const std::wstring& name) {
    upper_.insert(ToUpper(name));
}

std::vector<std::string> SafeFieldNames(const std::vector<std::string>& names) {
    std::set<std::wstring> taken;
    std::vector<std::string> safe;
    for (const std::string& name : names) {
        const std::string wanted = SafeFieldName(name);
        std::string free = wanted;
        for (int number = 1; !taken.insert(ToUpper(FromUtf8(free))).second; ++number) {
            const std::string end = "_" + std::to_string(number);
            free = CutUtf8(wanted, kMostFieldName - end.size()) + end;
        }
        safe.push_back(free);
    }
    return safe;
}

}  // namespace orvex
