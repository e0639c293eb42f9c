#include "raster/RasterListing.h"

#include <utility>

#include "support/Text.h"

namespace orvex {

namespace {

/// The host's object, watched: whether it throws.
class WatchedInformation final : public OrvexRasterInformation {
  public:
    WatchedInformation(std::unique_ptr<OrvexRasterInformation> object, bool& threw)
        : object_(std::move(object)), threw_(threw) {}

    std::int32_t Describe(const std::wstring& path, RasterProperties& properties,
                          std::wstring& reason) override {
        try {
            return object_->Describe(path, properties, reason);
        } catch (...) {
            threw_ = true;
            throw;
        }
    }

  private:
    std::unique_ptr<OrvexRasterInformation> object_;
    bool& threw_;
};

}  // namespace

ListedRaster ListRaster(RasterInspection inspection) {
    ListedRaster listed;
    listed.path = inspection.path;
    listed.summary = inspection.summary;
    listed.file = std::make_shared<const RasterInspection>(std::move(inspection));
    listed.details = listed.file->loadable ? std::make_unique<RasterFile>(listed.file) : nullptr;
    return listed;
}

ListedRaster ReadListedRaster(const std::wstring& path, RasterUse use, const RasterInformationMaker& maker) {
    bool threw = false;
    RasterInformationMaker watched;
    if (maker != nullptr) {
        watched = [&](std::int32_t& result) -> std::unique_ptr<OrvexRasterInformation> {
            auto object = maker(result);
            return object == nullptr ? nullptr
                                     : std::make_unique<WatchedInformation>(std::move(object), threw);
        };
    }
    ListedRaster listed = ListRaster(InspectRasterFile(path, use, watched));
    listed.threw = threw;
    return listed;
}

ListedRaster FailedRaster(const std::wstring& path, const std::wstring& message) {
    RasterInspection inspection;
    inspection.path = path;
    inspection.summary = Text(13638_lsid) + L" " + message;
    inspection.findings = {{FindingSeverity::Error, inspection.summary}};
    inspection.crs = DescribeCrs({});
    ListedRaster listed = ListRaster(std::move(inspection));
    listed.threw = true;
    return listed;
}

}  // namespace orvex
