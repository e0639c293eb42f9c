#pragma once
#include "support/LasFormat.h"

namespace orvex {

using las::FindPointFormat;
using las::PointFormatFacts;

}  // namespace orvex
