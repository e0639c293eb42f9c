#pragma once
// Small LAS files, built byte by byte.
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "support/testing/Bytes.h"

namespace orvex::testing {

/// Builds the bytes of one LAS file. The setters can be called in any order; Build lays out header, VLRs,
/// points and EVLRs and then applies the lies, so that a field can hold anything. Texts are UTF-8.
class LasBuilder {
  public:
    /// A version such as 12 (1.2) and a point format, 0 to 10.
    explicit LasBuilder(int version = 12, int pointFormat = 0);

    /// Actual and stated size of the header; by default that of the version (227, 235, 375).
    LasBuilder& HeaderSize(std::uint16_t bytes) { return Set(headerSize_, bytes); }
    LasBuilder& SystemIdentifier(std::string_view text) { return Set(systemIdentifier_, text); }
    LasBuilder& GeneratingSoftware(std::string_view text) { return Set(generatingSoftware_, text); }
    LasBuilder& CreationDate(std::uint16_t dayOfYear, std::uint16_t year) {
        creationDay_ = dayOfYear;
        return Set(creationYear_, year);
    }
    /// Adds bits to the global encoding (1: standard GPS time, 16: WKT).
    LasBuilder& EncodingBits(int bits) {
        return Set(encoding_, static_cast<std::uint16_t>(encoding_ | bits));
    }
    /// Marks the points as compressed; their bytes are not.
    LasBuilder& MarkCompressed() { return Set(isCompressed_, true); }

    LasBuilder& Scale(double x, double y, double z) { return Set(scale_, Triple{x, y, z}); }
    LasBuilder& Offset(double x, double y, double z) { return Set(offset_, Triple{x, y, z}); }
    LasBuilder& AddPoint(double x, double y, double z);
    /// A square lattice of points one unit apart in X and Y, Z rising by a hundredth, from a corner on.
    LasBuilder& AddPoints(std::size_t count, double x = 1000, double y = 2000, double z = 100);

    LasBuilder& AddVlr(std::string_view userId, std::uint16_t recordId, std::string_view data,
                       std::string_view description = {}, std::uint16_t reserved = 0);
    LasBuilder& AddEvlr(std::string_view userId, std::uint16_t recordId, std::string_view data,
                        std::string_view description = {}, std::uint16_t reserved = 0);
    /// One attribute of the extra bytes VLR, which follows the other VLRs; adds `size` bytes to the point
    /// records.
    LasBuilder& AddExtraBytes(std::string_view name, std::uint8_t dataType, std::uint8_t size);
    /// The WKT record and the header's WKT bit.
    LasBuilder& Wkt(std::string_view wkt, bool asEvlr = false);
    /// The GeoKeys of a projected CRS by its EPSG code.
    LasBuilder& ProjectedEpsg(std::uint16_t code);
    /// A GeoKey directory as 16-bit numbers.
    LasBuilder& GeoKeys(const std::vector<std::uint16_t>& directory);

    /// Bytes between the VLRs and the points, and at the end of the file.
    LasBuilder& Gap(std::string_view bytes) { return Set(gap_, bytes); }
    LasBuilder& Append(std::string_view bytes) { return Set(appended_, bytes); }

    /// Overwrites bytes of the finished file with a little-endian number; ignored beyond the end.
    template <typename T>
    LasBuilder& Lie(std::size_t offset, T value) {
        lies_.emplace_back(offset, Bytes(value));
        return *this;
    }
    /// Truncates the finished file.
    LasBuilder& Cut(std::size_t bytes) { return Set(cut_, bytes); }

    std::string Build() const;

  private:
    struct Record {
        std::string userId;
        std::uint16_t recordId;
        std::string data;
        std::string description;
        std::uint16_t reserved;
    };
    using Triple = std::array<double, 3>;

    template <typename T, typename V>
    LasBuilder& Set(T& member, const V& value) {
        member = value;
        return *this;
    }
    std::string Vlrs() const;
    std::string Points() const;
    std::string Header(std::size_t vlrBytes, std::size_t pointBytes) const;
    void PutExtent(std::string& header) const;
    std::uint16_t RecordLength() const;
    bool HasExtraBytes() const { return !extraBytes_.empty(); }

    int version_;
    int pointFormat_;
    std::uint16_t headerSize_;
    std::uint16_t encoding_ = 0;
    std::uint16_t creationDay_ = 1;
    std::uint16_t creationYear_ = 2024;
    bool isCompressed_ = false;
    std::string systemIdentifier_ = "TEST";
    std::string generatingSoftware_ = "LasBuilder";
    Triple scale_{0.01, 0.01, 0.01};
    Triple offset_{0, 0, 0};
    std::vector<Triple> points_;
    std::vector<Record> vlrs_;
    std::vector<Record> evlrs_;
    std::string extraBytes_;
    std::uint16_t extraByteCount_ = 0;
    std::string gap_;
    std::string appended_;
    std::vector<std::pair<std::size_t, std::string>> lies_;
    std::size_t cut_ = std::string::npos;
};

}  // namespace orvex::testing
