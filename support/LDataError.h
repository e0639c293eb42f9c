#pragma once
#include <exception>
#include <string>

namespace orvex {

/// The component's error: a text for the user, naming the file and the cause.
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

/// The text of the exception that is being handled: an LDataError's own, else what(), else that the error is
/// unknown. Call it inside a catch block.
std::wstring CurrentExceptionText();

}  // namespace orvex
