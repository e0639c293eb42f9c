#pragma once
// Shapefiles under temporary names.
#include <ogrsf_frmts.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/dem/HostGdal.h"
#include "host/vector/VectorSource.h"

namespace orvex {

/// Geometries that a shapefile holds; a drawing's texts are points with three fields of their own.
enum class ShapeKind { Points, Lines, Polygons, Text };

/// Fields of shapefiles for the features of one layer.
class ShapefileFields {
  public:
    /// `withText`: the fields of a drawing's text come first.
    ShapefileFields(const OGRFeatureDefn& source, bool withText);

    /// Adds the fields to a layer. False if it refuses one.
    bool AddTo(OGRLayer& layer) const;
    /// Values that a shapefile cannot hold.
    struct Losses {
        std::size_t textsCut = 0;
        std::size_t numbers = 0;
    };
    /// Sets the fields of `to` from a feature of the source, and adds to the losses.
    void Copy(const OGRFeature& from, const std::optional<DrawingText>& text, OGRFeature& to,
              Losses& losses) const;

    /// "old -> new" for each field whose name had to be changed.
    const std::vector<std::wstring>& Renamed() const { return renamed_; }
    /// Number of the source's fields that a shapefile has no room for.
    std::size_t LeftOut() const { return leftOut_; }

  private:
    struct Field {
        int source = 0;  ///< place in the source; negative for those of a text
        std::string name;
        OGRFieldType type = OFTString;
    };

    std::vector<Field> fields_;
    std::vector<std::wstring> renamed_;
    std::size_t leftOut_ = 0;
};

/// Writes one shapefile under a temporary name; its parts are removed unless they are renamed. Members throw
/// LDataError, which names the file as `shownPath`.
class ShapefileWriter {
  public:
    /// `temporaryPath`: without extension. `fields` and `crs` must outlive the writer; `crs` may be null.
    ShapefileWriter(std::wstring temporaryPath, std::wstring shownPath, ShapeKind kind,
                    const ShapefileFields& fields, const OGRSpatialReference* crs);
    ~ShapefileWriter();
    ShapefileWriter(const ShapefileWriter&) = delete;
    ShapefileWriter& operator=(const ShapefileWriter&) = delete;

    /// Adds a feature; the file is opened again if it has been suspended.
    void Add(const OGRFeature& from, OGRGeometryUniquePtr geometry, const std::optional<DrawingText>& text);
    /// Closes the file until the next Add; it takes no handles meanwhile.
    void Suspend();
    bool IsOpen() const { return dataset_ != nullptr; }

    /// Renames the parts to a name without extension, none of which may exist. False, with nothing renamed,
    /// if one does.
    bool RenameTo(const std::wstring& path);

    ShapeKind Kind() const { return kind_; }
    std::uint64_t Count() const { return count_; }
    /// minX, minY, maxX, maxY; of at least one feature.
    std::array<double, 4> Extent() const { return {box_.MinX, box_.MinY, box_.MaxX, box_.MaxY}; }
    const ShapefileFields::Losses& Losses() const { return losses_; }

  private:
    void Create(const OGRSpatialReference* crs);
    void Reopen();
    [[noreturn]] void Fail(const GdalErrorScope& errors) const;

    std::wstring temporaryPath_;
    std::wstring shownPath_;
    ShapeKind kind_;
    const ShapefileFields& fields_;
    GDALDatasetUniquePtr dataset_;
    OGREnvelope box_;
    std::uint64_t count_ = 0;
    ShapefileFields::Losses losses_;
};

}  // namespace orvex
