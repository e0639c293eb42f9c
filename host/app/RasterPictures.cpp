#include "host/app/RasterPictures.h"

#include <set>

#include "host/app/HostText.h"

namespace orvex {

namespace {

QImage ImageOf(const RasterOverview& overview) {
    if (overview.width == 0) {
        return {};
    }
    // The painter's own format, so that drawing does not convert it each time.
    return QImage(overview.rgba.data(), overview.width, overview.height, qsizetype{4} * overview.width,
                  QImage::Format_RGBA8888)
        .convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

}  // namespace

RasterPictures::RasterPictures(QObject* parent, OverviewLoader::Read read)
    : QObject(parent),
      loader_([this] { QMetaObject::invokeMethod(this, &RasterPictures::TakeLoaded, Qt::QueuedConnection); },
              std::move(read)) {}

void RasterPictures::Want(const std::vector<std::wstring>& paths) {
    const std::set<std::wstring> wanted(paths.begin(), paths.end());
    std::erase_if(pictures_, [&wanted](const auto& entry) { return !wanted.contains(entry.first); });
    count_ = wanted.size();
    loader_.Want(paths);
}

const QImage* RasterPictures::Find(const std::wstring& path) const {
    const auto found = pictures_.find(path);
    return found == pictures_.end() || found->second.image.isNull() ? nullptr : &found->second.image;
}

QString RasterPictures::ProblemOf(const std::wstring& path) const {
    const auto found = pictures_.find(path);
    return found == pictures_.end() ? QString() : found->second.problem;
}

void RasterPictures::TakeLoaded() {
    for (const OverviewLoader::Loaded& loaded : loader_.Take()) {
        pictures_[loaded.path] = {ImageOf(loaded.overview), ToQString(loaded.overview.problem)};
    }
    emit Changed();
}

}  // namespace orvex
