#include "host/inspect/JsonWriter.h"

#include <fmt/format.h>

#include <cmath>
#include <ostream>

#include "support/Text.h"

namespace orvex {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

/// Length of the well-formed UTF-8 sequence at the start of `bytes`, 0 when there is none (overlong forms,
/// surrogates and values above U+10FFFF are none).
std::size_t SequenceLength(std::string_view bytes) {
    const auto byte = [&](std::size_t i) {
        return i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0U;
    };
    const auto continues = [&](std::size_t from, std::size_t count) {
        for (std::size_t i = from; i < from + count; ++i) {
            if ((byte(i) & 0xC0U) != 0x80U) {
                return false;
            }
        }
        return true;
    };
    const unsigned first = byte(0);
    if (first < 0x80) {
        return 1;
    }
    if (first >= 0xC2 && first <= 0xDF) {
        return continues(1, 1) ? 2 : 0;
    }
    if (first >= 0xE0 && first <= 0xEF) {
        const bool overlong = first == 0xE0 && byte(1) < 0xA0;
        const bool surrogate = first == 0xED && byte(1) > 0x9F;
        return !overlong && !surrogate && continues(1, 2) ? 3 : 0;
    }
    if (first >= 0xF0 && first <= 0xF4) {
        const bool overlong = first == 0xF0 && byte(1) < 0x90;
        const bool tooHigh = first == 0xF4 && byte(1) > 0x8F;
        return !overlong && !tooHigh && continues(1, 3) ? 4 : 0;
    }
    return 0;
}

}  // namespace

std::string ValidUtf8(std::string_view bytes) {
    std::string valid;
    valid.reserve(bytes.size());
    while (!bytes.empty()) {
        const std::size_t length = SequenceLength(bytes);
        valid += length == 0 ? kReplacement : bytes.substr(0, length);
        bytes.remove_prefix(length == 0 ? 1 : length);
    }
    return valid;
}

void JsonWriter::Key(std::string_view name) {
    BeforeValue();
    Quoted(name);
    out_ << ": ";
    afterKey_ = true;
}

void JsonWriter::Text(std::wstring_view text) {
    Utf8(ToUtf8(text));
}

void JsonWriter::Utf8(std::string_view text) {
    BeforeValue();
    Quoted(ValidUtf8(text));
}

void JsonWriter::Number(double number) {
    if (!std::isfinite(number)) {
        Null();
        return;
    }
    BeforeValue();
    out_ << fmt::format("{}", number);
}

void JsonWriter::Integer(std::int64_t number) {
    BeforeValue();
    out_ << fmt::format("{}", number);
}

void JsonWriter::Unsigned(std::uint64_t number) {
    BeforeValue();
    out_ << fmt::format("{}", number);
}

void JsonWriter::Bool(bool value) {
    BeforeValue();
    out_ << (value ? "true" : "false");
}

void JsonWriter::Null() {
    BeforeValue();
    out_ << "null";
}

void JsonWriter::Member(std::string_view name, const std::vector<std::wstring>& texts) {
    Key(name);
    BeginArray();
    for (const std::wstring& text : texts) {
        Text(text);
    }
    EndArray();
}

void JsonWriter::Member(std::string_view name, std::span<const double> numbers) {
    Key(name);
    BeginArray(true);
    for (const double number : numbers) {
        Number(number);
    }
    EndArray();
}

void JsonWriter::Open(char bracket, bool oneLine) {
    BeforeValue();
    out_ << bracket;
    levels_.push_back({oneLine || (!levels_.empty() && levels_.back().oneLine)});
}

void JsonWriter::Close(char bracket) {
    const Level level = levels_.back();
    levels_.pop_back();
    if (!level.empty && !level.oneLine) {
        NewLine();
    }
    out_ << bracket;
    if (levels_.empty()) {
        out_ << '\n';
    }
}

void JsonWriter::BeforeValue() {
    if (afterKey_) {
        afterKey_ = false;
        return;
    }
    if (levels_.empty()) {
        return;
    }
    Level& level = levels_.back();
    if (!level.empty) {
        out_ << (level.oneLine ? ", " : ",");
    }
    if (!level.oneLine) {
        NewLine();
    }
    level.empty = false;
}

void JsonWriter::NewLine() {
    out_ << '\n' << std::string(levels_.size() * 2, ' ');
}

void JsonWriter::Quoted(std::string_view utf8) {
    out_ << '"';
    for (const char c : utf8) {
        switch (c) {
            case '"':
                out_ << "\\\"";
                break;
            case '\\':
                out_ << "\\\\";
                break;
            case '\n':
                out_ << "\\n";
                break;
            case '\r':
                out_ << "\\r";
                break;
            case '\t':
                out_ << "\\t";
                break;
            default:
                if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) {
                    out_ << fmt::format("\\u{:04x}", static_cast<unsigned>(c));
                } else {
                    out_ << c;
                }
        }
    }
    out_ << '"';
}

}  // namespace orvex
