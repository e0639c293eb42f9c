// Reading of LAZ files on all cores.
#include <algorithm>
#include <cstdint>
#include <span>
#include <string>

#include "host/utilities/LazPoints.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/LDataError.h"

namespace orvex {
namespace {

// A block of records as the sink gets it.
constexpr std::uint64_t kBlockPoints = 20000;
constexpr std::uint64_t kBlockBytes = 1 << 20;

}  // namespace

bool ReadLazPoints(const std::wstring& path, const LazLayout& /*layout*/, unsigned /*threads*/,
                   const LazSink& sink) {
    LazPoints points(path);
    const std::uint64_t block =
        std::clamp<std::uint64_t>(kBlockBytes / points.RecordLength(), 1, kBlockPoints);
    for (std::uint64_t first = 0; first < points.Count(); first += block) {
        const std::uint64_t count = std::min(block, points.Count() - first);
        if (!sink(first, points.Read(static_cast<std::size_t>(count)))) {
            return false;
        }
    }
    return true;
}

}  // namespace orvex

bool OrvexUtilities::LAZReadPoints(
    const std::wstring& path, unsigned threads,
    const std::function<bool(std::uint64_t first, std::span<const std::byte> records)>& sink,
    std::wstring& reason) {
    reason.clear();
    try {
        const orvex::LazLayout layout = orvex::ReadLazLayout(path);
        orvex::RequireUsableCodecRecord(path, layout);
        return orvex::ReadLazPoints(path, layout, threads, sink);
    } catch (...) {
        reason = orvex::CurrentExceptionText();
        return false;
    }
}

bool OrvexUtilities::LAZReadHead(const std::wstring& path, std::string& head, std::wstring& reason) {
    reason.clear();
    try {
        orvex::RequireUsableCodecRecord(path, orvex::ReadLazLayout(path));
        head = orvex::LazPoints(path).Head();
        return true;
    } catch (...) {
        reason = orvex::CurrentExceptionText();
        return false;
    }
}
