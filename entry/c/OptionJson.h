#pragma once
#include <string>
#include <string_view>

namespace orvex {

class OptionStore;

// Options by their stored names ("optAddLASThinning") as JSON: numbers, or strings for texts. Throw
// InvalidCall if there is no such option.

/// The option's value; "null" if nothing is stored and it has no default.
std::string ReadOption(const OptionStore& options, std::string_view name);

/// Stores the option's value. Throws InvalidCall if it is not of the option's type or range, and LDataError
/// if it could not be written.
void WriteOption(const OptionStore& options, std::string_view name, std::string_view json);

}  // namespace orvex
