#pragma once
#include <istream>

#include "support/Drives.h"

namespace orvex {

/// Finds drives by a table of mounts in the form of /proc/self/mountinfo.
DriveFinder FindDrivesIn(std::istream& mountTable);

}  // namespace orvex
