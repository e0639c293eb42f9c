#pragma once
#include "support/testing/ChildProcess.h"

namespace orvex::testing {

/// Does the work of that name in this process; -1 when there is none.
int DoChildWork(const std::wstring& name, const ChildArguments& arguments);

}  // namespace orvex::testing
