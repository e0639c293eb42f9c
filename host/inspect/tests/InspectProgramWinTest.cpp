// The program itself, started as a user of Windows does: Unicode arguments, patterns, output into a file.
#include <gmock/gmock.h>
#include <windows.h>

#include "host/inspect/InspectCommand.h"
#include "las/testing/LasBuilder.h"
#include "support/Environment.h"
#include "support/Handle_win.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

Handle CreateInheritedFile(const std::wstring& path) {
    SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    return Handle(CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS,
                              FILE_ATTRIBUTE_NORMAL, nullptr));
}

/// Runs the program in a folder, with its standard output in a file; its exit code.
DWORD RunInspect(const std::wstring& folder, const std::wstring& arguments, const std::wstring& output) {
    const std::wstring program = FromPath(ModuleFolder() / "orvex-inspect.exe");
    std::wstring line = L"\"" + program + L"\" " + arguments;
    const Handle out = CreateInheritedFile(output);
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = out.Get();
    startup.hStdError = out.Get();
    PROCESS_INFORMATION started{};
    DWORD code = ~DWORD{0};
    if (CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr,
                       folder.c_str(), &startup, &started) != FALSE) {
        const Handle process(started.hProcess);
        const Handle thread(started.hThread);
        WaitForSingleObject(process.Get(), INFINITE);
        GetExitCodeProcess(process.Get(), &code);
    }
    return code;
}

TEST(InspectProgram, TakesUnicodeAndPatternsAndWritesBytes) {
    const testing::TemporaryFolder folder;
    const std::string las = testing::LasBuilder().AddPoints(3).Build();
    for (const wchar_t* name :
         {L"Größe süd\\Ф 10.las", L"Größe süd\\Ф 9.las", L"Größe süd\\other.lasx", L"single.las"}) {
        folder.Write(name, las);
    }
    const std::wstring output = folder.Name(L"out.csv");
    ASSERT_EQ(
        RunInspect(FromPath(folder.Path()), L"--csv \"Größe süd/*.las\" single.las nothing?.las", output),
        DWORD{kInspectPathMissing});
    const std::string text = testing::ReadFile(output);
    const std::size_t ninth = text.find(ToUtf8(L"\r\nGröße süd\\Ф 9.las,las,true,"));
    const std::size_t tenth = text.find(ToUtf8(L"\r\nGröße süd\\Ф 10.las,las,true,"));
    const std::size_t single = text.find("\r\nsingle.las,las,true,");
    EXPECT_LT(ninth, tenth) << text;
    EXPECT_LT(tenth, single) << text;
    EXPECT_NE(single, std::string::npos) << text;
    EXPECT_THAT(text, Not(HasSubstr("\r\r\n")));
    EXPECT_THAT(text, Not(HasSubstr("other")));
    EXPECT_THAT(text, HasSubstr("nothing?.las"));
}

}  // namespace
}  // namespace orvex
