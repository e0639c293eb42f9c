#include "orvexcommon/StringLibrary.h"

#include <map>
#include <memory>
#include <mutex>

const wchar_t* LSwchar(unsigned id) {
    static std::mutex lock;
    static std::map<unsigned, std::wstring> unknown;
    const std::lock_guard guard(lock);
    return unknown.try_emplace(id, L"#" + std::to_wstring(id)).first->second.c_str();
}

std::wstring LSIDwchar(unsigned id) {
    return LSwchar(id);
}
