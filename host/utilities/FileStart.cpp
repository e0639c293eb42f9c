#include "host/utilities/FileStart.h"

#include <span>

#include "support/Files.h"
#include "support/LDataError.h"
#include "support/MappedFile.h"
#include "support/Text.h"

namespace orvex {

std::string ReadPart(const std::wstring& path, std::uint64_t offset, std::size_t length) {
    const FileKind kind = KindOf(path);
    if (kind == FileKind::Missing) {
        throw LDataError(Text(text::kFileMissing));
    }
    MappedFile file;
    std::string bytes(length, '\0');
    std::size_t read = 0;
    // A pipe would make whoever opens it wait.
    if (kind != FileKind::File || file.Open(path, true) != 0 ||
        file.ReadAt(offset, std::as_writable_bytes(std::span(bytes)), read) != 0) {
        throw LDataError(Text(text::kFileOpenRefused));
    }
    bytes.resize(read);
    return bytes;
}

std::string ReadStart(const std::wstring& path) {
    std::string start = ReadPart(path, 0, kStartLength);
    if (start.empty()) {
        throw LDataError(Text(text::kRasterFileEmpty));
    }
    return start;
}

}  // namespace orvex
