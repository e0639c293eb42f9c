#include "support/LDataError.h"

#include "support/Text.h"

namespace orvex {

LDataError::LDataError(std::wstring text) : text_(std::move(text)), utf8_(ToUtf8(text_)) {}

std::wstring CurrentExceptionText() {
    try {
        throw;
    } catch (const LDataError& error) {
        return error.Text();
    } catch (const std::exception& error) {
        return FromUtf8(error.what());
    } catch (...) {
        return orvex::Text(text::kUnknownError);
    }
}

}  // namespace orvex
