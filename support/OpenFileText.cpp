#include "support/OpenFileText.h"

#include <algorithm>
#include <span>

#include "support/Text.h"

namespace orvex {
namespace {

// cderr.h; here by value, so that every platform tests them.
constexpr std::uint32_t kBufferTooSmall = 0x3003;   // FNERR_BUFFERTOOSMALL, 12291
constexpr std::uint32_t kMemoryNotReserved = 0x09;  // CDERR_MEMALLOCFAILURE
constexpr std::uint32_t kMemoryNotLocked = 0x0A;    // CDERR_MEMLOCKFAILURE

std::vector<std::wstring_view> SplitAtZeros(std::wstring_view buffer) {
    std::vector<std::wstring_view> parts;
    while (!buffer.empty() && buffer.front() != L'\0') {
        const std::size_t end = std::min(buffer.find(L'\0'), buffer.size());
        parts.push_back(buffer.substr(0, end));
        buffer.remove_prefix(std::min(end + 1, buffer.size()));
    }
    return parts;
}

bool IsFullPath(std::wstring_view name) {
    return name.starts_with(L"\\\\") || (name.size() > 2 && name.substr(1, 2) == L":\\");
}

}  // namespace

std::wstring OpenFileFilterText(const std::vector<FileFilter>& filters) {
    std::wstring text;
    for (const FileFilter& filter : filters) {
        if (!filter.caption.empty() && !filter.patterns.empty()) {
            text += filter.caption + L'\0' + filter.patterns + L'\0';
        }
    }
    if (!text.empty()) {
        text += L'\0';
    }
    return text;
}

std::vector<std::wstring> ParseOpenFileSelection(std::wstring_view buffer) {
    const std::vector<std::wstring_view> parts = SplitAtZeros(buffer);
    if (parts.size() < 2) {
        return {parts.begin(), parts.end()};
    }
    std::wstring folder(parts.front());
    if (folder.back() != L'\\') {  // the root of a drive comes with its own
        folder += L'\\';
    }
    std::vector<std::wstring> paths;
    for (const std::wstring_view name : std::span(parts).subspan(1)) {
        paths.push_back(IsFullPath(name) ? std::wstring(name) : folder + std::wstring(name));
    }
    return paths;
}

PickOutcome OutcomeOfOpenFileError(std::uint32_t extendedError) {
    switch (extendedError) {
        case 0:
            return PickOutcome::Cancelled;
        case kBufferTooSmall:
            return PickOutcome::BufferTooSmall;
        case kMemoryNotReserved:
        case kMemoryNotLocked:
            return PickOutcome::OutOfMemory;
        default:
            return PickOutcome::Failed;
    }
}

std::size_t SelectionCharacters(const std::vector<std::wstring>& paths) {
    std::size_t characters = paths.empty() ? 0 : FolderOf(paths.front()).size() + 1;
    for (const std::wstring& path : paths) {
        characters += FileNameOf(path).size() + 1;
    }
    return characters;
}

}  // namespace orvex
