#pragma once
#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <unordered_map>

namespace orvex {

/// Numbers for file names, kept for the life of the process. Safe from any thread.
class FileIdRegistry {
  public:
    /// Asks for whichever id fits.
    static constexpr std::uint16_t kAny = 65535;

    /// The one that opened files are entered in.
    static FileIdRegistry& Instance();

    /// With a given id: records the name with it, replacing the name's older id, and returns it. With kAny:
    /// the name's id, else the largest id so far plus one (0 for the first). When that would leave the
    /// numbers below kAny, the smallest id that nobody has; kAny itself, unrecorded, when all are taken.
    std::uint16_t FileId(const std::wstring& fileName, std::uint16_t requested);

    /// The registry's own copy of a recorded name, valid for the life of the process, so that the rows of a
    /// long list need none of theirs; null for a name that is not recorded.
    const std::wstring* RecordedName(const std::wstring& fileName);

  private:
    std::uint16_t NextId() const;
    void Record(const std::wstring& fileName, std::uint16_t id);

    std::mutex lock_;
    std::unordered_map<std::wstring, std::uint16_t> idOfName_;
    std::map<std::uint16_t, std::size_t> namesOfId_;  // how many names have an id
};

}  // namespace orvex
