#pragma once
#include <cstdint>
#include <iosfwd>
#include <string_view>
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
