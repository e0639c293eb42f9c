#include "orvexcommon/StringLibrary.h"

#include <atomic>
#include <cstdio>
#include <map>
#include <mutex>
#include <unordered_map>

#include "host/strings/EmbeddedTables.h"
#include "host/strings/Language.h"
#include "host/strings/StringTable.h"
#include "support/Text.h"

namespace {

using Texts = std::unordered_map<unsigned, std::wstring>;

Texts LoadTexts(orvex::Language language) {
    Texts texts;
    for (const auto& [id, text] : orvex::MergeStringTables(orvex::EmbeddedTable(language),
                                                           orvex::EmbeddedTable(orvex::Language::kEnglish))) {
        texts.emplace(id, orvex::FromUtf8(text));
    }
    return texts;
}

// Never destroyed: callers keep the pointers until the process ends, some in destructors of static objects.
const Texts& KnownTexts() {
    static const Texts& texts = *new Texts(LoadTexts(orvex::UserLanguage()));
    return texts;
}

void WriteMissingId(unsigned id) {
    std::fprintf(stderr, "orvex: no text has the id %u\n", id);
}

std::atomic<LSMissingIdHandler> missingIdHandler{WriteMissingId};

const std::wstring& TextOfUnknown(unsigned id) {
    static std::mutex& lock = *new std::mutex;
    static auto& unknown = *new std::map<unsigned, std::wstring>;
    const std::wstring* text = nullptr;
    bool isNew = false;
    {
        const std::lock_guard guard(lock);
        const auto [entry, inserted] = unknown.try_emplace(id, L"#" + std::to_wstring(id));
        text = &entry->second;
        isNew = inserted;
    }
    if (isNew) {  // outside the lock, so that a handler may ask for texts itself
        missingIdHandler.load()(id);
    }
    return *text;
}

}  // namespace

const wchar_t* LSwchar(unsigned id) {
    const Texts& texts = KnownTexts();
    const auto found = texts.find(id);
    return found != texts.end() ? found->second.c_str() : TextOfUnknown(id).c_str();
}

std::wstring LSIDwchar(unsigned id) {
    return LSwchar(id);
}

LSMissingIdHandler LSSetMissingIdHandler(LSMissingIdHandler handler) {
    return missingIdHandler.exchange(handler == nullptr ? WriteMissingId : handler);
}
