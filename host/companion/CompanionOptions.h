#pragma once
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/companion/PointPicture.h"
#include "las/companion/QvrBuilder.h"

namespace orvex {

enum class CompanionAction { Build, Check, Show };

/// What the command line asks for.
struct CompanionOptions {
    CompanionAction action = CompanionAction::Check;
    std::vector<std::wstring> files;
    bool help = false;
    bool version = false;
    std::wstring error;  ///< a sentence; empty if the arguments are understood

    QvrSettings settings;    ///< of Build
    bool overwrite = false;  ///< of Build: replace companions

    bool deep = false;  ///< of Check: compare the points with those of the source

    // Of Show.
    std::uint64_t points = 100'000;
    std::optional<std::array<double, 4>> extent;  ///< minimum X, minimum Y, maximum X, maximum Y
    bool entries = false;                         ///< draw octants, not points
    PointColour colour = PointColour::Height;
    int width = 1200;     ///< pixels
    std::wstring output;  ///< empty: in the current folder, named after the file
};

/// Name of the picture of a LAS, LAZ, or QVR file, in the current folder.
std::wstring PictureNameOf(const std::wstring& file);

/// Reads the arguments of the program, without its name.
CompanionOptions ParseCompanionArguments(const std::vector<std::wstring>& arguments);

}  // namespace orvex
