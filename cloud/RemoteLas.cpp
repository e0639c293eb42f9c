#include "cloud/RemoteLas.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "support/ByteSource.h"
#include "support/LDataError.h"
#include "support/SignedUrl.h"
#include "support/Text.h"

namespace orvex {
namespace {

// Header, VLRs and their CRS lie within the first part of nearly every file, an EVLR and its CRS in one of
// the others, and both together below the limit of bytes.
constexpr std::uint64_t kFirstRead = std::uint64_t{64} << 10U;
constexpr std::uint64_t kFurtherRead = std::uint64_t{8} << 10U;

/// Parts of a remote file, each requested once.
class RemoteSource final : public ByteSource {
  public:
    RemoteSource(RangeReader& reader, const CloudCall& call, std::chrono::milliseconds most)
        : reader_(reader), call_(call), end_(Clock::now() + most) {}

    SystemError Size(std::uint64_t& size) const override {
        if (parts_.empty()) {
            if (const SystemError error = Request(0, kFirstRead)) {
                return error;
            }
        }
        size = size_;
        return 0;
    }

    SystemError ReadAt(std::uint64_t offset, std::span<std::byte> buffer, std::size_t& read) const override {
        read = 0;
        std::uint64_t size = 0;
        if (const SystemError error = Size(size)) {
            return error;
        }
        const std::uint64_t wanted = std::min<std::uint64_t>(buffer.size(), size - std::min(size, offset));
        while (read < wanted) {
            const std::span<const std::byte> known = Known(offset + read);
            if (known.empty()) {
                if (const SystemError error = RequestPart(offset + read, wanted - read)) {
                    return error;
                }
                continue;
            }
            const std::size_t count = std::min<std::size_t>(known.size(), wanted - read);
            std::ranges::copy(known.first(count), buffer.begin() + static_cast<std::ptrdiff_t>(read));
            read += count;
        }
        return 0;
    }

    /// Of the first request that failed.
    const CloudOutcome& Outcome() const { return outcome_; }

  private:
    using Clock = std::chrono::steady_clock;
    static constexpr SystemError kFailed = -2;  // the outcome says why

    struct Part {
        std::uint64_t offset;
        std::vector<std::byte> bytes;
    };

    /// The bytes from an offset that were received; empty if none.
    std::span<const std::byte> Known(std::uint64_t offset) const {
        for (const Part& part : parts_) {
            if (offset >= part.offset && offset - part.offset < part.bytes.size()) {
                return std::span(part.bytes).subspan(static_cast<std::size_t>(offset - part.offset));
            }
        }
        return {};
    }

    /// Requests `wanted` unknown bytes, or more in the hope that they will be wanted next.
    SystemError RequestPart(std::uint64_t offset, std::uint64_t wanted) const {
        std::uint64_t length = std::min(std::max(wanted, kFurtherRead), size_ - offset);
        for (const Part& part : parts_) {
            if (part.offset > offset) {
                length = std::min(length, part.offset - offset);
            }
        }
        const std::uint64_t left = kMostRemoteBytes - std::min(kMostRemoteBytes, reader_.Transferred());
        if (std::min(wanted, length) > left || parts_.size() == kMostRemoteReads) {
            return kNoMoreReads;
        }
        return Request(offset, std::min(length, left));
    }

    /// Reads until the time is up: a server that sends little by little is not waited for.
    CloudOutcome Read(std::uint64_t offset, std::span<std::byte> buffer, std::size_t& read) const {
        bool isTimeUp = false;
        const auto isCancelled = [&] {
            isTimeUp = Clock::now() >= end_;
            return isTimeUp || (call_.isCancelled && call_.isCancelled());
        };
        CloudOutcome outcome = reader_.Read(offset, buffer, read, {isCancelled, call_.waiting});
        if (outcome.status == CloudStatus::Cancelled && isTimeUp) {
            return {CloudStatus::Unreachable, Text(text::kRemoteTooSlow)};
        }
        return outcome;
    }

    SystemError Request(std::uint64_t offset, std::uint64_t length) const {
        if (outcome_.status != CloudStatus::Ok) {
            return kFailed;
        }
        std::vector<std::byte> bytes(static_cast<std::size_t>(length));
        std::size_t read = 0;
        outcome_ = Read(offset, bytes, read);
        const std::optional<std::uint64_t> size = reader_.FileSize();
        size_ = size.value_or(0);
        const std::uint64_t promised = std::min(length, size_ - std::min(size_, offset));
        if (outcome_.status == CloudStatus::Ok && (!size || read < promised)) {
            outcome_ = {CloudStatus::BadAnswer, Text(text::kRemoteShortAnswer)};
        }
        if (outcome_.status != CloudStatus::Ok) {
            return kFailed;
        }
        bytes.resize(static_cast<std::size_t>(promised));
        parts_.push_back({offset, std::move(bytes)});
        return 0;
    }

    // Reading is what fills the cache.
    RangeReader& reader_;
    const CloudCall& call_;
    const Clock::time_point end_;
    mutable std::vector<Part> parts_;
    mutable std::uint64_t size_ = 0;
    mutable CloudOutcome outcome_;
};

std::wstring ReasonOf(const CloudOutcome& outcome) {
    return outcome.status == CloudStatus::Cancelled ? Text(text::kRemoteCancelled) : outcome.message;
}

}  // namespace

RemoteLas InspectRemoteLas(RangeReader& reader, const std::wstring& shownUrl, const CloudCall& call,
                           std::chrono::milliseconds most) {
    RemoteLas remote;
    const RemoteSource source(reader, call, most);
    remote.row = InspectLasSource(shownUrl, source);
    remote.status = source.Outcome().status;
    if (remote.status != CloudStatus::Ok) {
        remote.row = UnreadLasFile(shownUrl, ReasonOf(source.Outcome()));
        remote.row.fileSize = reader.FileSize().value_or(0);
    }
    remote.transferred = reader.Transferred();
    return remote;
}

RemoteLas InspectRemoteLas(const std::wstring& url, const CloudCall& call) {
    const std::wstring shownUrl = ShownUrl(url);
    try {
        return InspectRemoteLas(*openUrl(url), shownUrl, call);
    } catch (...) {
        return {UnreadLasFile(shownUrl, CurrentExceptionText()), 0, CloudStatus::BadAnswer};
    }
}

}  // namespace orvex
