#pragma once
#include <QImage>
#include <QObject>
#include <QString>
#include <map>

#include "host/app/OverviewLoader.h"

namespace orvex {

/// The small pictures of the project's rasters, as they come in.
class RasterPictures final : public QObject {
    Q_OBJECT

  public:
    explicit RasterPictures(QObject* parent = nullptr, OverviewLoader::Read read = {});

    /// The rasters whose pictures are wanted from now on; those of others are forgotten.
    void Want(const std::vector<std::wstring>& paths);
    /// Null while there is none, or when it cannot be had.
    const QImage* Find(const std::wstring& path) const;
    /// Why a raster has no picture; empty when it has one or has not been read yet.
    QString ProblemOf(const std::wstring& path) const;
    /// True when no raster is wanted.
    bool IsEmpty() const { return count_ == 0; }
    bool IsLoading() const { return !loader_.IsIdle(); }

  signals:
    /// Pictures or problems have come in.
    void Changed();

  private:
    struct Picture {
        QImage image;
        QString problem;
    };

    void TakeLoaded();

    std::map<std::wstring, Picture> pictures_;
    std::size_t count_ = 0;  ///< rasters that are wanted
    OverviewLoader loader_;
};

}  // namespace orvex
