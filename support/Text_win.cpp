#include <windows.h>

#include <algorithm>

#include "support/Text.h"

namespace orvex {
namespace {

// A new folder's name must leave room for a file's of the old form, 8.3: calls take fewer than MAX_PATH here.
constexpr std::size_t kLongPath = MAX_PATH - 12;
constexpr std::wstring_view kPrefix = LR"(\\?\)";
constexpr std::wstring_view kSharePrefix = LR"(\\?\UNC\)";
constexpr std::wstring_view kShareStart = LR"(\\)";
constexpr std::wstring_view kDevicePrefix = LR"(\\.\)";

std::wstring WithBackslashes(std::wstring_view path) {
    std::wstring out(path);
    std::ranges::replace(out, L'/', L'\\');
    return out;
}

bool IsPrefixed(std::wstring_view path) {
    return path.starts_with(kPrefix) || path.starts_with(kDevicePrefix);
}

bool IsDrive(std::wstring_view path) {
    return path.size() >= 2 && path[1] == L':';
}

std::size_t BehindComponents(std::wstring_view path, std::size_t start, int count) {
    for (; count > 0 && start < path.size(); --count) {
        while (start < path.size() && !IsSeparator(path[start])) {
            ++start;
        }
        start = std::min(start + 1, path.size());
    }
    return start;
}

std::size_t DriveLength(std::wstring_view path) {
    if (!IsDrive(path)) {
        return 0;
    }
    return path.size() > 2 && IsSeparator(path[2]) ? 3 : 2;
}

/// An absolute path with the prefix "\\?\" or "\\?\UNC\".
std::filesystem::path PrefixedPath(const std::wstring& absolute) {
    if (IsPrefixed(absolute)) {
        return absolute;
    }
    if (absolute.starts_with(kShareStart)) {
        return std::wstring(kSharePrefix).append(absolute, kShareStart.size());
    }
    return std::wstring(kPrefix).append(absolute);
}

}  // namespace

std::wstring ToUpper(std::wstring_view text) {
    std::wstring out(text);
    // The invariant rules, one unit for one unit, as file systems compare names.
    if (!text.empty()) {
        LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_UPPERCASE, text.data(), static_cast<int>(text.size()),
                      out.data(), static_cast<int>(out.size()), nullptr, nullptr, 0);
    }
    return out;
}

std::wstring AbsolutePath(const std::wstring& path) {
    std::wstring full(path.size() + MAX_PATH, L'\0');
    for (;;) {
        const auto size = static_cast<DWORD>(full.size());
        const DWORD length = GetFullPathNameW(path.c_str(), size, full.data(), nullptr);
        full.resize(length);
        if (length < size) {
            return length == 0 ? path : full;
        }
    }
}

std::filesystem::path ToPath(std::wstring_view text, std::size_t room) {
    std::wstring path(text);
    if (IsPrefixed(path)) {
        return path;
    }
    const bool isAbsolute = IsSeparator(path.empty() ? L'.' : path.front()) || DriveLength(path) == 3;
    if (isAbsolute && path.size() + room < kLongPath) {
        return path;
    }
    const std::wstring full = path.empty() ? path : AbsolutePath(path);
    return full.size() + room < kLongPath ? std::filesystem::path(path) : PrefixedPath(full);
}

std::wstring FromPath(const std::filesystem::path& path) {
    return NativePath(path.native());
}

std::wstring NativePath(std::wstring_view path) {
    std::wstring native = WithBackslashes(path);
    if (native.starts_with(kSharePrefix)) {
        return std::wstring(kShareStart).append(native, kSharePrefix.size());
    }
    // Other names behind the prefix, such as a volume's, have no other form.
    if (native.starts_with(kPrefix) && DriveLength(std::wstring_view(native).substr(kPrefix.size())) == 3) {
        return native.substr(kPrefix.size());
    }
    return native;
}

bool IsSeparator(wchar_t c) {
    return c == L'/' || c == L'\\';
}

std::size_t RootLength(std::wstring_view path) {
    const std::wstring native = WithBackslashes(path.substr(0, kSharePrefix.size()));
    if (native.starts_with(kSharePrefix)) {
        return BehindComponents(path, kSharePrefix.size(), 2);
    }
    if (IsPrefixed(native)) {
        return BehindComponents(path, kPrefix.size(), 1);
    }
    if (native.starts_with(kShareStart)) {
        return BehindComponents(path, kShareStart.size(), 2);
    }
    return native.starts_with(L'\\') ? 1 : DriveLength(path);
}

}  // namespace orvex
