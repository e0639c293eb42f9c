#include "las/FileIdRegistry.h"

namespace orvex {

FileIdRegistry& FileIdRegistry::Instance() {
    static FileIdRegistry registry;
    return registry;
}

std::uint16_t FileIdRegistry::FileId(const std::wstring& fileName, std::uint16_t requested) {
    if (requested == kAny) {
        return Enter(fileName).first;
    }
    const std::lock_guard guard(lock_);
    Record(fileName, requested);
    return requested;
}

// Names are never taken out, and the map's nodes stay where they are.
std::pair<std::uint16_t, const std::wstring*> FileIdRegistry::Enter(const std::wstring& fileName) {
    const std::lock_guard guard(lock_);
    if (const auto known = idOfName_.find(fileName); known != idOfName_.end()) {
        return {known->second, &known->first};
    }
    const std::uint16_t id = NextId();
    return {id, id == kAny ? nullptr : Record(fileName, id)};
}

std::uint16_t FileIdRegistry::NextId() const {
    if (namesOfId_.empty()) {
        return 0;
    }
    const auto next = static_cast<std::uint16_t>(namesOfId_.rbegin()->first + 1);
    if (next != kAny || namesOfId_.size() == kAny) {
        return next;
    }
    std::uint16_t free = 0;
    for (const auto& [id, names] : namesOfId_) {
        if (id != free) {
            break;
        }
        ++free;
    }
    return free;
}

const std::wstring* FileIdRegistry::Record(const std::wstring& fileName, std::uint16_t id) {
    const auto [entry, isNew] = idOfName_.try_emplace(fileName, id);
    if (!isNew) {
        const auto old = namesOfId_.find(entry->second);
        if (--old->second == 0) {
            namesOfId_.erase(old);
        }
        entry->second = id;
    }
    ++namesOfId_[id];
    return &entry->first;
}

}  // namespace orvex
