#include "fuzz/Seeds.h"
#include "host/utilities/testing/PhotoSamples.h"

namespace orvex::fuzz {
namespace {

using testing::ExifBytes;
using testing::JpegWith;
using testing::PosedPhoto;
using testing::XmpWith;

std::string Tiff(ExifBytes exif) {
    return exif.Position(11.5, 47.5, 600)
        .Whole(ExifBytes::kImage, 0x100, 4, 4000)
        .Whole(ExifBytes::kImage, 0x101, 3, 3000)
        .Bytes(ExifBytes::kImage, 0x2BC, XmpWith("http://pix4d.com/camera/1.0", {{"Roll", "-1.5"}}))
        .Whole(ExifBytes::kThumbnail, 0x201, 4, 8)
        .Whole(ExifBytes::kThumbnail, 0x202, 4, 100)
        .Build();
}

}  // namespace

std::vector<std::string> Seeds() {
    using enum ExifBytes::Order;
    ExifBytes camera(Big);
    camera.Position(-73.5, 40.25, -3.983).GpsTime("2019:07:14", 9, 21, {3325, 100});
    camera.Text(ExifBytes::kImage, 0x110, "M 1").Text(ExifBytes::kGps, 0x12, "WGS-84");
    const std::string png("\x89PNG\r\n\x1A\n\0\0\0\rIHDR\0\0\1\0\0\0\0\x80\x08\x02\0\0\0\0\0\0\0", 33);
    return {PosedPhoto(8, 47, 500),
            JpegWith(camera.Build(),
                     XmpWith("http://www.dji.com/drone-dji/1.0/",
                             {{"GpsLongtitude", "120.95"}, {"DewarpData", "2018-09-07;1,2,3,4,5,6,7,8,9"}})),
            JpegWith({}, XmpWith("http://orvex.com/photo/1.0/", {{"GPSLongitude", "16319/100"}}, true)),
            Tiff(ExifBytes(Little)),
            Tiff(ExifBytes(Big, ExifBytes::Format::Big)),
            png +
                std::string("\0\0\0\x40"
                            "eXIf",
                            8) +
                camera.Build()};
}

}  // namespace orvex::fuzz
