// Parts of files: over HTTP by range requests, of a file: URL from the disk.
#include <algorithm>
#include <charconv>
#include <cstring>
#include <limits>

#include "host/cloudaccount/CloudTexts.h"
#include "host/cloudaccount/HttpClient.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/MappedFile.h"
#include "support/SignedUrl.h"

namespace orvex {
namespace {

using cloud::CloudError;
using cloud::HttpAnswer;

/// Value of the header Content-Range: "bytes 0-99/1234", "bytes 0-99/*" or "bytes */1234".
struct ContentRange {
    std::optional<std::uint64_t> first;
    std::uint64_t last = 0;
    std::optional<std::uint64_t> total;
};

bool TakeNumber(std::string_view& text, std::uint64_t& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return error == std::errc();
}

bool TakeText(std::string_view& text, std::string_view expected) {
    const bool found = text.starts_with(expected);
    text.remove_prefix(found ? expected.size() : 0);
    return found;
}

std::optional<ContentRange> ReadContentRange(const QByteArray& value) {
    const QByteArray trimmed = value.trimmed();
    std::string_view text(trimmed.data(), static_cast<std::size_t>(trimmed.size()));
    ContentRange range;
    if (!TakeText(text, "bytes ")) {
        return std::nullopt;
    }
    if (!TakeText(text, "*")) {
        range.first = 0;
        if (!TakeNumber(text, *range.first) || !TakeText(text, "-") || !TakeNumber(text, range.last)) {
            return std::nullopt;
        }
    }
    if (!TakeText(text, "/")) {
        return std::nullopt;
    }
    if (!TakeText(text, "*")) {
        range.total = 0;
        if (!TakeNumber(text, *range.total)) {
            return std::nullopt;
        }
    }
    return text.empty() ? std::optional(range) : std::nullopt;
}

class HttpReader final : public RangeReader {
  public:
    explicit HttpReader(QUrl url) : url_(std::move(url)) {}

    CloudOutcome Read(std::uint64_t offset, std::span<std::byte> buffer, std::size_t& read,
                      const CloudCall& call) override {
        read = 0;
        if (buffer.empty() || (size_ && offset >= *size_)) {
            return {};
        }
        try {
            read = ReadPart(offset, buffer, call);
            return {};
        } catch (...) {
            return cloud::CurrentOutcome();
        }
    }
    std::optional<std::uint64_t> FileSize() const override { return size_; }
    std::uint64_t Transferred() const override { return client_.Received(); }

  private:
    std::size_t ReadPart(std::uint64_t offset, std::span<std::byte> buffer, const CloudCall& call) {
        constexpr std::uint64_t most = std::numeric_limits<std::int64_t>::max();
        const std::uint64_t end =
            std::min({size_.value_or(most), most, offset + std::min<std::uint64_t>(buffer.size(), most)});
        if (offset >= end) {
            return 0;
        }
        cloud::HttpRequest request;
        request.url = url_;
        request.range = "bytes=" + QByteArray::number(static_cast<qulonglong>(offset)) + "-" +
                        QByteArray::number(static_cast<qulonglong>(end - 1));
        request.mostBytes = static_cast<std::int64_t>(end - offset);
        request.checkHeaders = [&](const HttpAnswer& headers) { CheckPart(headers, offset, end); };
        const HttpAnswer answer = client_.Get(request, call);
        if (answer.status == 416) {
            TakeEnd(answer, offset);
            return 0;
        }
        CheckLength(answer);
        // A redirect is followed once, not for every part.
        url_ = answer.url;
        std::memcpy(buffer.data(), answer.body.constData(), static_cast<std::size_t>(answer.body.size()));
        return static_cast<std::size_t>(answer.body.size());
    }

    /// The part that was asked for, or the beginning of it if the file ends there.
    void CheckPart(const HttpAnswer& headers, std::uint64_t offset, std::uint64_t end) {
        if (headers.status != 206) {
            Throw(CloudStatus::NoRanges, text::kCloudNoRanges, headers);
        }
        const auto range = ReadContentRange(headers.contentRange);
        if (!range || range->first != offset || range->last < offset || range->last >= end ||
            (range->total && range->last >= *range->total)) {
            Throw(CloudStatus::BadAnswer, text::kCloudRangeWrong, headers);
        }
        RefuseChange(headers, range->total);
        if (range->last + 1 < end && range->total.value_or(range->last + 1) != range->last + 1) {
            Throw(CloudStatus::BadAnswer, text::kCloudRangeWrong, headers);
        }
        expected_ = range->last - offset + 1;
    }

    void CheckLength(const HttpAnswer& answer) const {
        const auto length = static_cast<std::uint64_t>(answer.body.size());
        if (length < expected_) {
            Throw(CloudStatus::Unreachable, text::kCloudCutOff, answer);
        }
        if (length > expected_) {
            Throw(CloudStatus::BadAnswer, text::kCloudRangeWrong, answer);
        }
    }

    /// The file has no byte at the offset.
    void TakeEnd(const HttpAnswer& answer, std::uint64_t offset) {
        const auto range = ReadContentRange(answer.contentRange);
        const auto total = range ? range->total : std::nullopt;
        if (size_) {
            Throw(CloudStatus::BadAnswer, text::kCloudChanged, answer);
        }
        if (total && *total > offset) {
            Throw(CloudStatus::BadAnswer, text::kCloudRangeWrong, answer);
        }
        size_ = total;
    }

    void RefuseChange(const HttpAnswer& headers, std::optional<std::uint64_t> total) {
        const bool isOther = !eTag_.isEmpty() && !headers.eTag.isEmpty() && eTag_ != headers.eTag;
        if (isOther || (size_ && total && *size_ != *total)) {
            Throw(CloudStatus::BadAnswer, text::kCloudChanged, headers);
        }
        eTag_ = headers.eTag.isEmpty() ? eTag_ : headers.eTag;
        size_ = total ? total : size_;
    }

    [[noreturn]] static void Throw(CloudStatus status, StringId text, const HttpAnswer& answer) {
        throw CloudError(status, cloud::HostOutcome(status, text, answer.url).message);
    }

    QUrl url_;
    cloud::HttpClient client_;
    std::optional<std::uint64_t> size_;
    QByteArray eTag_;
    std::uint64_t expected_ = 0;
};

class FileReader final : public RangeReader {
  public:
    explicit FileReader(std::wstring path) : path_(std::move(path)) {}

    CloudOutcome Read(std::uint64_t offset, std::span<std::byte> buffer, std::size_t& read,
                      const CloudCall& call) override {
        read = 0;
        if (call.isCancelled && call.isCancelled()) {
            return {CloudStatus::Cancelled};
        }
        if (CloudOutcome outcome = Open(); outcome.status != CloudStatus::Ok) {
            return outcome;
        }
        std::uint64_t size = 0;
        if (file_.Size(size) != 0 || size != size_) {
            return {CloudStatus::BadAnswer, FormatText(Text(text::kCloudChanged), {path_})};
        }
        if (offset >= size) {
            return {};
        }
        const SystemError error = file_.ReadAt(offset, buffer, read);
        transferred_ += read;
        return error == 0 ? CloudOutcome{} : Failure(CloudStatus::Unreachable, SystemErrorText(error));
    }
    std::optional<std::uint64_t> FileSize() const override { return size_; }
    std::uint64_t Transferred() const override { return transferred_; }

  private:
    CloudOutcome Open() {
        if (file_.IsOpen()) {
            return {};
        }
        const FileKind kind = KindOf(path_);
        if (kind == FileKind::Missing) {
            return Failure(CloudStatus::NotFound, Text(text::kFileMissing));
        }
        if (kind == FileKind::Folder || kind == FileKind::Other) {
            return Failure(CloudStatus::NotFound, Text(text::kCloudNoRegularFile));
        }
        std::uint64_t size = 0;
        if (file_.Open(path_, true) != 0 || file_.Size(size) != 0) {
            return Failure(CloudStatus::Forbidden, Text(text::kFileOpenRefused));
        }
        size_ = size;
        return {};
    }
    CloudOutcome Failure(CloudStatus status, const std::wstring& reason) const {
        return {status, FormatText(Text(text::kCloudFileUnreadable), {path_, reason})};
    }

    std::wstring path_;
    MappedFile file_;
    std::optional<std::uint64_t> size_;
    std::uint64_t transferred_ = 0;
};

class RefusedUrl final : public RangeReader {
  public:
    explicit RefusedUrl(std::wstring message) : message_(std::move(message)) {}

    CloudOutcome Read(std::uint64_t, std::span<std::byte>, std::size_t& read, const CloudCall&) override {
        read = 0;
        return {CloudStatus::NotFound, message_};
    }
    std::optional<std::uint64_t> FileSize() const override { return std::nullopt; }
    std::uint64_t Transferred() const override { return 0; }

  private:
    std::wstring message_;
};

/// Path of a file: URL; empty if that is not on a drive of this machine. Where paths have drives, every other
/// form can name a server or a device.
std::wstring LocalPath(const QUrl& url) {
    const std::wstring path = url.host().isEmpty() ? url.toLocalFile().toStdWString() : std::wstring();
    const bool hasDrives = IsSeparator(L'\\');
    const bool isOnDrive = path.size() > 2 && path[1] == L':' && IsSeparator(path[2]);
    const bool isRooted = path.size() > 1 && path[0] == L'/' && path[1] != L'/';
    const bool hasNul = path.find(L'\0') != std::wstring::npos;
    return !hasNul && (hasDrives ? isOnDrive : isRooted) ? NativePath(path) : std::wstring();
}

}  // namespace

std::unique_ptr<RangeReader> openUrl(const std::wstring& url) {
    QUrl parsed(QString::fromStdWString(url).trimmed());
    const std::wstring shown = WithoutControls(ShownUrl(url));
    if (parsed.isValid() && parsed.scheme() == "file") {
        const std::wstring path = LocalPath(parsed);
        if (path.empty()) {
            return std::make_unique<RefusedUrl>(FormatText(Text(text::kCloudFileNotLocal), {shown}));
        }
        return std::make_unique<FileReader>(path);
    }
    if (!parsed.isValid() || parsed.host().isEmpty() ||
        (parsed.scheme() != "https" && parsed.scheme() != "http")) {
        return std::make_unique<RefusedUrl>(FormatText(Text(text::kCloudUrlInvalid), {shown}));
    }
    parsed.setUserInfo({});
    parsed.setFragment({});
    return std::make_unique<HttpReader>(parsed);
}

}  // namespace orvex
