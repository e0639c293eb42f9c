#pragma once
// Small LAS files, built byte by byte.
#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "support/testing/Bytes.h"

namespace orvex::testing {

/// Builds the bytes of one LAS file. The setters can be called in any order; Build lays out header, VLRs,
/// points and EVLRs and then applies the lies, so that a field can say anything. Texts are UTF-8.
class LasBuilder {
  public:
    /// A version such as 12 (1.2) and a point format, 0 to 10.
    explicit LasBuilder(int version = 12, int pointFormat = 0);

    /// Bytes that the header has; by default what its version says (227, 235, 375).
    LasBuilder& HeaderSize(std::uint16_t bytes);
    LasBuilder& SystemIdentifier(std::string_view text);
    LasBuilder& GeneratingSoftware(std::string_view text);
    LasBuilder& CreationDate(std::uint16_t dayOfYear, std::uint16_t year);
    /// Adds bits to the global encoding (1: standard GPS time, 16: WKT).
    LasBuilder& EncodingBits(std::uint16_t bits);
    /// Marks the points as compressed; they are laid out plainly all the same.
    LasBuilder& MarkCompressed();

    LasBuilder& Scale(double x, double y, double z);
    LasBuilder& Offset(double x, double y, double z);
    LasBuilder& AddPoint(double x, double y, double z);
    /// A square lattice of points one unit apart in X and Y, Z rising by a hundredth, from a corner on.
    LasBuilder& AddPoints(std::size_t count, double x = 1000, double y = 2000, double z = 100);

    LasBuilder& AddVlr(std::string_view userId, std::uint16_t recordId, std::string_view data,
                       std::string_view description = {}, std::uint16_t reserved = 0);
    LasBuilder& AddEvlr(std::string_view userId, std::uint16_t recordId, std::string_view data,
                        std::string_view description = {}, std::uint16_t reserved = 0);
    /// One attribute of the extra-bytes VLR, which follows the other VLRs; widens the point records by
    /// `size` bytes.
    LasBuilder& AddExtraBytes(std::string_view name, std::uint8_t dataType, std::uint8_t size);
    /// The WKT record and the header's WKT bit.
    LasBuilder& Wkt(std::string_view wkt, bool asEvlr = false);
    /// The GeoKeys of a projected (or geographic) CRS by its EPSG code.
    LasBuilder& ProjectedEpsg(std::uint16_t code);
    LasBuilder& GeographicEpsg(std::uint16_t code);
    /// A GeoKey directory of one's own, as 16-bit numbers.
    LasBuilder& GeoKeys(const std::vector<std::uint16_t>& directory);

    /// Bytes between the VLRs and the points, behind the points, and behind everything.
    LasBuilder& Gap(std::string_view bytes);
    LasBuilder& BehindPoints(std::string_view bytes);
    LasBuilder& Append(std::string_view bytes);

    /// Overwrites bytes of the finished file with a number, little-endian. Beyond its end: without effect.
    template <typename T>
    LasBuilder& Lie(std::size_t offset, T value) {
        std::string bytes(sizeof(T), '\0');
        std::memcpy(bytes.data(), &value, sizeof(T));
        lies_.emplace_back(offset, std::move(bytes));
        return *this;
    }
    /// Ends the finished file after so many bytes.
    LasBuilder& Cut(std::size_t bytes);

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

    std::string Vlrs() const;
    std::string Points() const;
    std::string Evlrs() const;
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
    std::string behindPoints_;
    std::string appended_;
    std::vector<std::pair<std::size_t, std::string>> lies_;
    std::size_t cut_ = std::string::npos;
};

}  // namespace orvex::testing
