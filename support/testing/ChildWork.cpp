#include "support/testing/ChildWork.h"

#include <map>

namespace orvex::testing {
namespace {

// A function's, so that it is there before the first work at namespace scope is named.
std::map<std::wstring, ChildWork::Function>& Works() {
    static std::map<std::wstring, ChildWork::Function> works;
    return works;
}

}  // namespace

ChildWork::ChildWork(const std::wstring& name, Function function) {
    Works()[name] = function;
}

int DoChildWork(const std::wstring& name, const ChildArguments& arguments) {
    const auto work = Works().find(name);
    return work == Works().end() ? -1 : work->second(arguments);
}

}  // namespace orvex::testing
