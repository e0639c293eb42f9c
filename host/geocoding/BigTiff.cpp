// Is_BigTIFF: the first eight bytes of a TIFF say which of the two formats it has.
#include <array>
#include <cstddef>
#include <fstream>

#include "orvexcommon/Geocoding.h"
#include "support/Files.h"
#include "support/LDataError.h"
#include "support/Text.h"

using namespace orvex;

namespace {

using Signature = std::array<char, 8>;

// Byte order, version 43, eight bytes to an offset, and a zero (a TIFF has version 42).
constexpr Signature kLittleEndian{'I', 'I', 43, 0, 8, 0, 0, 0};
constexpr Signature kBigEndian{'M', 'M', 0, 43, 0, 8, 0, 0};

/// The first bytes of a file; zeros when it has fewer.
Signature ReadSignature(const std::wstring& path) {
    // Reading a folder would fail in words that help nobody.
    if (KindOf(path) == FileKind::Folder) {
        throw LDataError(Text(text::kRasterIsFolder));
    }
    std::ifstream file(ToPath(path), std::ios::binary);
    if (!file) {
        throw LDataError(
            Text(KindOf(path) == FileKind::Missing ? text::kFileMissing : text::kFileOpenRefused));
    }
    Signature signature{};
    file.read(signature.data(), static_cast<std::streamsize>(signature.size()));
    if (file.bad()) {
        throw LDataError(Text(text::kFileOpenRefused));
    }
    return file.gcount() == static_cast<std::streamsize>(signature.size()) ? signature : Signature{};
}

}  // namespace

bool Is_BigTIFF(const std::wstring& path, bool& isBigTiff, std::wstring& message) {
    isBigTiff = false;
    message.clear();
    try {
        const Signature signature = ReadSignature(path);
        isBigTiff = signature == kLittleEndian || signature == kBigEndian;
        return true;
    } catch (...) {
        message = CurrentExceptionText();
        return false;
    }
}
