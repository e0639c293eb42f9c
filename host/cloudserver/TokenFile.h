#pragma once
#include <string>

namespace orvex {

/// Reads the token in a file: one line of 8 to 4,096 visible ASCII characters. Throws LDataError.
std::string ReadToken(const std::wstring& file);

/// The same of the user's own token file; a file with a random token, which only this user may read, is made
/// if there is none. Its full path is stored in `file`.
std::string UserToken(std::wstring& file);

}  // namespace orvex
