#pragma once
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <span>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "host/inspect/InspectCommand.h"
#include "support/Environment.h"
#include "support/Text.h"

namespace orvex::testing {

using Json = nlohmann::ordered_json;
using Arguments = std::vector<std::wstring>;

/// Keeps what the command printed for the check against the schema, in the folder ORVEX_INSPECT_OUTPUTS, if
/// it is set. `extension`: L".json" or L".ndjson".
inline void KeepOutput(const std::string& output, const wchar_t* extension) {
    const std::wstring folder = EnvironmentVariable(L"ORVEX_INSPECT_OUTPUTS").value_or(L"");
    if (folder.empty() || output.empty()) {
        return;
    }
    static int number = 0;
    const auto* const test = ::testing::UnitTest::GetInstance()->current_test_info();
    const std::wstring name = FromUtf8(std::string(test->test_suite_name()) + "." + test->name());
    std::filesystem::create_directories(ToPath(folder));
    std::ofstream file(ToPath(folder) / (name + L"." + std::to_wstring(++number) + extension),
                       std::ios::binary);
    file << output;
}

struct Outcome {
    int code;
    std::string out;
    std::string err;
};

/// Runs the command with `input` on its standard input, which comes in small pieces.
inline Outcome Inspect(const Arguments& arguments, bool stop = false, std::string input = {}) {
    std::ostringstream out;
    std::ostringstream err;
    std::istringstream in(std::move(input));
    const auto read = [&in](std::span<char> buffer) {
        constexpr std::size_t kPiece = 7;
        in.read(buffer.data(), static_cast<std::streamsize>(std::min(buffer.size(), kPiece)));
        return static_cast<std::size_t>(in.gcount());
    };
    const int code = RunInspectCommand(arguments, {out, err, false, [stop] { return stop; }, read});
    if (std::ranges::count(arguments, L"--json") > 0) {
        KeepOutput(out.str(), L".json");
    } else if (std::ranges::count(arguments, L"--ndjson") > 0) {
        KeepOutput(out.str(), L".ndjson");
    }
    return {code, out.str(), err.str()};
}

/// The command's JSON; its objects in order.
inline Json Objects(Arguments arguments) {
    arguments.insert(arguments.begin(), L"--json");
    const Outcome outcome = Inspect(arguments);
    EXPECT_EQ(outcome.code, kInspectOk) << outcome.err;
    return Json::parse(outcome.out);
}

/// Expects members by their paths.
inline void ExpectMembers(const Json& object, const std::vector<std::pair<std::string, Json>>& members) {
    for (const auto& [path, value] : members) {
        const Json::json_pointer pointer(path);
        EXPECT_EQ(object.contains(pointer) ? object.at(pointer) : "missing", value) << path;
    }
}

}  // namespace orvex::testing
