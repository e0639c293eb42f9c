// LAZ files and their LAS buddies: tests and names.
#include <chrono>
#include <optional>

#include "host/utilities/LazLayout.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/Files.h"
#include "support/LDataError.h"
#include "support/Text.h"

using namespace orvex;

namespace {

/// Seconds since the epoch; none when the file is not there.
std::optional<std::chrono::seconds> ModifiedSeconds(const std::wstring& path) {
    const auto time = LastWriteTime(path);
    return time ? std::optional(std::chrono::floor<std::chrono::seconds>(time->time_since_epoch()))
                : std::nullopt;
}

/// The folder of a path; the current one for a bare name.
std::wstring FolderOrCurrent(const std::wstring& path) {
    const std::wstring folder = FolderOf(path);
    return folder.empty() ? L"." : folder;
}

}  // namespace

bool OrvexUtilities::IsLAZFile(const std::wstring& path) {
    return UpperExtensionOf(path) == L".LAZ";
}

bool OrvexUtilities::IsLAZEnabled(const std::wstring& path) {
    return IsLAZFile(path) && FileExists(path) &&
           (LAZEnabledLASFileExists(path) || CanCreateFilesIn(ToPath(FolderOrCurrent(path))));
}

std::wstring OrvexUtilities::GetLAZBuddyPath(const std::wstring& path) {
    const std::wstring extension = UpperExtensionOf(path);
    if (extension != L".LAZ" && extension != L".LAS") {
        return {};
    }
    std::wstring buddy = path;
    switch (buddy.back()) {
        case L'z':
            buddy.back() = L's';
            break;
        case L'Z':
            buddy.back() = L'S';
            break;
        case L's':
            buddy.back() = L'z';
            break;
        default:
            buddy.back() = L'Z';
            break;
    }
    return buddy;
}

bool OrvexUtilities::IsLAZNewer(const std::wstring& lazPath) {
    const auto laz = ModifiedSeconds(lazPath);
    if (!IsLAZFile(lazPath) || !laz) {
        return false;
    }
    const auto las = ModifiedSeconds(GetLAZBuddyPath(lazPath));
    return !las || *laz > *las;
}

bool OrvexUtilities::LAZEnabledLASFileExists(const std::wstring& lazPath) {
    return IsLAZFile(lazPath) && FileExists(GetLAZBuddyPath(lazPath));
}

bool OrvexUtilities::LAZCheck(const std::wstring& path, std::wstring& reason) {
    reason.clear();
    try {
        RequireUsableCodecRecord(path, ReadLazLayout(path));
    } catch (...) {
        reason = CurrentExceptionText();
    }
    return reason.empty();
}
