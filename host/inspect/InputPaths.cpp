#include "host/inspect/InputPaths.h"

#include "support/Files.h"
#include "support/NaturalOrder.h"
#include "support/Text.h"

namespace orvex {

namespace {

using IsSearched = std::function<bool(std::wstring_view path)>;

/// The files below a folder that are searched for, natural order of their full paths.
std::vector<std::wstring> SearchFolder(const std::wstring& top, const IsSearched& isSearched) {
    std::vector<std::wstring> found;
    std::vector<std::wstring> waiting{top};
    while (!waiting.empty()) {
        const std::wstring folder = std::move(waiting.back());
        waiting.pop_back();
        ListFolder(folder, [&](FolderEntry entry) {
            if (entry.kind == FileKind::Folder && !entry.isLink) {
                waiting.push_back(std::move(entry.path));
            } else if (entry.kind == FileKind::File && isSearched(entry.path)) {
                found.push_back(std::move(entry.path));
            }
            return true;
        });
    }
    SortNaturally(found);
    return found;
}

}  // namespace

InputPaths CollectInputPaths(const std::vector<std::wstring>& paths, const IsSearched& isSearched) {
    InputPaths collected;
    for (const std::wstring& text : paths) {
        const std::wstring path = NativePath(text);
        const FileKind kind = KindOf(path);
        if (kind == FileKind::Folder) {
            for (std::wstring& file : SearchFolder(path, isSearched)) {
                collected.files.push_back(std::move(file));
            }
        } else if (kind == FileKind::Missing) {
            collected.missing.push_back(path);
        } else {
            collected.files.push_back(path);
        }
    }
    return collected;
}

}  // namespace orvex
