#pragma once
#include <cstdint>
#include <iosfwd>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace orvex {

/// Writes JSON to a stream, indented by two blanks, members in the order of the calls. Whatever the texts
/// hold, the output is valid UTF-8 and valid JSON: bytes or characters that are none become U+FFFD.
class JsonWriter {
  public:
    explicit JsonWriter(std::ostream& out) : out_(out) {}

    void BeginObject() { Open('{', false); }
    void EndObject() { Close('}'); }
    /// `oneLine` keeps short lists of numbers on one line.
    void BeginArray(bool oneLine = false) { Open('[', oneLine); }
    void EndArray() { Close(']'); }
    /// Name of the next member; inside an object only.
    void Key(std::string_view name);

    void Text(std::wstring_view text);
    void Utf8(std::string_view text);
    /// Shortest decimal that reads back as the same number; null for what JSON cannot say (NaN, infinity).
    void Number(double number);
    void Integer(std::int64_t number);
    void Unsigned(std::uint64_t number);
    void Bool(bool value);
    void Null();

    /// A member with its value, written as the value's type has it: the calls above, UTF-8 for narrow texts.
    void Member(std::string_view name, const std::wstring& text) { Key(name), Text(text); }
    void Member(std::string_view name, const std::string& utf8) { Key(name), Utf8(utf8); }
    /// A list of texts, or of numbers on one line.
    void Member(std::string_view name, const std::vector<std::wstring>& texts);
    void Member(std::string_view name, std::span<const double> numbers);
    template <typename Value>
    requires std::is_arithmetic_v<Value>
    void Member(std::string_view name, Value value) {
        Key(name);
        if constexpr (std::is_same_v<Value, bool>) {
            Bool(value);
        } else if constexpr (std::is_floating_point_v<Value>) {
            Number(value);
        } else if constexpr (std::is_signed_v<Value>) {
            Integer(value);
        } else {
            Unsigned(value);
        }
    }

  private:
    struct Level {
        bool oneLine;
        bool empty = true;
    };
    void Open(char bracket, bool oneLine);
    void Close(char bracket);
    void BeforeValue();
    void NewLine();
    void Quoted(std::string_view utf8);

    std::ostream& out_;
    std::vector<Level> levels_;
    bool afterKey_ = false;
};

/// The text as UTF-8 that every reader accepts: what is no UTF-8 becomes U+FFFD.
std::string ValidUtf8(std::string_view bytes);

}  // namespace orvex
