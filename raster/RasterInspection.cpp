#include "raster/RasterInspection.h"

#include <chrono>
#include <utility>

#include "crs/GdalSetup.h"
#include "orvexcommon/Geocoding.h"
#include "raster/Georeference.h"
#include "raster/RasterFindings.h"
#include "raster/RasterReader.h"
#include "support/Files.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {
namespace {

std::int64_t ModifiedMs(const std::wstring& path) {
    const auto time = LastWriteTime(path);
    return time ? std::chrono::floor<std::chrono::milliseconds>(*time).time_since_epoch().count() : 0;
}

RasterProperties ReadOurselves(const std::wstring& path) {
    if (!EnsureGdal()) {
        throw LDataError(Text(text::kRasterProgramFilesMissing));
    }
    return ReadRasterProperties(path);
}

/// What the host's object says, with what it leaves out as our own reader finds it.
RasterProperties WithDetails(RasterProperties told, const std::wstring& path) {
    RasterProperties properties;
    try {
        properties = ReadOurselves(path);
    } catch (...) {
        // The host may know formats that we do not.
        return told;
    }
    static_cast<RasterEssentials&>(properties) = std::move(told);
    return properties;
}

RasterProperties Read(const std::wstring& path, const RasterInformationMaker& maker) {
    std::int32_t result = kHostClassNotRegistered;
    const auto object = maker ? maker(result) : nullptr;
    if (!object) {
        return ReadOurselves(path);
    }
    RasterProperties properties;
    std::wstring reason;
    result = object->Describe(path, properties, reason);
    if (result < kHostOk) {
        throw LDataError(reason);
    }
    return properties.hasDetails ? properties : WithDetails(std::move(properties), path);
}

void Inspect(RasterInspection& inspection, RasterUse use, const RasterInformationMaker& maker) {
    inspection.properties = Read(inspection.path, maker);
    if (inspection.properties.width < 1 || inspection.properties.height < 1) {
        throw LDataError(Text(text::kRasterNoImage));
    }
    inspection.loadable = true;
    inspection.unit = RasterUnitText(inspection.properties.linearUnit);
    inspection.crs = DescribeCrs(inspection.properties.wkt);
    std::wstring reason;
    Is_BigTIFF(inspection.path, inspection.bigTiff, reason);
    inspection.findings = ValidateRaster(inspection, use);
    const bool isOdd =
        !inspection.findings.empty() && inspection.findings.front().severity > FindingSeverity::Note;
    inspection.summary = isOdd ? inspection.findings.front().text : Text(text::kInspectionOk);
}

/// The row of a file that cannot be described: what is wrong with it, and nothing else.
void Refuse(RasterInspection& inspection, const std::wstring& reason) {
    inspection.loadable = false;
    inspection.properties = {};
    inspection.unit.clear();
    inspection.bigTiff = false;
    inspection.crs = DescribeCrs({});
    inspection.summary = Text(text::kRasterCannotBeRead) + L" " +
                         (reason.empty() ? Text(text::kRasterDamagedOrUnsupported) : reason);
    inspection.findings = {{FindingSeverity::Error, inspection.summary}};
}

/// After an exception that says nothing about the file. What was found out before it stays.
void TellException(RasterInspection& inspection, const std::wstring& message) {
    inspection.threw = true;
    if (!inspection.loadable) {
        Refuse(inspection, message);
        return;
    }
    inspection.summary = Text(text::kRasterPropertiesFailed) + L": " + message;
    inspection.findings = {{FindingSeverity::Warning, inspection.summary}};
}

}  // namespace

RasterInspection InspectRasterFile(const std::wstring& path, RasterUse use,
                                   const RasterInformationMaker& maker) {
    RasterInspection inspection;
    inspection.path = path;
    inspection.crs = DescribeCrs({});
    inspection.modifiedMs = ModifiedMs(path);
    inspection.fileSize = FileSizeOf(path).value_or(0);
    try {
        Inspect(inspection, use, maker);
    } catch (const LDataError& error) {
        Refuse(inspection, error.Text());
    } catch (...) {
        TellException(inspection, CurrentExceptionText());
    }
    return inspection;
}

}  // namespace orvex
