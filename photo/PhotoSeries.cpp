#include "photo/PhotoSeries.h"

namespace orvex {

void ComparePhotos(std::vector<PhotoRow>& rows) {
    static_cast<void>(rows);
}

}  // namespace orvex
