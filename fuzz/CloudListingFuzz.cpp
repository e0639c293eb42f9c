// Reads arbitrary bytes as a listing of cloud layers.
#include <boost/property_tree/json_parser.hpp>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "cloud/CloudBrowserRows.h"
#include "support/LDataError.h"
#include "support/Text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using namespace orvex;

void Require(bool holds, const char* what) {
    if (!holds) {
        std::fprintf(stderr, "does not hold: %s\n", what);
        std::abort();
    }
}

bool IsSame(const CloudLayer& a, const CloudLayer& b) {
    return a.name == b.name && a.type == b.type && a.wkt == b.wkt && a.size == b.size &&
           a.points == b.points && a.crs == b.crs && a.modified == b.modified && a.url == b.url &&
           a.id == b.id && a.project == b.project && a.bytes == b.bytes;
}

void Try(const CloudLayer& layer, SharedTexts& texts) {
    for (const std::wstring* shown : {&layer.name, &layer.type, &layer.wkt, &layer.points, &layer.crs}) {
        Require(!shown->empty(), "what is shown says something");
        Require(*shown == WithoutControls(*shown), "what is shown has no control characters");
    }
    const CloudLayerRow row(layer, texts);
    Require(IsSame(row.Layer(), layer), "a row keeps its layer");
    for (const Column<CloudLayerRow>& column : CloudLayerColumns()) {
        CellText(column, row);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const CloudListingPage page =
            ParseProjectFiles(std::string(reinterpret_cast<const char*>(data), size));
        SharedTexts texts;
        for (const CloudLayer& layer : page.layers) {
            Try(layer, texts);
        }
    } catch (const LDataError& error) {
        Require(!error.Text().empty(), "a refusal has a reason");
    } catch (const boost::property_tree::json_parser_error&) {
        return 0;  // the reader's own words
    }
    return 0;
}
