#pragma once
#include <memory>
#include <optional>
#include <string>

namespace orvex {

/// Values of an EXIF block, decoded by Exiv2. Only blocks that TiffDirectories has written are given to it,
/// so that neither maker notes nor damaged entries reach its decoders, and it has nothing to say on the error
/// stream.
class ExifValues {
  public:
    /// `block` may be empty. Throws LDataError if it cannot be decoded.
    explicit ExifValues(const std::string& block);
    ~ExifValues();
    ExifValues(const ExifValues&) = delete;
    ExifValues& operator=(const ExifValues&) = delete;

    /// Text of an entry ("Exif.Image.Model") without padding; empty if missing.
    std::string Text(const char* key) const;
    /// Value of an entry; nullopt if missing, or a fraction with denominator 0.
    std::optional<double> Number(const char* key, long index = 0) const;
    long Count(const char* key) const;

    /// Degrees of a GPS position, from degrees, minutes and seconds and the hemisphere: south and west are
    /// negative. nullopt if missing or no number.
    std::optional<double> Degrees(const char* key, const char* hemisphereKey) const;
    /// Metres, negative below the sea level or the ellipsoid.
    std::optional<double> Altitude() const;
    /// Direction to which the camera looks, degrees from true north; nullopt also for magnetic north.
    std::optional<double> Direction() const;
    /// UTC of the GPS receiver, as "2019-07-14 09:21:33.25"; empty if date or time are missing.
    std::string GpsTime() const;
    /// True unless the position is stated to be on another datum than WGS 84.
    bool IsWgs84() const;

  private:
    struct Data;

    const std::unique_ptr<Data> data_;
};

}  // namespace orvex
