#pragma once
#include <QObject>
#include <QString>
#include <functional>
#include <memory>
#include <string>

namespace orvex {

/// The embedded preview of one file at a time, read and decoded on threads of its own, so that a drive that
/// does not answer holds up nothing. A read that is under way when the object ends is left to itself.
class FilePreview final : public QObject {
    Q_OBJECT

  public:
    /// Returns the bytes of a JPEG file, empty for none. Called on worker threads, several at a time.
    using Read = std::function<std::string(const std::wstring& path)>;

    explicit FilePreview(Read read, QObject* parent = nullptr);
    ~FilePreview() override;

    /// The file's preview as HTML; a text while it is being read, and when there is none. A file other than
    /// the last one asked for is read now.
    QString Html(const std::wstring& path);
    /// Has the file read again when it is asked for next.
    void Forget();

  signals:
    void Changed();  ///< the preview of the last file asked for is there

  private:
    struct Shared;

    static void Start(const std::shared_ptr<Shared>& shared);
    static void Work(const std::shared_ptr<Shared>& shared);
    void Take(const std::wstring& path, const QString& html);

    std::wstring path_;
    QString html_;
    std::shared_ptr<Shared> shared_;
};

}  // namespace orvex
