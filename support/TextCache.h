#pragma once
#include <cstddef>
#include <list>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace orvex {

/// Least-recently-used cache of what is made from a text, such as the description of a WKT. However many
/// threads ask, it is made once while it is kept. Safe from any thread. `Value` is copied.
template <typename Value>
class TextCache {
  public:
    /// Keeps up to `mostEntries`, whose texts take up to `mostBytes` together.
    TextCache(std::size_t mostEntries, std::size_t mostBytes)
        : mostEntries_(mostEntries), mostBytes_(mostBytes) {}

    /// The value that `make` returns for the text; it never runs on two threads at once. Throws what `make`
    /// throws; it is then called again the next time.
    template <typename Make>
    Value Get(std::string_view text, const Make& make) {
        Value value;
        if (Find(text, value)) {
            return value;
        }
        const std::lock_guard making(making_);
        // Another thread may have made it while this one waited.
        if (!Find(text, value)) {
            value = make();
            Insert(text, value);
        }
        return value;
    }

    /// Takes the value that is kept for the text; false if there is none.
    bool Find(std::string_view text, Value& value) {
        const std::lock_guard guard(lock_);
        const auto place = places_.find(text);
        if (place == places_.end()) {
            return false;
        }
        latest_.splice(latest_.begin(), latest_, place->second);
        value = latest_.front().second;
        return true;
    }

    /// Keeps a value that was made elsewhere, unless there is one for the text.
    void Put(std::string_view text, const Value& value) {
        Get(text, [&value] { return value; });
    }

  private:
    using Entry = std::pair<const std::string, Value>;
    using Entries = std::list<Entry>;

    void Insert(std::string_view text, const Value& value) {
        if (text.size() > mostBytes_) {
            return;
        }
        const std::lock_guard guard(lock_);
        latest_.emplace_front(text, value);
        places_.emplace(latest_.front().first, latest_.begin());
        bytes_ += text.size();
        while (latest_.size() > mostEntries_ || bytes_ > mostBytes_) {
            bytes_ -= latest_.back().first.size();
            places_.erase(latest_.back().first);
            latest_.pop_back();
        }
    }

    const std::size_t mostEntries_;
    const std::size_t mostBytes_;
    std::mutex making_;
    std::mutex lock_;  ///< guards what follows; never held while making
    Entries latest_;   ///< most recently used first
    std::size_t bytes_ = 0;
    std::unordered_map<std::string_view, typename Entries::iterator> places_;  ///< keys are in latest_
};

}  // namespace orvex
