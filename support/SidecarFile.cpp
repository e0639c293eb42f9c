#include "support/SidecarFile.h"

#include <algorithm>
#include <array>

#include "support/Files.h"
#include "support/FolderListing.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr std::size_t kFoldersKept = 4;

/// Searches the folder for a name that differs in letter case only; one with the file's own stem is
/// preferred.
std::wstring FindInFolder(const std::wstring& path, const std::wstring& wanted) {
    // Never destroyed: a worker may still ask while the process ends.
    static auto* const folders = new FolderListing(kFoldersKept);
    const GdalListPtr names = folders->Beside(path);
    const std::wstring stem = FileNameOf(WithExtension(path, L"."));
    const std::wstring key = ToUpper(FileNameOf(wanted));
    std::wstring found;
    for (const char* const* name = names ? names->Get() : nullptr; name != nullptr && *name != nullptr;
         ++name) {
        std::wstring text = FromUtf8(*name);
        if (ToUpper(text) == key && (found.empty() || text.starts_with(stem))) {
            found = FromPath(ToPath(FolderOf(path)) / ToPath(text));
        }
    }
    return found.empty() || !FileExists(found) ? std::wstring() : found;
}

StringId RefusalOf(FileKind kind) {
    switch (kind) {
        case FileKind::Folder:
            return text::kRasterIsFolder;
        case FileKind::Missing:
            return text::kFileMissing;
        case FileKind::Other:
            return text::kRasterNotRegularFile;
        default:
            return {};
    }
}

}  // namespace

std::wstring SidecarOf(const std::wstring& path, std::wstring_view extension) {
    const std::wstring upper = WithExtension(path, ToUpper(extension));
    const std::wstring given = WithExtension(path, extension);
    const bool isUpper = path.ends_with(UpperExtensionOf(path));
    for (const std::wstring& usual : {isUpper ? upper : given, isUpper ? given : upper}) {
        if (FileExists(usual)) {
            return usual;
        }
    }
    return FindInFolder(path, upper);
}

RegularFile::RegularFile(const std::wstring& path) {
    // A pipe would have the opening wait.
    if (const StringId refusal = RefusalOf(KindOf(path)); refusal.value != 0) {
        throw LDataError(Text(refusal));
    }
    if (file_.Open(path, true) != 0 || file_.Size(size_) != 0) {
        throw LDataError(Text(text::kFileOpenRefused));
    }
}

std::vector<std::byte> RegularFile::Read(std::uint64_t offset, std::size_t length) const {
    const std::uint64_t rest = offset < size_ ? size_ - offset : 0;
    std::vector<std::byte> bytes(static_cast<std::size_t>(std::min<std::uint64_t>(length, rest)));
    std::size_t read = 0;
    if (const SystemError error = file_.ReadAt(offset, bytes, read); error != 0) {
        throw LDataError(SystemErrorText(error));
    }
    bytes.resize(read);
    return bytes;
}

std::string ReadPrjBeside(const std::wstring& path) {
    constexpr std::size_t kMostBytes = std::size_t{1} << 20U;
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    constexpr std::string_view kBlanks("\0 \t\r\n", 5);
    const std::wstring prj = SidecarOf(path, L".prj");
    if (prj.empty()) {
        return {};
    }
    const RegularFile file(prj);
    if (file.Size() > kMostBytes) {
        throw LDataError(FormatText(Text(text::kPrjTooLarge), {kMostBytes}));
    }
    const std::vector<std::byte> bytes = file.Read(0, kMostBytes);
    std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    text.remove_prefix(text.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0);
    return std::string(text.substr(0, text.find_last_not_of(kBlanks) + 1));
}

}  // namespace orvex
