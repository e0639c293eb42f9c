#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <limits>

#include "support/FileTime_linux.h"
#include "support/MappedFile.h"
#include "support/Text.h"

namespace orvex {
namespace {

int Descriptor(std::intptr_t handle) {
    return static_cast<int>(handle);
}

}  // namespace

void MappedView::Unmap() noexcept {
    if (base_ != nullptr) {
        munmap(base_, baseLength_);
    }
}

SystemError MappedFile::Open(const std::wstring& path, bool readOnly) {
    Close();
    const std::string name = ToUtf8(path);
    // A name that is a pipe or a device must not make the caller wait for a writer.
    const int descriptor = open(name.c_str(), (readOnly ? O_RDONLY : O_RDWR) | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) {
        return errno;
    }
    struct stat status {};
    if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
        const SystemError error = S_ISDIR(status.st_mode) ? EISDIR : (errno != 0 ? errno : EINVAL);
        close(descriptor);
        return error;
    }
    handle_ = descriptor;
    readOnly_ = readOnly;
    openedSize_ = static_cast<std::uint64_t>(status.st_size);
    openedTime_ = FileTimeOf(status.st_mtim);
    return 0;
}

// Views are made from the file itself here; what is kept is that they were asked for.
SystemError MappedFile::CreateMapping() {
    mapping_ = handle_;
    return 0;
}

void MappedFile::Close() {
    if (handle_ != kNone) {
        close(Descriptor(handle_));
        handle_ = kNone;
        mapping_ = kNone;
    }
}

SystemError MappedFile::Size(std::uint64_t& size) const {
    struct stat status {};
    if (fstat(Descriptor(handle_), &status) != 0) {
        return errno;
    }
    size = static_cast<std::uint64_t>(status.st_size);
    return 0;
}

SystemError MappedFile::ReadAt(std::uint64_t offset, std::span<std::byte> buffer, std::size_t& read) const {
    read = 0;
    if (offset > static_cast<std::uint64_t>(std::numeric_limits<off_t>::max())) {
        return EINVAL;
    }
    while (read < buffer.size()) {
        const ssize_t got = pread(Descriptor(handle_), buffer.data() + read, buffer.size() - read,
                                  static_cast<off_t>(offset + read));
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            return errno;
        }
        if (got == 0) {
            break;
        }
        read += static_cast<std::size_t>(got);
    }
    return 0;
}

SystemError MappedFile::WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) const {
    if (offset > static_cast<std::uint64_t>(std::numeric_limits<off_t>::max()) - bytes.size()) {
        return EFBIG;
    }
    for (std::size_t written = 0; written < bytes.size();) {
        const ssize_t put = pwrite(Descriptor(handle_), bytes.data() + written, bytes.size() - written,
                                   static_cast<off_t>(offset + written));
        if (put < 0 && errno == EINTR) {
            continue;
        }
        if (put <= 0) {
            return put < 0 ? errno : ENOSPC;
        }
        written += static_cast<std::size_t>(put);
    }
    return 0;
}

SystemError MappedFile::Reserve(std::uint64_t size) const {
    if (size > static_cast<std::uint64_t>(std::numeric_limits<off_t>::max())) {
        return EFBIG;
    }
    const int descriptor = Descriptor(handle_);
    const auto length = static_cast<off_t>(size);
    if (ftruncate(descriptor, length) != 0) {
        return errno;
    }
    // Not every file system can; the C library's own way would write every block.
    if (length == 0 || fallocate(descriptor, 0, 0, length) == 0 || errno == EOPNOTSUPP || errno == ENOSYS) {
        return 0;
    }
    return errno;
}

SystemError MappedFile::Sync() const {
    return fsync(Descriptor(handle_)) == 0 ? 0 : errno;
}

SystemError MappedFile::Map(std::uint64_t offset, std::uint64_t length, bool writable,
                            MappedView& view) const {
    if (mapping_ == kNone) {
        return EBADF;
    }
    std::uint64_t size = 0;
    if (const SystemError error = Size(size)) {
        return error;
    }
    if (length == 0 || offset > size || length > size - offset) {
        return EINVAL;
    }
    const std::uint64_t skip = offset % AllocationGranularity();
    const std::size_t mapped = static_cast<std::size_t>(length + skip);
    void* base = mmap(nullptr, mapped, writable ? PROT_READ | PROT_WRITE : PROT_READ, MAP_SHARED,
                      Descriptor(mapping_), static_cast<off_t>(offset - skip));
    if (base == MAP_FAILED) {
        return errno;
    }
    view = MappedView(static_cast<std::byte*>(base), mapped, static_cast<std::size_t>(skip),
                      static_cast<std::size_t>(length));
    return 0;
}

std::uint64_t MappedFile::AllocationGranularity() {
    return static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
}

}  // namespace orvex
