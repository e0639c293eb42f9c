#include "support/FolderListing.h"

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

/// True if a file belongs to the raster whose stem its name begins with: "tile1.tfw" and "tile1_rpc.txt" to
/// "tile1.tif", but not "tile1_2.tif", nor "tile10.tfw". `key`: its upper-cased name.
bool BelongsTo(const std::wstring& key, std::size_t stem) {
    constexpr std::wstring_view kMetadata[] = {L".TXT", L".XML", L".RPC", L".RPB", L".IMD"};
    const bool isMetadata = std::ranges::find(kMetadata, UpperExtensionOf(key)) != std::end(kMetadata);
    return key.size() > stem &&
           (key[stem] == L'.' || ((key[stem] == L'_' || key[stem] == L'-') && isMetadata));
}

GdalListPtr ToGdal(const std::vector<std::wstring>& names) {
    std::vector<std::string> texts;
    std::ranges::transform(names, std::back_inserter(texts), ToUtf8);
    return std::make_shared<const GdalList>(std::move(texts));
}

constexpr std::wstring_view kCoverage = L".ADF";

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
        folder->whole = ToGdal(folder->names);
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
    // The files of a coverage have names of their own.
    const bool isCoverage = UpperExtensionOf(path) == kCoverage;
    const auto first =
        isCoverage ? folder->keys.begin() : std::ranges::partition_point(folder->keys, isBefore);
    std::vector<std::wstring> names;
    for (auto i = static_cast<std::size_t>(first - folder->keys.begin()); i < folder->keys.size(); ++i) {
        const std::wstring& key = folder->keys[i];
        if (!isCoverage && !key.starts_with(stem)) {
            break;
        }
        if (isCoverage ? UpperExtensionOf(key) == kCoverage : BelongsTo(key, stem.size())) {
            names.push_back(folder->names[i]);
        }
    }
    return ToGdal(names);
}

}  // namespace orvex
