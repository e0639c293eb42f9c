#pragma once
#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>

namespace orvex {

/// What the host remembers between its runs, in one small file of the user's. A file that cannot be read
/// gives the defaults; one that cannot be written is let be.
class HostPreferences {
  public:
    /// An empty path remembers nothing beyond the process.
    explicit HostPreferences(QString path);

    /// The user's own file.
    static QString DefaultPath();

    const QStringList& RecentProjects() const { return recent_; }
    /// Puts a project folder on top of the list, which keeps the latest ten.
    void AddRecentProject(const QString& folder);
    void RemoveRecentProject(const QString& folder);

    QString dataFolder;  ///< where rasters were last added from
    QByteArray windowGeometry;
    QByteArray windowState;
    bool dark = false;
    /// Service of the cloud account, without its token: empty if the user has signed out, nullopt if nothing
    /// was chosen yet.
    std::optional<QString> cloudService;
    QString sampleAccount;  ///< of this process only: folder of an account for who has none; empty: none
    bool writesBesideData = true;  ///< of this process only: pyramids may be built beside rasters

    /// Through a temporary name, renamed when complete.
    void Save() const;

  private:
    QString path_;
    QStringList recent_;
};

}  // namespace orvex
