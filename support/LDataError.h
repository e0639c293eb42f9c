#pragma once
#include <exception>
#include <string>

namespace orvex {

/// The component's error: a text for the user that names the file and the cause.
class LDataError : public std::exception {
  public:
    explicit LDataError(std::wstring text);

    const std::wstring& Text() const noexcept { return text_; }
    /// The text as UTF-8.
    const char* what() const noexcept override { return utf8_.c_str(); }

  private:
    std::wstring text_;
    std::string utf8_;
};

/// Text of the exception being handled: an LDataError's own, else what(), else "unknown error". To be called
/// in a catch block.
std::wstring CurrentExceptionText();

}  // namespace orvex
