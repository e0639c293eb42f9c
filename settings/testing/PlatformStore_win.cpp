#include "settings/testing/PlatformStore.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <list>

#include "support/Handle_win.h"
#include "support/com/ModuleFile_win.h"

namespace orvex::testing {
namespace {

void Redirect(HKEY root, const std::wstring& path) {
    HKEY key = nullptr;
    EXPECT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key,
                              nullptr),
              ERROR_SUCCESS);
    EXPECT_EQ(RegOverridePredefKey(root, OpenKey(key).Get()), ERROR_SUCCESS);
}

struct EmptyStore {
    EmptyStore() {
        // The current user comes last: the other's key is made under the true one.
        Redirect(HKEY_LOCAL_MACHINE, path + L"\\Machine");
        Redirect(HKEY_CURRENT_USER, path + L"\\User");
    }
    ~EmptyStore() {
        RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
        RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
        EXPECT_EQ(RegDeleteTreeW(HKEY_CURRENT_USER, path.c_str()), ERROR_SUCCESS);
    }
    EmptyStore(const EmptyStore&) = delete;
    EmptyStore& operator=(const EmptyStore&) = delete;

    const std::wstring path = L"Software\\OrvexTest-" + std::to_wstring(GetCurrentProcessId());
};

void SetMachineRights(const wchar_t* rights) {
    HKEY key = nullptr;
    ASSERT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"Software\\Tessaly Group\\Orvex", 0, WRITE_DAC, &key),
              ERROR_SUCCESS);
    const OpenKey open(key);
    const LocalMemory<void> descriptor = SecurityDescriptorOf(rights);
    EXPECT_EQ(RegSetKeySecurity(key, DACL_SECURITY_INFORMATION, descriptor.get()), ERROR_SUCCESS);
}

/// One file or folder that cannot be written. An access list denies everybody; a handle that does not share
/// writing does so under Wine as well, which maps access lists to a mode that does not bind root.
class ReadOnlyPath {
  public:
    explicit ReadOnlyPath(std::filesystem::path path)
        : path_(std::move(path)),
          reader_(CreateFileW(path_.c_str(), FILE_READ_DATA, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                              FILE_FLAG_BACKUP_SEMANTICS, nullptr)) {
        // FILE_WRITE_DATA, FILE_APPEND_DATA, FILE_DELETE_CHILD; for folders the first two make files and
        // folders.
        Set(L"D:P(D;;0x46;;;WD)(A;;FA;;;WD)");
    }
    ~ReadOnlyPath() { Set(L"D:AI(A;;FA;;;WD)"); }
    ReadOnlyPath(const ReadOnlyPath&) = delete;
    ReadOnlyPath& operator=(const ReadOnlyPath&) = delete;

  private:
    void Set(const wchar_t* rights) const {
        if (const LocalMemory<void> descriptor = SecurityDescriptorOf(rights)) {
            SetFileSecurityW(path_.c_str(), DACL_SECURITY_INFORMATION, descriptor.get());
        }
    }

    std::filesystem::path path_;
    Handle reader_;
};

}  // namespace

Guard UseEmptyStore() {
    return std::make_shared<EmptyStore>();
}

Guard DenyMachineWrites() {
    // KEY_SET_VALUE and KEY_CREATE_SUB_KEY are denied. (Wine makes subkeys all the same.)
    SetMachineRights(L"D:P(D;;0x6;;;WD)(A;;KA;;;WD)");
    return {nullptr, [](void*) { SetMachineRights(L"D:(A;;KA;;;WD)"); }};
}

Guard DenyWritesIn(const std::filesystem::path& folder) {
    const auto paths = std::make_shared<std::list<ReadOnlyPath>>();
    for (const auto& file : std::filesystem::directory_iterator(folder)) {
        paths->emplace_back(file.path());
    }
    paths->emplace_back(folder);
    return paths;
}

// A child is this program, started with its words as arguments.
std::vector<int> RunChildren(const std::vector<Words>& children) {
    const std::wstring program = ModuleFile(reinterpret_cast<const void*>(&RunChildren));
    std::vector<Handle> started;
    for (const Words& words : children) {
        std::wstring line = L"\"" + program + L"\"";
        for (const std::wstring& word : words) {
            line += L" \"" + word + L"\"";
        }
        STARTUPINFOW startup{};
        startup.cb = sizeof(startup);
        PROCESS_INFORMATION child{};
        CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                       &child);
        const Handle thread(child.hThread);
        started.emplace_back(child.hProcess);
    }
    std::vector<int> codes;
    for (const Handle& process : started) {
        WaitForSingleObject(process.Get(), INFINITE);
        DWORD code = 0;
        codes.push_back(GetExitCodeProcess(process.Get(), &code) != FALSE ? static_cast<int>(code) : -1);
    }
    return codes;
}

}  // namespace orvex::testing
