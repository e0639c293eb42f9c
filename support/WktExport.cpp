#include "support/WktExport.h"

#include <cpl_conv.h>

namespace orvex {

std::string ExportWkt(const OGRSpatialReference& crs, const char* format, bool multiLine) {
    const std::string formatOption = std::string("FORMAT=") + format;
    const char* const options[] = {formatOption.c_str(), multiLine ? "MULTILINE=YES" : "MULTILINE=NO",
                                   nullptr};
    char* text = nullptr;
    const OGRErr error = crs.exportToWkt(&text, options);
    std::string wkt = error == OGRERR_NONE && text != nullptr ? text : "";
    CPLFree(text);
    return wkt;
}

}  // namespace orvex
