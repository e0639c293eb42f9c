#include "support/Drives_linux.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string_view>
#include <system_error>
#include <vector>

#include "support/Text.h"

namespace orvex {
namespace {

namespace fs = std::filesystem;
constexpr int kMostLinks = 40;  // as the system itself

struct Mount {
    std::string folder;
    std::string device;  ///< its numbers
    bool isLocal;        ///< a disk of this computer that has links
};

bool IsLocal(const std::string& type) {
    constexpr std::array<std::string_view, 13> kTypes{"bcachefs", "btrfs", "ext2",  "ext3",    "ext4",
                                                      "f2fs",     "jfs",   "ntfs3", "overlay", "reiserfs",
                                                      "tmpfs",    "xfs",   "zfs"};
    return std::ranges::find(kTypes, type) != kTypes.end();
}

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
    explicit Mounts(std::istream& table) {
        for (std::string line; std::getline(table, line);) {
            std::istringstream fields(line);
            std::string number, parent, device, root, folder;
            if (fields >> number >> parent >> device >> root >> folder) {
                std::string field, type;
                while (fields >> field && field != "-") {  // options, of any number
                }
                fields >> type;
                mounts_.push_back({WithoutEscapes(folder), device, IsLocal(type) || folder == "/"});
            }
        }
    }

    // Follows links as long as they are on local disks. What is on no drive that is known counts as on one
    // with all that begins with the same folder.
    std::string DeviceBehind(const fs::path& folder) const {
        fs::path rest = folder;
        for (int links = 0; links <= kMostLinks; ++links) {
            const auto [link, behind] = FirstLink(rest);
            if (link.empty()) {
                break;
            }
            std::error_code error;
            const fs::path target = fs::read_symlink(link, error);
            rest = ((link.parent_path() / target) / behind).lexically_normal();
        }
        const Mount* const mount = MountOf(rest.native());
        return mount != nullptr ? mount->device : rest.native().substr(0, rest.native().find('/', 1));
    }

  private:
    const Mount* MountOf(const std::string& path) const {
        const Mount* deepest = nullptr;
        for (const Mount& mount : mounts_) {  // the last of those on one folder hides the others
            if (IsWithin(path, mount.folder) &&
                (deepest == nullptr || mount.folder.size() >= deepest->folder.size())) {
                deepest = &mount;
            }
        }
        return deepest;
    }

    // The first link on a path, and the path behind it; none on a drive that is not local.
    std::pair<fs::path, fs::path> FirstLink(const fs::path& path) const {
        fs::path known;
        for (auto part = path.begin(); part != path.end(); ++part) {
            known /= *part;
            std::error_code error;
            const Mount* const mount = MountOf(known.native());
            if (mount == nullptr || !mount->isLocal) {
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

DriveFinder FindDrivesIn(std::istream& mountTable) {
    return [mounts = Mounts(mountTable)](const std::wstring& folder) {
        return FromUtf8(mounts.DeviceBehind(ToPath(folder)));
    };
}

DriveFinder FindDrivesByName() {
    std::ifstream table("/proc/self/mountinfo");
    return FindDrivesIn(table);
}

}  // namespace orvex
