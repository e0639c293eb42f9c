#pragma once
#include <QImage>
#include <string>

#include "host/companion/CompanionOptions.h"
#include "las/companion/QvrFile.h"
#include "support/ProgressIf.h"

namespace orvex {

/// A picture of a companion, not yet written.
struct CompanionPicture {
    QImage image;        ///< null if there is no point to draw, or if cancelled
    std::wstring path;   ///< of the PNG file
    std::wstring words;  ///< one line about what was drawn
};

/// Draws the first points of a companion, or those selected for an extent, or the octants of their entries.
/// Throws LDataError.
CompanionPicture DrawCompanion(const QvrFile& qvr, const CompanionOptions& options,
                               Kst::ProgressIf& progress);

/// Writes a picture as a PNG file, replacing an existing one. Throws LDataError.
void SavePicture(const QImage& image, const std::wstring& path);

}  // namespace orvex
