#include "support/testing/Variable.h"

#include <cstdlib>

#include "support/Text.h"

namespace orvex::testing {

void PutVariable(const std::wstring& name, const std::optional<std::wstring>& value) {
    if (value) {
        setenv(ToUtf8(name).c_str(), ToUtf8(*value).c_str(), 1);
    } else {
        unsetenv(ToUtf8(name).c_str());
    }
}

}  // namespace orvex::testing
