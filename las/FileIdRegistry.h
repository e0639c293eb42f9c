#pragma once
#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <unordered_map>
#include <utility>

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

    /// The name's id as FileId gives it for kAny, and the registry's copy of the name, valid for the life of
    /// the process, so that the rows of a long list need no copies of their own; null if it is not recorded.
    std::pair<std::uint16_t, const std::wstring*> Enter(const std::wstring& fileName);

  private:
    std::uint16_t NextId() const;
    const std::wstring* Record(const std::wstring& fileName, std::uint16_t id);

    std::mutex lock_;
    std::unordered_map<std::wstring, std::uint16_t> idOfName_;
    std::map<std::uint16_t, std::size_t> namesOfId_;  // how many names have an id
};

}  // namespace orvex
