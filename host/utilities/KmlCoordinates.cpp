#include "host/utilities/KmlCoordinates.h"

#include <charconv>
#include <cmath>

namespace orvex {
namespace {

constexpr std::size_t kMostOfNumber = 64;

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

}  // namespace

void KmlCoordinates::Start(Form form) {
    Finish();
    form_ = form;
}

void KmlCoordinates::Add(std::string_view text) {
    for (const char c : text) {
        if (c == ',') {
            // After a number and blanks, the comma belongs to it.
            if (number_.empty() && !hasBlank_) {
                isBad_ = true;
            }
            EndNumber();
            hasBlank_ = false;
        } else if (IsBlank(c)) {
            hasBlank_ = hasBlank_ || !number_.empty();
            EndNumber();
        } else {
            if (hasBlank_ && form_ == Form::Tuples) {
                EndTuple();
            }
            hasBlank_ = false;
            isBad_ = isBad_ || number_.size() == kMostOfNumber;
            number_.append(number_.size() < kMostOfNumber ? 1 : 0, c);
        }
    }
}

void KmlCoordinates::EndNumber() {
    if (number_.empty()) {
        return;
    }
    const std::size_t sign = number_.front() == '+' ? 1 : 0;
    double value = 0;
    const char* const end = number_.data() + number_.size();
    const auto parsed = std::from_chars(number_.data() + sign, end, value);
    isBad_ = isBad_ || parsed.ec != std::errc() || parsed.ptr != end || !std::isfinite(value);
    number_.clear();
    if (index_ == 0) {
        x_ = value;
    } else if (index_ == 1 && !isBad_) {
        visit_(x_, value);
    }
    index_ += index_ < 2 ? 1 : 0;
}

void KmlCoordinates::EndTuple() {
    EndNumber();
    const bool isTuple = index_ == 2 && !isBad_;
    unreadable_ += isTuple || (index_ == 0 && !isBad_) ? 0 : 1;
    index_ = 0;
    isBad_ = false;
    hasBlank_ = false;
}

void KmlCoordinates::Finish() {
    EndTuple();
}

}  // namespace orvex
