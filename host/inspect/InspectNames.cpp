#include "host/inspect/InspectNames.h"

#include <array>
#include <string_view>

#include "support/Format.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr std::size_t kLongestName = std::size_t{1} << 20U;  // bytes; more than any system takes

void AddName(std::string_view bytes, char end, std::vector<std::wstring>& names) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (names.empty() && bytes.starts_with(kByteOrderMark)) {
        bytes.remove_prefix(kByteOrderMark.size());
    }
    if (end == '\n' && bytes.ends_with('\r')) {
        bytes.remove_suffix(1);
    }
    if (bytes.find('\0') != std::string_view::npos) {
        throw InspectNameError(Text(text::kInspectNullByte));
    }
    if (!bytes.empty()) {
        names.push_back(FromUtf8(bytes));
    }
}

}  // namespace

std::vector<std::wstring> ReadNames(const std::function<std::size_t(std::span<char>)>& read, char end) {
    std::vector<std::wstring> names;
    std::string rest;  // begins at the start of a name
    std::array<char, std::size_t{1} << 16U> buffer{};
    while (const std::size_t size = read(buffer)) {
        const std::size_t searched = rest.size();
        rest.append(buffer.data(), size);
        std::size_t start = 0;
        for (std::size_t at = searched; (at = rest.find(end, at)) != std::string::npos; start = ++at) {
            AddName(std::string_view(rest).substr(start, at - start), end, names);
        }
        rest.erase(0, start);
        if (rest.size() > kLongestName) {
            throw InspectNameError(FormatText(Text(text::kInspectNameTooLong), {kLongestName}));
        }
    }
    AddName(rest, end, names);
    return names;
}

}  // namespace orvex
