#include "support/testing/Variable.h"

#include <windows.h>

namespace orvex::testing {

void PutVariable(const std::wstring& name, const std::optional<std::wstring>& value) {
    SetEnvironmentVariableW(name.c_str(), value ? value->c_str() : nullptr);
}

}  // namespace orvex::testing
