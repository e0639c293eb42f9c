#pragma once
#include <optional>
#include <string>

#include "support/Environment.h"

namespace orvex::testing {

/// Sets an environment variable, or takes it away when there is no value.
void PutVariable(const std::wstring& name, const std::optional<std::wstring>& value);

/// Sets an environment variable until destroyed; no value takes it away.
class Variable {
  public:
    Variable(std::wstring name, const std::optional<std::wstring>& value)
        : name_(std::move(name)), old_(EnvironmentVariable(name_)) {
        PutVariable(name_, value);
    }
    ~Variable() { PutVariable(name_, old_); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

  private:
    std::wstring name_;
    std::optional<std::wstring> old_;
};

}  // namespace orvex::testing
