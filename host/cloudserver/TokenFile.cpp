#include "host/cloudserver/TokenFile.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <random>
#include <string_view>

#include "support/Environment.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/TemporaryFile.h"
#include "support/Text.h"

namespace orvex {

namespace {

constexpr std::size_t kLeast = 8, kMost = 4096;

std::string RandomToken() {
    constexpr std::string_view digits = "0123456789abcdef";
    std::random_device random;
    std::string token;
    for (int i = 0; i < 32; ++i) {
        token += digits[random() & 15U];
    }
    return token;
}

[[noreturn]] void ThrowUnwritable(const std::wstring& file, SystemError error) {
    throw LDataError(FormatText(Text(text::kListExportFailed), {file, SystemErrorText(error)}));
}

/// Writes the file unless there is one.
void WritePrivately(const std::wstring& file, const std::string& text) {
    if (const SystemError error = CreateFolders(FolderOf(file)); error != 0) {
        ThrowUnwritable(file, error);
    }
    TemporaryFile temporary(file);
    std::error_code ignored;  // of file systems without permissions
    std::filesystem::permissions(ToPath(temporary.Path()),
                                 std::filesystem::perms::owner_read | std::filesystem::perms::owner_write,
                                 ignored);
    ForgetStreamError();
    std::ofstream stream(ToPath(temporary.Path()), std::ios::binary);
    stream << text << std::flush;
    if (!stream) {
        ThrowUnwritable(file, LastStreamError());
    }
    stream.close();
    bool taken = false;  // by another server that starts for the first time
    if (const SystemError error = temporary.CommitTo(file, taken); error != 0 && !taken) {
        ThrowUnwritable(file, error);
    }
}

}  // namespace

std::string ReadToken(const std::wstring& file) {
    ForgetStreamError();
    std::ifstream stream(ToPath(file), std::ios::binary);
    std::string token(kMost + 3, '\0');
    if (!FileExists(file) || !stream) {
        throw LDataError(
            FormatText(Text(text::kInspectUnreadable), {file, SystemErrorText(LastStreamError())}));
    }
    stream.read(token.data(), static_cast<std::streamsize>(token.size()));
    token.resize(static_cast<std::size_t>(stream.gcount()));
    while (token.ends_with('\n') || token.ends_with('\r')) {
        token.pop_back();
    }
    const bool isPlain = std::ranges::all_of(token, [](char c) { return c > ' ' && c < '\x7f'; });
    if (!isPlain || token.size() < kLeast || token.size() > kMost) {
        throw LDataError(FormatText(Text(text::kCloudServerBadToken), {file, kLeast, kMost}));
    }
    return token;
}

std::string UserToken(std::wstring& file) {
    const std::filesystem::path folder = UserConfigFolder();
    if (folder.empty()) {
        ThrowUnwritable(L"$HOME/.config/orvex/cloud-server-token", ENOENT);
    }
    file = FromPath(folder / "cloud-server-token");
    if (!FileExists(file)) {
        WritePrivately(file, RandomToken() + "\n");
    }
    return ReadToken(file);
}

}  // namespace orvex
