#include "dialog/details/FilePreview.h"

#include <QBuffer>
#include <QImageReader>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

#include "dialog/details/DetailsHtml.h"
#include "support/ModuleUse.h"

namespace orvex {
namespace {

constexpr QSize kShown{240, 180};
constexpr qint64 kMostPixels = qint64{8} << 20;  // a damaged preview may claim any size

// More than one, because one can wait in vain for a drive.
constexpr int kMostThreads = 3;

/// The preview as an image in HTML; empty when it cannot be decoded.
QString ImageHtml(const std::string& jpeg) {
    if (!jpeg.starts_with("\xff\xd8\xff")) {  // the decoder would complain on the host's error output
        return {};
    }
    QByteArray bytes = QByteArray::fromStdString(jpeg);
    QBuffer buffer(&bytes);
    QImageReader reader(&buffer, "jpeg");
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (size.isEmpty() || qint64{size.width()} * size.height() > kMostPixels) {
        return {};
    }
    reader.setScaledSize(size.scaled(kShown, Qt::KeepAspectRatio).expandedTo({1, 1}));
    const QImage image = reader.read();
    QByteArray png;
    QBuffer target(&png);
    if (image.isNull() || !image.save(&target, "PNG")) {
        return {};
    }
    return QStringLiteral("<img src=\"data:image/png;base64,%1\" width=\"%2\" height=\"%3\">")
        .arg(QString::fromLatin1(png.toBase64()))
        .arg(image.width())
        .arg(image.height());
}

}  // namespace

/// What the threads own together with the object.
struct FilePreview::Shared {
    explicit Shared(Read reading) : read(std::move(reading)) {}

    const Read read;
    std::mutex lock;
    std::condition_variable decoded;
    FilePreview* owner = nullptr;        ///< null once it has ended
    std::optional<std::wstring> wanted;  ///< the file to read next
    int threads = 0;
    int decoding = 0;  ///< threads within Qt, for which the owner waits: the application may end after it
    ModuleUse use;
};

FilePreview::FilePreview(Read read, QObject* parent)
    : QObject(parent), shared_(std::make_shared<Shared>(std::move(read))) {
    shared_->owner = this;
}

FilePreview::~FilePreview() {
    std::unique_lock guard(shared_->lock);
    shared_->owner = nullptr;
    shared_->decoded.wait(guard, [this] { return shared_->decoding == 0; });
}

void FilePreview::Forget() {
    path_.clear();
}

QString FilePreview::Html(const std::wstring& path) {
    if (path != path_) {
        path_ = path;
        html_ = TextHtml(Text(text::kPreviewReading));
        const std::lock_guard guard(shared_->lock);
        shared_->wanted = path;
        if (shared_->threads < kMostThreads) {
            Start(shared_);
        }
    }
    return html_;
}

/// Under the lock, which keeps the thread from ending while it is detached.
void FilePreview::Start(const std::shared_ptr<Shared>& shared) {
    std::thread(Work, shared).detach();
    ++shared->threads;
}

void FilePreview::Work(const std::shared_ptr<Shared>& shared) {
    std::unique_lock guard(shared->lock);
    while (shared->owner != nullptr && shared->wanted.has_value()) {
        const std::wstring path = *std::exchange(shared->wanted, std::nullopt);
        guard.unlock();
        std::string jpeg;
        try {
            jpeg = shared->read(path);
        } catch (...) {  // a file without a preview is no reason for a message
        }
        guard.lock();
        if (shared->owner == nullptr) {
            break;
        }
        ++shared->decoding;
        guard.unlock();
        QString html = ImageHtml(jpeg);
        guard.lock();
        --shared->decoding;
        if (FilePreview* owner = shared->owner) {
            QMetaObject::invokeMethod(
                owner, [owner, path, html] { owner->Take(path, html); }, Qt::QueuedConnection);
        }
        shared->decoded.notify_all();
    }
    --shared->threads;
}

void FilePreview::Take(const std::wstring& path, const QString& html) {
    if (path == path_) {
        html_ = html.isEmpty() ? TextHtml(Text(text::kPreviewNone)) : html;
        emit Changed();
    }
}

}  // namespace orvex
