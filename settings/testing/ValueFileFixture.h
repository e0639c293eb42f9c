#pragma once
#include <gtest/gtest.h>

#include <set>

#include "settings/ValueFile.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex::testing {

/// Stores a text; false when it was refused.
inline bool Put(ValueFile& file, const std::wstring& name, const std::string& text) {
    return file.Store(L"key", name, 3, std::as_bytes(std::span(text))) == RegistryStatus::Ok;
}

/// The stored text; "-" for none, "!" for no access.
inline std::string Get(ValueFile& file, const std::wstring& name) {
    ValueFile::Value value;
    const RegistryStatus status = file.Find(L"key", name, value);
    if (status != RegistryStatus::Ok) {
        return status == RegistryStatus::NotFound ? "-" : "!";
    }
    return {reinterpret_cast<const char*>(value.data.data()), value.data.size()};
}

/// A file of values in a folder of its own.
class ValueFileFixture : public ::testing::Test {
  protected:
    using Names = std::set<std::string>;

    Names NamesInFolder() const {
        Names names;
        for (const auto& entry : std::filesystem::directory_iterator(folder_.Path())) {
            names.insert(entry.path().filename().string());
        }
        return names;
    }

    TemporaryFolder folder_;
    std::filesystem::path path_ = folder_.Path() / "user.sqlite";
    ValueFile file_{path_, ValueFileOwner::User};
};

}  // namespace orvex::testing
