#pragma once
// CAD and KML files as GDAL reads them.
#include <ogrsf_frmts.h>

#include <optional>
#include <string>

#include "host/dem/HostGdal.h"
#include "support/GdalAccess.h"
#include "support/GdalRaii.h"

namespace orvex {

/// Most bytes of KML that are read: its readers take a multiple of them as memory.
inline constexpr std::uint64_t kMostKmlBytes = std::uint64_t{128} << 20U;

/// Text of a drawing.
struct DrawingText {
    std::string text;   ///< UTF-8
    double height = 0;  ///< units of the data; 0 if unknown
    double angle = 0;   ///< degrees, counter-clockwise from the X axis
};

/// An open DWG, DXF, DGN, KML or KMZ file. Only the drivers of its kind see it, and they open no other file:
/// a KML file's links are not followed, and an archive is read in place. To be used and destroyed by the
/// thread that made it.
class VectorSource {
  public:
    /// Throws LDataError with the file and the cause in plain words.
    explicit VectorSource(const std::wstring& path);

    GDALDataset& Dataset() { return *dataset_; }
    std::uint64_t FeatureCount() const { return featureCount_; }
    /// What cannot be read of the file, one sentence a line; empty for nothing.
    const std::wstring& Remarks() const { return remarks_; }
    /// CRS of the layers: their own, else the one of a ".prj" file beside the file; null if unknown.
    const OGRSpatialReference* CrsOf(OGRLayer& layer);
    /// Name of a feature's layer as its program shows it: GDAL reads those of some files as one.
    static std::string LayerOf(OGRLayer& layer, const OGRFeature& feature);
    /// The text that a feature of a drawing is; nullopt if it is none.
    std::optional<DrawingText> TextOf(OGRFeature& feature) const;

  private:
    void Open();
    void ReadCrsBeside();

    std::wstring path_;
    bool isDrawing_;  ///< labels of KML features are names of places
    std::uint64_t featureCount_ = 0;
    std::wstring remarks_;
    std::optional<GdalAccess> access_;  ///< as long as the file is read
    std::optional<GdalOption> encoding_;
    GDALDatasetUniquePtr dataset_;
    std::optional<OGRSpatialReference> crsBeside_;
};

}  // namespace orvex
