#pragma once
// What tests ask of the system or change in it.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "support/Environment.h"

namespace orvex::testing {

/// Sets an environment variable, or removes it if there is no value.
void PutVariable(const std::wstring& name, const std::optional<std::wstring>& value);

/// Sets an environment variable until destroyed; no value removes it.
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

/// Number of this process's open files and other handles.
std::size_t OpenHandles();
/// Number of views of a file in this process's memory.
std::size_t MappingsOf(const std::wstring& path);
/// Peak memory of this process, in bytes.
std::uint64_t PeakMemory();

/// Extends a file without using disk space for what is added; throws if the file system cannot.
void GrowSparse(const std::wstring& path, std::uint64_t size);

}  // namespace orvex::testing
