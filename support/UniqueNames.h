#pragma once
#include <string>
#include <unordered_map>
#include <unordered_set>

#include "support/Text.h"

namespace orvex {

/// Gives names that differ from each other in any letter case.
class UniqueNames {
  public:
    /// The name itself, or with " (2)" and so on behind it when it was given already.
    std::wstring Take(const std::wstring& name) {
        unsigned& number = numbers_[ToUpper(name)];
        std::wstring taken;
        do {
            ++number;
            taken = number == 1 ? name : name + L" (" + std::to_wstring(number) + L")";
        } while (!taken_.insert(ToUpper(taken)).second);
        return taken;
    }

  private:
    std::unordered_map<std::wstring, unsigned> numbers_;  ///< the last that was tried for a name
    std::unordered_set<std::wstring> taken_;
};

}  // namespace orvex
