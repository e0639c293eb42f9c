#pragma once
// The host's objects in memory, for tests.
#include <map>
#include <string>
#include <utility>

#include "support/HostObjects.h"

namespace orvex::testing {

/// Answers from its members, which a test sets and reads at any time; every object made reads and writes
/// them. Outlives the objects it makes.
class FakeHostObjects final : public HostObjects {
  public:
    /// Settings by section and key.
    std::map<std::pair<std::wstring, std::wstring>, SettingValue> settings;
    std::int32_t createSettingsResult = kHostOk;  ///< another code: the settings object cannot be made
    std::int32_t getResult = kHostOk;             ///< what Get returns; a failure leaves the value alone
    std::int32_t setResult = kHostOk;             ///< what Set returns; a failure stores nothing

    std::wstring projectFolder;                      ///< with a trailing separator, as hosts give it
    std::int32_t createApplicationResult = kHostOk;  ///< another code: the application cannot be made
    std::int32_t projectFolderResult = kHostOk;      ///< what GetProjectFolder returns

    RasterInformationMaker rasterInformation;  ///< what RasterInformation gives; empty: the host has none

    std::unique_ptr<OrvexSystemSettings> CreateSystemSettings(std::int32_t& result) override {
        result = createSettingsResult;
        return result == kHostOk ? std::make_unique<Settings>(*this) : nullptr;
    }
    std::unique_ptr<OrvexApplication> CreateApplication(std::int32_t& result) override {
        result = createApplicationResult;
        return result == kHostOk ? std::make_unique<Application>(*this) : nullptr;
    }
    RasterInformationMaker RasterInformation() override { return rasterInformation; }

  private:
    class Settings final : public OrvexSystemSettings {
      public:
        explicit Settings(FakeHostObjects& host) : host_(host) {}

        std::int32_t Get(const std::wstring& section, const std::wstring& key, SettingValue& value) override {
            const auto stored = host_.settings.find({section, key});
            if (host_.getResult == kHostOk && stored != host_.settings.end()) {
                value = stored->second;
            }
            return host_.getResult;
        }
        std::int32_t Set(const std::wstring& section, const std::wstring& key,
                         const SettingValue& value) override {
            if (host_.setResult == kHostOk) {
                host_.settings[{section, key}] = value;
            }
            return host_.setResult;
        }

      private:
        FakeHostObjects& host_;
    };

    class Application final : public OrvexApplication {
      public:
        explicit Application(FakeHostObjects& host) : host_(host) {}

        std::int32_t GetProjectFolder(std::wstring& folder) override {
            if (host_.projectFolderResult == kHostOk) {
                folder = host_.projectFolder;
            }
            return host_.projectFolderResult;
        }
        std::int32_t GetOptionItem(std::int32_t, SettingValue&) override { return kHostOk; }

      private:
        FakeHostObjects& host_;
    };
};

}  // namespace orvex::testing
