// Writes the page of the record's members:  orvex-record-page [--check] FILE
// With --check the file is only compared: the exit code is 1 if it is out of date.
#include <array>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string_view>

#include "record/RecordMembers.h"

namespace orvex {
namespace {

constexpr const char* kHead = R"(# The record's members

Made by `orvex-record-page` from `record/RecordMembers.cpp`; not to be edited.

`AddFilesParams` in C++, and under the same names the members of the JSON request (inputs) and result (results) of
`orvex_show_add_files` in [orvex.h](../include/orvexcommon/orvex.h). The host sets inputs before the call. Results are written when
the dialog ends with OK: those of the LAS, the raster and the feature tab whenever the tab exists, those of the others only if
the tab lists anything. The rest is as in a new record: false, 0, empty.
)";

/// Type of a member in JSON, in the order of MemberPointer's alternatives.
constexpr std::array kTypes{"boolean",
                            "whole number",
                            "whole number",
                            "text",
                            "array of texts",
                            "object of texts",
                            "object of arrays of texts",
                            "array of whole numbers",
                            "object of objects",
                            "object of objects",
                            "none: C++ only"};
static_assert(kTypes.size() == std::variant_size_v<MemberPointer>);

void WriteMembers(MemberUse use, const char* heading, std::ostream& out) {
    out << "\n## " << heading
        << "\n\n| member | JSON | tab | unit or range | meaning |\n|---|---|---|---|---|\n";
    for (const RecordMember& row : RecordMembers()) {
        if (row.use == use) {
            out << "| `" << row.name << "` | " << kTypes.at(row.member.index()) << " | " << row.tab << " | "
                << row.unit << " | " << row.meaning << " |\n";
        }
    }
}

std::string Page() {
    std::ostringstream out;
    out << kHead;
    WriteMembers(MemberUse::Input, "Inputs", out);
    WriteMembers(MemberUse::Result, "Results", out);
    return out.str();
}

std::string ReadAll(const char* file) {
    std::ostringstream text;
    text << std::ifstream(file, std::ios::binary).rdbuf();
    return text.str();
}

int Check(const char* file) {
    if (ReadAll(file) == Page()) {
        return 0;
    }
    std::cerr << file << " is out of date; write it by:  orvex-record-page " << file << "\n";
    return 1;
}

int Write(const char* file) {
    std::ofstream out(file, std::ios::binary);
    out << Page();
    out.close();
    return out ? 0 : 1;
}

}  // namespace
}  // namespace orvex

int main(int argc, char** argv) {
    if (argc == 3 && std::string_view(argv[1]) == "--check") {
        return orvex::Check(argv[2]);
    }
    return argc == 2 ? orvex::Write(argv[1]) : 2;
}
