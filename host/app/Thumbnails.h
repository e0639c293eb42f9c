#pragma once
#include <QImage>
#include <QObject>
#include <QString>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

class QThreadPool;

namespace orvex {

struct FeatureShapes;

/// What the map shows of a file: a small picture of a raster, or the shapes of a shapefile.
struct Thumbnail {
    QImage image;     ///< Format_ARGB32_Premultiplied; null when there is none
    QString problem;  ///< why there is nothing to show, in the user's words; empty when there is something
    std::shared_ptr<const FeatureShapes> shapes{};  ///< of a shapefile; null when there are none
};

/// Limits on the work for one thumbnail.
struct ThumbnailLimits {
    int longSide = 512;                     ///< pixels of the thumbnail
    std::size_t vertices = 100000;          ///< of a shapefile
    double decodedBytes = 768 << 20;        ///< samples that have to be decoded for it
    double blockBytes = 256 << 20;          ///< one block, which is decoded as a whole
    std::chrono::milliseconds time{20000};  ///< for reading
};

/// Reads a raster at reduced size, from its overviews where it has them: colours as they are, palettes
/// resolved, everything else in shades of grey from the lowest to the highest value; no-data pixels are
/// transparent. Nothing is written. `isCancelled` is asked between pieces; a cancelled thumbnail has neither
/// image nor problem. Never throws, except for want of memory. Safe from any thread.
Thumbnail ReadThumbnail(const std::wstring& path, const std::function<bool()>& isCancelled,
                        const ThumbnailLimits& limits = {});

/// Thumbnails of the files on the map, read on worker threads.
class Thumbnails final : public QObject {
    Q_OBJECT

  public:
    /// Reads one thumbnail; returns soon after it is cancelled.
    using Read = std::function<Thumbnail(const std::wstring& path, const std::function<bool()>& isCancelled,
                                         const ThumbnailLimits& limits)>;

    explicit Thumbnails(QObject* parent = nullptr, Read read = ReadThumbnail);
    /// Cancels everything. A reader that does not return within a second, as on a drive that has gone, is
    /// left to itself.
    ~Thumbnails() override;

    /// Sets the rasters whose thumbnails are wanted: new ones are read in this order; those no longer wanted
    /// are cancelled and forgotten.
    void Request(const std::vector<std::wstring>& paths);
    /// The thumbnail of a raster; null until it has been read.
    const Thumbnail* Find(const std::wstring& path) const;
    bool IsLoading() const { return !jobs_.empty(); }

    /// Pixels on the long side of each thumbnail, so that `count` of them take at most 256 MB.
    static int LongSideFor(std::size_t count);
    /// Vertices of each shapefile, so that `count` of them take at most some 400,000.
    static std::size_t VerticesFor(std::size_t count);

  signals:
    /// A thumbnail, or the reason why there is none, has come in.
    void Changed();

  private:
    struct Job;
    struct Link;

    void Start(const std::wstring& path);
    void Take(const std::shared_ptr<Job>& job, const Thumbnail& thumbnail);

    Read read_;
    std::shared_ptr<Link> link_;
    std::unique_ptr<QThreadPool> pool_;
    std::map<std::wstring, std::shared_ptr<Job>> jobs_;  ///< not read yet
    std::map<std::wstring, Thumbnail> thumbnails_;
};

}  // namespace orvex
