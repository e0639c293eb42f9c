#include "host/utilities/FileStart.h"

#include <span>

#include "support/Files.h"
#include "support/LDataError.h"
#include "support/MappedFile.h"
#include "support/Text.h"

namespace orvex {

std::string ReadStart(const std::wstring& path) {
    const FileKind kind = KindOf(path);
    if (kind == FileKind::Missing) {
        throw LDataError(Text(text::kFileMissing));
    }
    MappedFile file;
    std::string start(kStartLength, '\0');
    std::size_t read = 0;
    // A pipe would make whoever opens it wait.
    if (kind != FileKind::File || file.Open(path, true) != 0 ||
        file.ReadAt(0, std::as_writable_bytes(std::span(start)), read) != 0) {
        throw LDataError(Text(text::kFileOpenRefused));
    }
    if (read == 0) {
        throw LDataError(Text(text::kRasterFileEmpty));
    }
    start.resize(read);
    return start;
}

}  // namespace orvex
