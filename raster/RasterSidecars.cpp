#include "raster/RasterSidecars.h"

#include <cpl_string.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "support/Text.h"

namespace orvex {
namespace {

// FAT stores times in steps of two seconds.
constexpr std::chrono::seconds kCoarseStep{3};

/// Upper-cased name without the extension, which every sidecar begins with: ".aux.xml" is added to the whole
/// name, ".tfw" replaces the extension, "_rpc.txt" is added to what precedes it.
std::wstring Stem(const std::wstring& path) {
    const std::wstring name = FileNameOf(path);
    return ToUpper(name.substr(0, name.rfind(L'.')));
}

GdalListPtr ToGdal(std::vector<std::wstring>::const_iterator begin,
                   std::vector<std::wstring>::const_iterator end) {
    std::vector<std::string> names;
    std::transform(begin, end, std::back_inserter(names),
                   [](const std::wstring& name) { return ToUtf8(name); });
    return std::make_shared<const GdalList>(std::move(names));
}

// More than any format needs; a file can name any number of others.
constexpr std::size_t kMostSidecars = 256;

}  // namespace

FolderListing::FolderPtr FolderListing::List(const std::wstring& path, FileTime modified) {
    std::vector<std::pair<std::wstring, std::wstring>> entries;
    const SystemError error = ListFolder(path, [&](const FolderEntry& entry) {
        std::wstring name = FileNameOf(entry.path);
        entries.emplace_back(ToUpper(name), std::move(name));
        return entries.size() <= kMostListed;
    });
    if (error || entries.size() > kMostListed) {
        return nullptr;
    }
    auto folder = std::make_shared<Folder>();
    folder->path = path;
    folder->modified = modified;
    std::ranges::sort(entries);
    const bool isWhole = entries.size() <= kMostWhole;
    for (auto& [key, name] : entries) {
        folder->names.push_back(std::move(name));
        if (!isWhole) {
            folder->keys.push_back(std::move(key));
        }
    }
    if (isWhole) {
        folder->whole = ToGdal(folder->names.begin(), folder->names.end());
    }
    return folder;
}

bool FolderListing::HasSettled(FileTime modified, FileTime now, std::chrono::milliseconds settling) {
    const auto age = now - modified;
    const bool isCoarse = std::chrono::floor<std::chrono::seconds>(modified) == modified;
    // A time in the future is a server's clock ahead of ours: no reason to list its folders for every file.
    return age < age.zero() || age > (isCoarse ? kCoarseStep : settling);
}

FolderListing::FolderPtr FolderListing::Get(const std::wstring& path) {
    const auto modified = LastWriteTime(path);
    if (!modified) {
        return nullptr;
    }
    {
        const std::lock_guard guard(lock_);
        const auto known = std::ranges::find(latest_, path, &Folder::path);
        if (known != latest_.end() && (*known)->modified == *modified) {
            latest_.splice(latest_.begin(), latest_, known);
            return latest_.front();
        }
    }
    const auto now = std::chrono::floor<FileTime::duration>(std::chrono::system_clock::now());
    const bool mayBeKept = HasSettled(*modified, now, settling_);
    FolderPtr folder = List(path, *modified);
    if (folder && mayBeKept) {
        const std::lock_guard guard(lock_);
        std::erase_if(latest_, [&](const FolderPtr& other) { return other->path == path; });
        latest_.push_front(folder);
        if (latest_.size() > capacity_) {
            latest_.pop_back();
        }
    }
    return folder;
}

GdalListPtr FolderListing::Beside(const std::wstring& path) {
    const FolderPtr folder = Get(FolderOf(path));
    if (!folder || folder->whole) {
        return folder ? folder->whole : nullptr;
    }
    const std::wstring stem = Stem(path);
    const auto isBefore = [&](const std::wstring& key) { return key.substr(0, stem.size()) < stem; };
    const auto isWithin = [&](const std::wstring& key) { return key.starts_with(stem); };
    const auto begin = std::ranges::partition_point(folder->keys, isBefore);
    const auto end = std::partition_point(begin, folder->keys.end(), isWithin);
    const auto first = folder->names.begin() + (begin - folder->keys.begin());
    const auto most = std::min<std::ptrdiff_t>(end - begin, kMostWhole);
    return ToGdal(first, first + most);
}

void ReadSidecars(GDALDatasetH dataset, const std::wstring& path, RasterProperties& properties) {
    const CPLStringList files(GDALGetFileList(dataset));
    // The list holds the file itself under the name it was opened with, a full path.
    const std::wstring keys[] = {PathKey(path), PathKey(FromUtf8(GDALGetDescription(dataset)))};
    for (int i = 0; i < files.size(); ++i) {
        std::wstring sidecar = NativePath(FromUtf8(files[i]));
        // Files inside archives, and files removed meanwhile, have no size.
        const auto size = FileSizeOf(sidecar);
        const bool isItself = std::ranges::find(keys, PathKey(sidecar)) != std::end(keys);
        if (!size || isItself || properties.sidecars.size() >= kMostSidecars) {
            continue;
        }
        properties.totalBytes += *size;
        properties.sidecars.push_back(std::move(sidecar));
    }
}

}  // namespace orvex
