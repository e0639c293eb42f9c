#pragma once
#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <unordered_map>

namespace orvex {

/// Ids of file names, kept for the life of the process. Safe from any thread.
class FileIdRegistry {
  public:
    /// Requests any id.
    static constexpr std::uint16_t kAny = 65535;

    /// Registry of the opened files.
    static FileIdRegistry& Instance();

    /// With an id: gives it to the name, replacing an older one, and returns it. With kAny: returns the
    /// name's id, else a new one, the largest so far plus one (0 for the first). Once that would reach kAny,
    /// the smallest free id; kAny itself, unrecorded, if all are taken.
    std::uint16_t FileId(const std::wstring& fileName, std::uint16_t requested);

    /// The registry's copy of a recorded name, valid for the life of the process, so that the rows of a long
    /// list need no copies of their own; null for a name that is not recorded.
    const std::wstring* RecordedName(const std::wstring& fileName);

  private:
    std::uint16_t NextId() const;
    void Record(const std::wstring& fileName, std::uint16_t id);

    std::mutex lock_;
    std::unordered_map<std::wstring, std::uint16_t> idOfName_;
    std::map<std::uint16_t, std::size_t> namesOfId_;  // how many names have an id
};

}  // namespace orvex
