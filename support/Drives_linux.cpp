#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>
#include <vector>

#include "support/Drives.h"
#include "support/Text.h"

namespace orvex {
namespace {

namespace fs = std::filesystem;
constexpr int kMostLinks = 40;  // as the system itself

struct Mount {
    std::string folder;
    std::string device;  ///< its numbers
};

// The table writes blanks and the like as a backslash and three octal digits.
std::string WithoutEscapes(const std::string& text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isEscape = text[i] == '\\' && i + 3 < text.size();
        const std::string digits = isEscape ? text.substr(i + 1, 3) : std::string();
        if (isEscape && std::ranges::all_of(digits, [](char c) { return c >= '0' && c <= '7'; })) {
            plain += static_cast<char>(std::stoi(digits, nullptr, 8));
            i += 3;
        } else {
            plain += text[i];
        }
    }
    return plain;
}

bool IsWithin(const std::string& path, const std::string& folder) {
    return folder == "/" ||
           (path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/'));
}

class Mounts {
  public:
    Mounts() {
        std::ifstream table("/proc/self/mountinfo");
        for (std::string line; std::getline(table, line);) {
            std::istringstream fields(line);
            std::string number, parent, device, root, folder;
            if (fields >> number >> parent >> device >> root >> folder) {
                mounts_.push_back({WithoutEscapes(folder), device});
            }
        }
    }

    std::string DeviceOf(const std::string& path) const {
        const Mount* deepest = nullptr;
        for (const Mount& mount : mounts_) {  // the last of those on one folder hides the others
            if (IsWithin(path, mount.folder) &&
                (deepest == nullptr || mount.folder.size() >= deepest->folder.size())) {
                deepest = &mount;
            }
        }
        return deepest == nullptr ? std::string() : deepest->device;
    }

    // Follows links as long as they are on the drive with the root folder.
    std::string DeviceBehind(const fs::path& folder) const {
        const std::string home = DeviceOf("/");
        fs::path rest = folder;
        for (int links = 0; links <= kMostLinks; ++links) {
            const auto [link, behind] = FirstLink(rest, home);
            if (link.empty()) {
                break;
            }
            std::error_code error;
            const fs::path target = fs::read_symlink(link, error);
            rest = ((link.parent_path() / target) / behind).lexically_normal();
        }
        return DeviceOf(rest.native());
    }

  private:
    // The first link on a path, and the path behind it; none on another drive.
    std::pair<fs::path, fs::path> FirstLink(const fs::path& path, const std::string& home) const {
        fs::path known;
        for (auto part = path.begin(); part != path.end(); ++part) {
            known /= *part;
            std::error_code error;
            if (DeviceOf(known.native()) != home) {
                return {};
            }
            if (fs::is_symlink(fs::symlink_status(known, error))) {
                fs::path behind;
                std::for_each(std::next(part), path.end(), [&](const fs::path& one) { behind /= one; });
                return {known, behind};
            }
        }
        return {};
    }

    std::vector<Mount> mounts_;
};

}  // namespace

DriveFinder FindDrivesByName() {
    return [mounts = Mounts()](const std::wstring& folder) {
        return FromUtf8(mounts.DeviceBehind(ToPath(folder)));
    };
}

}  // namespace orvex
