#include "fuzz/Seeds.h"
#include "las/testing/LasBuilder.h"
#include "las/testing/QvrSample.h"

namespace orvex::fuzz {

std::vector<std::string> Seeds() {
    using testing::LasBuilder;
    using testing::QvrBytes;
    const std::string plain = QvrBytes(LasBuilder(14, 6).AddPoints(40).Build(), 0);
    return {plain,
            plain.substr(0, 500),
            QvrBytes(LasBuilder(12, 3).AddPoints(300).Build(), 0, 0),
            QvrBytes(LasBuilder(10, 0).Build(), 0),
            QvrBytes(LasBuilder(13, 5).AddPoint(1, 2, 3).AddPoint(1, 2, 3).Build(), 0, 21),
            LasBuilder(12, 0).AddPoints(2).AddVlr("BrightwellMarsh", 64, std::string(81, '\1')).Build()};
}

}  // namespace orvex::fuzz
