#include "support/GdalAccess.h"

#include <cpl_string.h>
#include <cpl_vsi.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <new>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "support/Files.h"
#include "support/FolderListing.h"
#include "support/Text.h"

namespace orvex {

struct GdalAccess::State {
    std::wstring path;
    InspectionLimits limits;
    std::uint64_t left;
    ReadWatch watch;
    std::wstring refusal{};
};

namespace {

using State = GdalAccess::State;
using Bytes = std::span<const unsigned char>;

constexpr std::size_t kFoldersKept = 4;
constexpr std::size_t kStartBytes = 1024;  ///< by which GDAL recognises a file

thread_local State* current = nullptr;

// Both markers with which a JPEG 2000 codestream begins, "start of codestream" and "image and tile size".
constexpr std::array<unsigned char, 4> kCodestream{0xFF, 0x4F, 0xFF, 0x51};
constexpr std::size_t kCodestreamHeader = 38;  ///< bytes that follow them, without the components

/// Bytes that a decoder takes before it has decoded a pixel, measured with OpenJPEG. `header`: what follows
/// the markers; 0 if it is none.
double CodestreamMemory(Bytes header) {
    constexpr double kPerTile = 6000;
    constexpr double kPerComponent = 1100;
    const auto number = [&](std::size_t at, std::size_t bytes) {
        double value = 0;
        for (const unsigned char byte : header.subspan(at, bytes)) {
            value = value * 256 + byte;
        }
        return value;
    };
    const auto tiles = [&](std::size_t image, std::size_t tile, std::size_t origin) {
        return std::max(number(image, 4) - number(origin, 4), 0.0) / std::max(number(tile, 4), 1.0) + 1;
    };
    const double components = number(36, 2);
    const bool isHeader = number(0, 2) == kCodestreamHeader + 3 * components;
    return isHeader ? tiles(4, 20, 28) * tiles(8, 24, 32) * (kPerTile + components * kPerComponent) : 0;
}

double LittleEndian32(Bytes bytes, std::size_t at) {
    return bytes[at] + 256.0 * bytes[at + 1] + 65536.0 * bytes[at + 2] + 16777216.0 * bytes[at + 3];
}

std::string_view TextOf(Bytes bytes, std::size_t at, std::size_t length) {
    return std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()).substr(at, length);
}

/// Bytes of a BMP image with run-length encoding, which is decoded as a whole when the file is opened; 0 for
/// any other. `start`: of the file.
double RunLengthMemory(Bytes start) {
    constexpr std::size_t kHeader = 34;
    constexpr double kRunLength8 = 1;
    constexpr double kRunLength4 = 2;
    constexpr double kHalfRange = 2147483648.0;
    if (start.size() < kHeader || TextOf(start, 0, 2) != "BM") {
        return 0;
    }
    const double height = LittleEndian32(start, 22);  // negative when the first line is on top
    const double compression = LittleEndian32(start, 30);
    return compression == kRunLength8 || compression == kRunLength4
               ? LittleEndian32(start, 18) * std::min(height, 2 * kHalfRange - height)
               : 0;
}

/// Bytes of a compressed text of a PNG file, which is inflated when the file is opened; 0 for other chunks.
/// `header`: of a chunk, read by itself.
double InflatedText(Bytes header) {
    constexpr double kMostInflation = 1032;
    constexpr double kMostOfChunk = 8e6;  // a limit of the library
    const std::string_view type = header.size() == 8 ? TextOf(header, 4, 4) : "";
    if (type != "zTXt" && type != "iTXt") {
        return 0;
    }
    const double length = header[0] * 16777216.0 + header[1] * 65536.0 + header[2] * 256.0 + header[3];
    return std::min(length * kMostInflation, kMostOfChunk);
}

/// Times that a word stands in bytes, in any letter case. `word`: in lower case.
std::size_t CountWord(Bytes bytes, std::string_view word) {
    std::size_t count = 0;
    const auto isLetter = [](unsigned char byte, char letter) {
        return static_cast<char>(byte | 0x20U) == letter;
    };
    for (auto at = bytes.begin();; ++at, ++count) {
        at = std::search(at, bytes.end(), word.begin(), word.end(), isLetter);
        if (at == bytes.end()) {
            return count;
        }
    }
}

/// A file that GDAL has opened.
class OpenFile {
  public:
    /// `isHeader`: of an ENVI or EHdr raster.
    OpenFile(VSILFILE* file, std::uint64_t size, State& state, bool isMain, bool isHeader)
        : file_(file),
          size_(size),
          state_(state),
          left_(isMain ? state.limits.read : state.limits.sidecar),
          isWatched_(isMain && state.watch.look),
          isHeader_(isHeader) {}
    ~OpenFile() { VSIFCloseL(file_); }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    VSILFILE* File() const { return file_; }

    /// Like fseek.
    int Seek(vsi_l_offset offset, int whence) {
        hasTail_ = false;
        return VSIFSeekL(file_, offset, whence);
    }

    /// Like fread.
    std::size_t Read(void* buffer, std::size_t size, std::size_t count) {
        const std::size_t read = ReadFile(buffer, size, count);
        const std::string& tail = state_.watch.tail;
        if (!isWatched_ || size != 1 || read == count || hasTail_) {
            return read;
        }
        hasTail_ = true;
        return read + tail.copy(static_cast<char*>(buffer) + read, count - read);
    }

  private:
    std::size_t ReadFile(void* buffer, std::size_t size, std::size_t count) {
        const vsi_l_offset at = VSIFTellL(file_);
        const std::uint64_t bytes = std::min<std::uint64_t>(size * count, size_ > at ? size_ - at : 0);
        if (bytes > std::min(left_, state_.left)) {
            return Refuse(Text(text::kRasterTooMuchToRead));
        }
        left_ -= bytes;
        state_.left -= bytes;
        const std::size_t read = VSIFReadL(buffer, size, count, file_);
        const Bytes got(static_cast<const unsigned char*>(buffer), read * size);
        const std::wstring reason =
            isWatched_ ? state_.watch.look(at, std::as_bytes(got)) : RasterRefusal(got, at);
        return reason.empty() ? read : Refuse(reason);
    }

    /// Why a raster must not be read on from what was read of it; empty if it may.
    std::wstring RasterRefusal(Bytes got, vsi_l_offset at) {
        if (!CanBeDecoded(got, at)) {
            return Text(text::kRasterTooManyBlocks);
        }
        return CanBeUnpacked(got, at) && CanBeNamed(got) ? L"" : Text(text::kRasterTooMuchToRead);
    }

    std::size_t Refuse(const std::wstring& reason) {
        // What follows the first reason follows from it.
        state_.refusal = state_.refusal.empty() ? reason : state_.refusal;
        left_ = 0;
        return 0;
    }

    /// False if a JPEG 2000 codestream that begins in `bytes`, read at `at`, takes a decoder more memory than
    /// allowed. It is looked for in every format, since several embed it.
    bool CanBeDecoded(Bytes bytes, vsi_l_offset at) {
        constexpr std::size_t kOverlap = kCodestream.size() - 1;
        // The markers may lie across two reads.
        std::vector<unsigned char> seam = at == seamEnd_ ? seam_ : std::vector<unsigned char>();
        const vsi_l_offset seamAt = at - seam.size();
        const Bytes first = bytes.first(std::min(bytes.size(), kOverlap));
        const Bytes last = bytes.last(first.size());
        seam.insert(seam.end(), first.begin(), first.end());
        seam_.assign(last.begin(), last.end());
        seamEnd_ = at + bytes.size();
        return CodestreamsFit(seam, seamAt) && CodestreamsFit(bytes, at);
    }

    double MostForDecoder() const {
        return static_cast<double>(std::max(
            state_.limits.decoder, std::min(size_ / kDecoderShare, kMostShares * state_.limits.decoder)));
    }

    /// False if parts that are unpacked when the file is opened take more memory than allowed.
    bool CanBeUnpacked(Bytes bytes, vsi_l_offset at) {
        if (at >= unpackedTo_) {
            unpackedTo_ = at + 1;
            unpacked_ += at == 0 ? RunLengthMemory(bytes) : InflatedText(bytes);
        }
        return unpacked_ <= MostForDecoder();
    }

    /// False if there are too many of the names that GDAL compares with all before them: metadata domains,
    /// and keys of headers. Twenty thousand of them take seconds.
    bool CanBeNamed(Bytes bytes) {
        constexpr std::size_t kMostNames = 1000;
        names_ +=
            isHeader_ ? static_cast<std::size_t>(std::ranges::count(bytes, '=')) : CountWord(bytes, "domain");
        return names_ <= kMostNames;
    }

    bool CodestreamsFit(Bytes bytes, vsi_l_offset at) const {
        for (auto found = bytes.begin();; ++found) {
            found = std::search(found, bytes.end(), kCodestream.begin(), kCodestream.end());
            if (found == bytes.end()) {
                return true;
            }
            const vsi_l_offset header =
                at + static_cast<std::size_t>(found - bytes.begin()) + kCodestream.size();
            if (CodestreamMemory(Peek(header)) > MostForDecoder()) {
                return false;
            }
        }
    }

    std::array<unsigned char, kCodestreamHeader> Peek(vsi_l_offset at) const {
        std::array<unsigned char, kCodestreamHeader> bytes{};
        const vsi_l_offset now = VSIFTellL(file_);
        VSIFSeekL(file_, at, SEEK_SET);
        VSIFReadL(bytes.data(), 1, bytes.size(), file_);
        VSIFSeekL(file_, now, SEEK_SET);
        return bytes;
    }

    // Large images may take more than the limit: this share of their file, up to so many limits.
    static constexpr std::uint64_t kDecoderShare = 8;
    static constexpr std::uint64_t kMostShares = 4;

    VSILFILE* const file_;
    const std::uint64_t size_;
    State& state_;
    std::uint64_t left_;
    const bool isWatched_;
    bool hasTail_ = false;  ///< read since the last seek
    const bool isHeader_;
    double unpacked_ = 0;          ///< bytes
    vsi_l_offset unpackedTo_ = 0;  ///< what begins before has been counted
    std::size_t names_ = 0;
    std::vector<unsigned char> seam_;
    vsi_l_offset seamEnd_ = 0;
};

/// Path of a name without the view's prefix.
std::wstring NativeOf(const char* name) {
    return NativePath(FromUtf8(name));
}

/// True for an overview or a mask in a file of its own: any driver would open it.
bool IsDatasetBeside(const std::wstring& path) {
    const std::wstring extension = UpperExtensionOf(path);
    return extension == L".OVR" || extension == L".MSK";
}

/// True if GDAL may take the file for an .aux file of the HFA driver: another driver would recognise it by
/// words within its start.
bool IsAuxOf(VSILFILE* file) {
    std::array<char, kStartBytes> start{};
    const std::string_view bytes(start.data(), VSIFReadL(start.data(), 1, start.size(), file));
    VSIFSeekL(file, 0, SEEK_SET);
    return bytes.starts_with("EHFA_HEADER_TAG") && bytes.find('<') == std::string_view::npos &&
           bytes.find('{') == std::string_view::npos;
}

/// True if GDAL may see what lies at the path.
bool IsShown(const State& state, const std::wstring& path, FileKind kind) {
    return kind == FileKind::Folder ||
           (kind == FileKind::File && (path == state.path || !IsDatasetBeside(path)));
}

// No exception may pass through GDAL's C code.
template <typename Function>
auto Guarded(Function function, decltype(function()) failure) noexcept -> decltype(function()) {
    try {
        return current == nullptr ? failure : function();
    } catch (const std::exception&) {
        return failure;
    }
}

int Stat(void*, const char* name, VSIStatBufL* status, int flags) {
    return Guarded(
        [&] {
            const std::wstring path = NativeOf(name);
            return IsShown(*current, path, KindOf(path)) ? VSIStatExL(ToUtf8(path).c_str(), status, flags)
                                                         : -1;
        },
        -1);
}

void* Open(void*, const char* name, const char* access) {
    return Guarded(
        [&]() -> void* {
            const std::wstring path = NativeOf(name);
            const FileKind kind = KindOf(path);
            if (kind != FileKind::File || !IsShown(*current, path, kind) ||
                std::string_view(access).find_first_of("wa+") != std::string_view::npos) {
                return nullptr;
            }
            VSILFILE* const file = VSIFOpenL(ToUtf8(path).c_str(), "rb");
            const bool isMain = path == current->path;
            if (file == nullptr || (!isMain && UpperExtensionOf(path) == L".AUX" && !IsAuxOf(file))) {
                if (file != nullptr) {
                    VSIFCloseL(file);
                }
                return nullptr;
            }
            return new OpenFile(file, FileSizeOf(path).value_or(0), *current, isMain,
                                UpperExtensionOf(path) == L".HDR");
        },
        nullptr);
}

char** ReadDir(void*, const char* name, int) {
    // Never destroyed: a worker may still ask while the process ends.
    static auto* const folders = new FolderListing(kFoldersKept);
    return Guarded(
        [&]() -> char** {
            if (PathKey(NativeOf(name)) != PathKey(FolderOf(current->path))) {
                return nullptr;
            }
            const GdalListPtr names = folders->Beside(current->path);
            return names ? CSLDuplicate(const_cast<char**>(names->Get())) : nullptr;
        },
        nullptr);
}

OpenFile& FileOf(void* handle) {
    return *static_cast<OpenFile*>(handle);
}

/// Adds the view to GDAL's file systems and returns its prefix. A copy of this code in another library has a
/// prefix of its own.
std::string Install() {
    VSIFilesystemPluginCallbacksStruct* const calls = VSIAllocFilesystemPluginCallbacksStruct();
    calls->stat = Stat;
    calls->open = Open;
    calls->read_dir = ReadDir;
    calls->tell = [](void* handle) { return VSIFTellL(FileOf(handle).File()); };
    calls->seek = [](void* handle, vsi_l_offset offset, int whence) {
        return FileOf(handle).Seek(offset, whence);
    };
    calls->read = [](void* handle, void* buffer, size_t size, size_t count) {
        return Guarded([&] { return FileOf(handle).Read(buffer, size, count); }, std::size_t{0});
    };
    calls->eof = [](void* handle) { return VSIFEofL(FileOf(handle).File()); };
    calls->close = [](void* handle) {
        delete &FileOf(handle);
        return 0;
    };
    std::string prefix = fmt::format("/vsiorvex{:x}/", reinterpret_cast<std::uintptr_t>(&Stat));
    const int result = VSIInstallPluginHandler(prefix.c_str(), calls);
    VSIFreeFilesystemPluginCallbacksStruct(calls);
    if (result != 0) {
        throw std::bad_alloc();
    }
    return prefix;
}

const std::string& Prefix() {
    static const auto* const prefix = new std::string(Install());
    return *prefix;
}

}  // namespace

void GdalAccess::Install() {
    Prefix();
}

GdalAccess::GdalAccess(const std::wstring& path, const InspectionLimits& limits, ReadWatch watch)
    : state_(new State{NativePath(path), limits, limits.read, std::move(watch)}),
      name_(Prefix() + ToUtf8(path)),
      outer_(current) {
    current = state_.get();
}

GdalAccess::~GdalAccess() {
    current = outer_;
}

std::string GdalAccess::PathOf(std::string text) {
    for (std::size_t at = text.find(Prefix()); at != std::string::npos; at = text.find(Prefix(), at)) {
        text.erase(at, Prefix().size());
    }
    return text;
}

std::wstring GdalAccess::Refusal() const {
    return state_->refusal;
}

}  // namespace orvex
