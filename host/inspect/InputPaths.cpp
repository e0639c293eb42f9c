#include "host/inspect/InputPaths.h"

#include <filesystem>

#include "support/NaturalOrder.h"
#include "support/Text.h"

namespace orvex {

namespace {

namespace fs = std::filesystem;

/// The known files below a folder, natural order of their full paths.
std::vector<std::wstring> SearchFolder(const fs::path& folder) {
    std::vector<std::wstring> found;
    std::error_code error;
    fs::recursive_directory_iterator entry(folder, fs::directory_options::skip_permission_denied, error);
    for (const fs::recursive_directory_iterator end; !error && entry != end; entry.increment(error)) {
        std::error_code typeError;
        std::wstring path = FromPath(entry->path());
        if (HasKnownExtension(path) && entry->is_regular_file(typeError) && !typeError) {
            found.push_back(std::move(path));
        }
    }
    SortNaturally(found);
    return found;
}

}  // namespace

bool HasKnownExtension(std::wstring_view path) {
    const std::wstring extension = UpperExtensionOf(path);
    return extension == L".LAS" || extension == L".LAZ";
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
