#include "entry/c/OptionJson.h"

#include <gtest/gtest.h>

#include "entry/ComponentCalls.h"
#include "settings/OptionStore.h"
#include "settings/testing/FakeRegistry.h"

namespace orvex {
namespace {

TEST(OptionJson, TextsComeBackAsTheyWereGiven) {
    testing::FakeRegistry registry;
    const OptionStore options(registry);
    EXPECT_EQ(ReadOption(options, "optResellerName"), "null");
    for (const char* json :
         {R"("")", R"("a \"b\"\n")", "\"M\xC3\xBCller \xF0\x9F\x98\x80\"", R"("\udc80")"}) {
        WriteOption(options, "optResellerName", json);
        EXPECT_EQ(ReadOption(options, "optResellerName"), json);
    }
    EXPECT_THROW(WriteOption(options, "optResellerName", "5"), InvalidCall);
    registry.denyOpen = {RegistryRoot::LocalMachine};
    EXPECT_THROW(WriteOption(options, "optResellerName", "\"a\""), LDataError);
}

}  // namespace
}  // namespace orvex
