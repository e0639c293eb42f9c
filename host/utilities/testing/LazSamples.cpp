#include "host/utilities/testing/LazSamples.h"

#include <laszip/laszip_api.h>

#include <array>
#include <cstring>
#include <fstream>
#include <stdexcept>

#include "support/Text.h"

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

namespace orvex::testing {
namespace {

#if defined(__SANITIZE_ADDRESS__)
using LeaksOfTheCodec = __lsan::ScopedDisabler;
#else
struct LeaksOfTheCodec {
    ~LeaksOfTheCodec() {}
};
#endif

class Writer {
  public:
    Writer() { Check(laszip_create(&codec_)); }
    ~Writer() { laszip_destroy(codec_); }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    laszip_POINTER Get() const { return codec_; }
    void Check(laszip_I32 result) const {
        if (result != 0) {
            laszip_CHAR* text = nullptr;
            laszip_get_error(codec_, &text);
            throw std::runtime_error(text == nullptr ? "laszip" : text);
        }
    }

  private:
    laszip_POINTER codec_ = nullptr;
};

void FillHeader(laszip_header_struct& header, const LazSample& sample) {
    header.version_major = 1;
    header.version_minor = sample.versionMinor;
    constexpr std::array<laszip_U16, 5> kSizes = {227, 227, 227, 235, 375};
    header.header_size = kSizes.at(sample.versionMinor);
    header.offset_to_point_data = header.header_size;
    std::memcpy(header.generating_software, "maker of the sample", 19);
    header.point_data_format = sample.pointFormat;
    header.point_data_record_length = sample.recordLength;
    if (sample.pointFormat >= 6) {
        header.extended_number_of_point_records = sample.points;
    } else {
        header.number_of_point_records = sample.points;
        header.extended_number_of_point_records = sample.versionMinor >= 4 ? sample.points : 0;
    }
    header.x_scale_factor = header.y_scale_factor = header.z_scale_factor = 0.01;
    header.max_x = header.max_y = header.max_z = 1000;
    header.global_encoding = sample.versionMinor == 3 ? 2 : 0;  // waveform packets inside the file
}

void FillPoint(laszip_point_struct& point, const LazSample& sample, std::uint32_t i) {
    point.X = static_cast<laszip_I32>(i * 7919 % 100000);
    point.Y = static_cast<laszip_I32>(i * 104729 % 100000);
    point.Z = static_cast<laszip_I32>(i % 977);
    point.intensity = static_cast<laszip_U16>(i * 31);
    point.user_data = static_cast<laszip_U8>(i);
    point.point_source_ID = static_cast<laszip_U16>(i / 100);
    if (sample.pointFormat >= 6) {
        point.extended_point_type = 1;
        point.extended_return_number = static_cast<laszip_U8>(1 + i % 9) & 15;
        point.extended_number_of_returns = 9;
        point.extended_classification = static_cast<laszip_U8>(i % 100);
        point.extended_scan_angle = static_cast<laszip_I16>(i % 15000);
        point.extended_scanner_channel = i % 3 & 3;
        // What the older fields of the record say as well.
        point.return_number = std::min(1 + i % 9, 7U) & 7;
        point.number_of_returns = 7;
        point.classification = i % 100 < 32 ? i % 100 & 31 : 0;
    } else {
        point.return_number = (1 + i % 3) & 7;
        point.number_of_returns = 3;
        point.classification = i % 32 & 31;
        point.scan_angle_rank = static_cast<laszip_I8>(i % 90);
    }
    point.gps_time = 1000.0 + i * 0.125;
    for (std::uint32_t band = 0; band < 4; ++band) {
        point.rgb[band] = static_cast<laszip_U16>(i * (band + 3));
    }
    for (std::uint32_t k = 0; k < sizeof(point.wave_packet); ++k) {
        point.wave_packet[k] = static_cast<laszip_U8>(k < 4 ? i : i / 50 + k);
    }
    for (laszip_I32 k = 0; k < point.num_extra_bytes; ++k) {
        point.extra_bytes[k] = static_cast<laszip_U8>(i + static_cast<std::uint32_t>(k));
    }
}

}  // namespace

void WriteSample(const std::wstring& path, const LazSample& sample, bool compress) {
    std::ofstream file(ToPath(path), std::ios::binary);
    const Writer writer;
    laszip_header_struct* header = nullptr;
    writer.Check(laszip_get_header_pointer(writer.Get(), &header));
    FillHeader(*header, sample);
    writer.Check(laszip_preserve_generating_software(writer.Get(), 1));
    writer.Check(laszip_request_native_extension(writer.Get(), sample.compatibilityMode ? 0 : 1));
    writer.Check(laszip_request_compatibility_mode(writer.Get(), sample.compatibilityMode ? 1 : 0));
    writer.Check(laszip_set_chunk_size(writer.Get(), sample.chunkSize));
    // Sets the sizes of the point that the codec holds, with its extra bytes.
    const laszip_header_struct copy = *header;
    writer.Check(laszip_set_header(writer.Get(), &copy));
    const std::string record = "what the record holds";
    writer.Check(laszip_add_vlr(writer.Get(), "orvex test", 77, static_cast<laszip_U16>(record.size()),
                                "a record of the sample", reinterpret_cast<const laszip_U8*>(record.data())));
    {
        // Packing points into an older format makes the codec lose a buffer of its own.
        const LeaksOfTheCodec ignored;
        writer.Check(laszip_open_writer_stream(writer.Get(), file, compress ? 1 : 0, 0));
    }
    laszip_point_struct* point = nullptr;
    writer.Check(laszip_get_point_pointer(writer.Get(), &point));
    for (std::uint32_t i = 0; i < sample.points; ++i) {
        FillPoint(*point, sample, i);
        writer.Check(laszip_write_point(writer.Get()));
    }
    writer.Check(laszip_close_writer(writer.Get()));
}

}  // namespace orvex::testing
