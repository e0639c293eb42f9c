#include "support/registration/RegistryJournal_win.h"

#include "support/LDataError.h"
#include "support/Log.h"

namespace orvex {

RegistryJournal::~RegistryJournal() {
    for (auto step = undo_.rbegin(); step != undo_.rend(); ++step) {
        try {
            (*step)();
        } catch (...) {
            LogWarning(L"registration: a change could not be taken back: " + CurrentExceptionText());
        }
    }
}

// Each step back is noted before the change is made: a change may fail half way.

void RegistryJournal::CreateKey(const RegistryPlace& place) {
    // Only the change says whether it is one to be taken back; the note is ready by then, and cannot fail.
    std::function<void()> undo = [place] { RemoveRegistryTree(place); };
    undo_.reserve(undo_.size() + 1);
    if (CreateRegistryKey(place)) {
        undo_.push_back(std::move(undo));
    }
}

void RegistryJournal::SetValue(const RegistryPlace& place, const std::wstring& name,
                               const RegistryData& data) {
    RememberValue(place, name);
    WriteRegistryValue(place, name, data);
}

void RegistryJournal::RemoveValue(const RegistryPlace& place, const std::wstring& name) {
    RememberValue(place, name);
    RemoveRegistryValue(place, name);
}

void RegistryJournal::RemoveTree(const RegistryPlace& place) {
    Remember(place);
    RemoveRegistryTree(place);
}

void RegistryJournal::Remember(const RegistryPlace& place) {
    if (auto image = ReadRegistry(place)) {
        undo_.emplace_back([place, image = *std::move(image)] { RestoreRegistry(place, image); });
    } else {
        undo_.emplace_back([place] { RemoveRegistryTree(place); });
    }
}

void RegistryJournal::RememberValue(const RegistryPlace& place, const std::wstring& name) {
    if (auto data = ReadRegistryValue(place, name)) {
        undo_.emplace_back([place, name, data = *std::move(data)] { WriteRegistryValue(place, name, data); });
    } else {
        undo_.emplace_back([place, name] { RemoveRegistryValue(place, name); });
    }
}

}  // namespace orvex
