#include "host/inspect/InputPaths.h"

#include <algorithm>
#include <filesystem>

#include "support/Text.h"

namespace orvex {

namespace {

namespace fs = std::filesystem;

bool IsDigit(wchar_t c) {
    return c >= L'0' && c <= L'9';
}

/// The digits from `position` on without leading zeros; moves `position` behind them.
std::wstring_view TakeNumber(std::wstring_view text, std::size_t& position) {
    while (position < text.size() && text[position] == L'0') {
        ++position;
    }
    const std::size_t start = position;
    while (position < text.size() && IsDigit(text[position])) {
        ++position;
    }
    return text.substr(start, position - start);
}

/// Below, equal, above: -1, 0, 1.
int CompareNatural(std::wstring_view a, std::wstring_view b) {
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < a.size() && j < b.size()) {
        if (IsDigit(a[i]) && IsDigit(b[j])) {
            const std::wstring_view left = TakeNumber(a, i);
            const std::wstring_view right = TakeNumber(b, j);
            if (left.size() != right.size()) {
                return left.size() < right.size() ? -1 : 1;
            }
            if (const int order = left.compare(right); order != 0) {
                return order < 0 ? -1 : 1;
            }
            continue;
        }
        if (a[i] != b[j]) {
            return a[i] < b[j] ? -1 : 1;
        }
        ++i;
        ++j;
    }
    const std::size_t restA = a.size() - i;
    const std::size_t restB = b.size() - j;
    return restA == restB ? 0 : (restA < restB ? -1 : 1);
}

/// The known files below a folder, natural order of their full paths.
std::vector<std::wstring> SearchFolder(const fs::path& folder) {
    struct Found {
        std::wstring key;
        std::wstring path;
    };
    std::vector<Found> found;
    std::error_code error;
    fs::recursive_directory_iterator entry(folder, fs::directory_options::skip_permission_denied, error);
    for (const fs::recursive_directory_iterator end; !error && entry != end; entry.increment(error)) {
        std::error_code typeError;
        std::wstring path = FromPath(entry->path());
        if (HasKnownExtension(path) && entry->is_regular_file(typeError) && !typeError) {
            std::wstring key = ToUpper(path);
            found.push_back({std::move(key), std::move(path)});
        }
    }
    std::sort(found.begin(), found.end(), [](const Found& a, const Found& b) {
        const int order = CompareNatural(a.key, b.key);
        return order != 0 ? order < 0 : a.path < b.path;
    });
    std::vector<std::wstring> paths;
    paths.reserve(found.size());
    for (Found& file : found) {
        paths.push_back(std::move(file.path));
    }
    return paths;
}

}  // namespace

bool HasKnownExtension(std::wstring_view path) {
    const std::wstring extension = UpperExtensionOf(path);
    return extension == L".LAS" || extension == L".LAZ";
}

bool NaturalLess(std::wstring_view a, std::wstring_view b) {
    const int order = CompareNatural(ToUpper(a), ToUpper(b));
    return order != 0 ? order < 0 : a < b;
}

InputPaths CollectInputPaths(const std::vector<std::wstring>& paths) {
    InputPaths collected;
    for (const std::wstring& text : paths) {
        const fs::path path = ToPath(text);
        std::error_code error;
        const fs::file_status status = fs::status(path, error);
        if (fs::is_directory(status)) {
            for (std::wstring& file : SearchFolder(path)) {
                collected.files.push_back(std::move(file));
            }
        } else if (fs::exists(status)) {
            collected.files.push_back(text);
        } else {
            collected.missing.push_back(text);
        }
    }
    return collected;
}

}  // namespace orvex
