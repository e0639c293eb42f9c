#include "host/inspect/JsonWriter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>

namespace orvex {
namespace {

TEST(JsonWriter, EscapesWhateverATextHolds) {
    struct Case {
        std::string text;
        std::string written;
    };
    const Case cases[] = {
        {"plain", "\"plain\""},
        {"a\"b\\c", R"("a\"b\\c")"},
        {"line\r\n\ttab", R"("line\r\n\ttab")"},
        {std::string("nul\0bell\a", 9), R"("nul\u0000bell\u0007")"},
        {"Gr\xC3\xB6\xC3\x9F"
         "e",
         "\"Gr\xC3\xB6\xC3\x9F"
         "e\""},
        {"\xF0\x9F\x97\xBA", "\"\xF0\x9F\x97\xBA\""},
        {"cut \xC3", "\"cut \xEF\xBF\xBD\""},
        {"\xFF\xFE", "\"\xEF\xBF\xBD\xEF\xBF\xBD\""},
        {"overlong \xC0\xAF", "\"overlong \xEF\xBF\xBD\xEF\xBF\xBD\""},
        {"surrogate \xED\xA0\x80", "\"surrogate \xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\""},
        {"beyond \xF4\x90\x80\x80", "\"beyond \xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\""},
    };
    for (const Case& c : cases) {
        std::ostringstream out;
        JsonWriter(out).Utf8(c.text);
        EXPECT_EQ(out.str(), c.written);
    }
}

TEST(JsonWriter, NumbersReadBackAsTheyWere) {
    for (const double number : {0.1, 1e-8, 1.0 / 3, 123456789.012345, -0.0, 1e300, 5e-324}) {
        std::ostringstream out;
        JsonWriter(out).Number(number);
        EXPECT_EQ(std::strtod(out.str().c_str(), nullptr), number) << out.str();
    }
    for (const double number :
         {std::nan(""), std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()}) {
        std::ostringstream out;
        JsonWriter(out).Number(number);
        EXPECT_EQ(out.str(), "null");
    }
    std::ostringstream out;
    JsonWriter(out).Unsigned(std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(out.str(), "18446744073709551615");
}

TEST(JsonWriter, LaysOutNestedValues) {
    std::ostringstream out;
    JsonWriter json(out);
    json.BeginArray();
    json.BeginObject();
    json.Key("empty");
    json.BeginArray();
    json.EndArray();
    json.Key("xyz");
    json.BeginArray(true);
    json.Number(1);
    json.Number(2.5);
    json.EndArray();
    json.EndObject();
    json.Null();
    json.EndArray();
    EXPECT_EQ(out.str(), "[\n  {\n    \"empty\": [],\n    \"xyz\": [1, 2.5]\n  },\n  null\n]\n");
}

}  // namespace
}  // namespace orvex
