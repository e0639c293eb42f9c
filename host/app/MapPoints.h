#pragma once
#include <QImage>
#include <QObject>
#include <QRectF>
#include <QString>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "orvexcommon/LasCompanion.h"

class QThreadPool;

namespace orvex {

/// A LAS file whose points the map may show.
struct PointFile {
    std::wstring path;
    QRectF extent;     ///< in the units of the CRS, as all here
    double low = 0;    ///< least z
    double high = 0;   ///< greatest z
    int thinning = 0;  ///< while the view moves, one of so many points is drawn; below 2: one of ten
};

/// Points as the map shows them in one of its views.
struct PointPicture {
    QImage image;  ///< Format_ARGB32_Premultiplied, transparent where no point is; null for no points at all
    QRectF world;  ///< what it covers; its y grows upwards, that of the image downwards
};

/// Use of a file's companion on the map.
struct CompanionUse {
    bool isShown = false;
    QString reason;  ///< why one that exists is not shown; empty if there is none
};

/// The points of LAS files that have fresh companions, drawn on a worker thread for one view after the other,
/// about two points for each pixel. Each view is first drawn with few points, so that a view that moves is
/// followed.
class MapPoints final : public QObject {
    Q_OBJECT

  public:
    /// Milliseconds since some moment; called on the worker.
    using Clock = std::function<std::int64_t()>;

    /// `companions` must outlive the worker, as the component's do.
    explicit MapPoints(const LasCompanions& companions = *GetLasCompanions(),
                       Clock clock = SteadyMilliseconds);
    /// A companion that is being read from a drive that has gone is left to itself after a second.
    ~MapPoints() override;

    /// Sets the files; their companions are looked at again.
    void SetFiles(std::vector<PointFile> files);
    /// Gives up the files and closes their companions, so that these can be replaced. One that is being read
    /// from a drive that does not answer is waited for a second.
    void Close();
    /// Draws a view of so many pixels. If there are files, Changed() then comes at least once.
    void Show(const QRectF& world, const QSize& pixels);

    /// Of the latest view that has been drawn.
    const PointPicture& Picture() const { return picture_; }
    /// Null until the file was in a view that has been drawn.
    const CompanionUse* UseOf(const std::wstring& path) const;
    /// True until the latest view has been drawn with all its points.
    bool IsLoading() const { return job_ != nullptr; }

  signals:
    /// There is another picture.
    void Changed();

  private:
    struct Files;
    struct Job;
    struct Drawn;
    struct Link;
    class Drawing;

    static std::int64_t SteadyMilliseconds();
    static void Work(const std::shared_ptr<Link>& link);
    static void DrawView(Link& link, const std::shared_ptr<Job>& job);
    void Take(const Drawn& drawn);
    void Drop();

    std::shared_ptr<Link> link_;
    std::unique_ptr<QThreadPool> pool_;
    std::shared_ptr<Files> files_;
    std::shared_ptr<Job> job_;  ///< the latest view; null once it is complete
    PointPicture picture_;
    std::map<std::wstring, CompanionUse> uses_;
};

}  // namespace orvex
