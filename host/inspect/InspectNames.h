#pragma once
#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "support/LDataError.h"

namespace orvex {

/// Standard input does not hold names as they were announced.
class InspectNameError : public LDataError {
  public:
    using LDataError::LDataError;
};

/// Names of files on an input, in UTF-8, each ended by `end`; the last one need not be. A carriage return
/// before a line feed belongs to the line's end, and a byte order mark at the start to nothing. Empty names
/// are left out. Throws InspectNameError for a name that is too long, or that holds a zero byte.
std::vector<std::wstring> ReadNames(const std::function<std::size_t(std::span<char>)>& read, char end);

}  // namespace orvex
