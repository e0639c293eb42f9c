#pragma once
// The host's objects in memory, for tests.
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "support/HostObjects.h"

namespace orvex::testing {

/// A layer of a fake project.
struct FakeLayer {
    bool isPhotoLayer = true;
    std::int32_t geometryType = kPointZLayer;
    std::set<std::wstring> fields;  ///< as asked for
    std::set<std::wstring> photos;  ///< full paths, as asked for
    std::int32_t result = kHostOk;  ///< what every question to the layer returns
};

/// The account of a signed-in user.
struct FakeAccount {
    std::wstring userName, service, token;
    std::int32_t result = kHostOk;  ///< what every question to the account returns
};

/// Answers from its members, which a test sets and reads at any time; every object made reads and writes
/// them. Outlives the objects it makes.
class FakeHostObjects final : public HostObjects {
  public:
    /// Settings by section and key.
    std::map<std::pair<std::wstring, std::wstring>, SettingValue> settings;
    /// Settings that were asked for, with the value that the component gave: its default.
    std::map<std::pair<std::wstring, std::wstring>, SettingValue> asked;
    std::int32_t createSettingsResult = kHostOk;  ///< another code: the settings object cannot be made
    std::int32_t getResult = kHostOk;             ///< what Get returns; a failure leaves the value alone
    std::int32_t setResult = kHostOk;             ///< what Set returns; a failure stores nothing

    std::wstring projectFolder;                      ///< with a trailing separator, as hosts give it
    std::int32_t createApplicationResult = kHostOk;  ///< another code: the application cannot be made
    std::int32_t projectFolderResult = kHostOk;      ///< what GetProjectFolder returns
    std::map<std::int32_t, SettingValue> optionItems;

    std::int32_t projectResult = kHostOk;      ///< another code: the application gives no project
    std::wstring photoFolder;                  ///< empty: none
    std::int32_t photoFolderResult = kHostOk;  ///< what GetPhotoFolder returns
    std::map<std::wstring, FakeLayer> layers;  ///< by path as given to OpenLayer, which fails for any other

    std::optional<FakeAccount> account;    ///< nullopt: nobody is signed in
    std::int32_t accountResult = kHostOk;  ///< another code: the application gives no account

    RasterInformationMaker rasterInformation;  ///< what RasterInformation gives; empty: the host has none
    ShapefileMaker shapefiles;                 ///< the same for Shapefiles

    std::unique_ptr<OrvexSystemSettings> CreateSystemSettings(std::int32_t& result) override {
        result = createSettingsResult;
        return result == kHostOk ? std::make_unique<Settings>(*this) : nullptr;
    }
    std::unique_ptr<OrvexApplication> CreateApplication(std::int32_t& result) override {
        result = createApplicationResult;
        return result == kHostOk ? std::make_unique<Application>(*this) : nullptr;
    }
    RasterInformationMaker RasterInformation() override { return rasterInformation; }
    ShapefileMaker Shapefiles() override { return shapefiles; }

  private:
    class Settings final : public OrvexSystemSettings {
      public:
        explicit Settings(FakeHostObjects& host) : host_(host) {}

        std::int32_t Get(const std::wstring& section, const std::wstring& key, SettingValue& value) override {
            host_.asked.try_emplace({section, key}, value);
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
        std::int32_t GetOptionItem(std::int32_t item, SettingValue& value) override {
            const auto stored = host_.optionItems.find(item);
            if (stored != host_.optionItems.end()) {
                value = stored->second;
            }
            return kHostOk;
        }
        std::unique_ptr<OrvexProject> GetProject(std::int32_t& result) override {
            result = host_.projectResult;
            return result == kHostOk ? std::make_unique<Project>(host_) : nullptr;
        }

        std::unique_ptr<OrvexUserAccount> GetUserAccount(std::int32_t& result) override {
            result = host_.accountResult;
            const bool isGiven = result == kHostOk && host_.account.has_value();
            return isGiven ? std::make_unique<Account>(*host_.account) : nullptr;
        }

      private:
        FakeHostObjects& host_;
    };

    class Account final : public OrvexUserAccount {
      public:
        explicit Account(FakeAccount account) : account_(std::move(account)) {}

        std::int32_t GetUserName(std::wstring& name) override { return Answer(name, account_.userName); }
        std::int32_t GetService(std::wstring& service) override { return Answer(service, account_.service); }
        std::int32_t GetToken(std::wstring& token) override { return Answer(token, account_.token); }

      private:
        std::int32_t Answer(std::wstring& target, const std::wstring& value) const {
            target = account_.result == kHostOk ? value : target;
            return account_.result;
        }

        FakeAccount account_;
    };

    class Project final : public OrvexProject {
      public:
        explicit Project(FakeHostObjects& host) : host_(host) {}

        std::int32_t GetPhotoFolder(std::wstring& folder) override {
            if (host_.photoFolderResult == kHostOk) {
                folder = host_.photoFolder;
            }
            return host_.photoFolderResult;
        }
        std::int32_t OpenLayer(const std::wstring& path, std::unique_ptr<OrvexLayer>& layer) override {
            const auto found = host_.layers.find(path);
            if (found == host_.layers.end()) {
                return kHostFail;
            }
            layer = std::make_unique<Layer>(found->second);
            return kHostOk;
        }

      private:
        FakeHostObjects& host_;
    };

    class Layer final : public OrvexLayer {
      public:
        explicit Layer(const FakeLayer& layer) : layer_(layer) {}

        std::int32_t IsPhotoLayer(bool& isPhotoLayer) override {
            return Answer(isPhotoLayer, layer_.isPhotoLayer);
        }
        std::int32_t GetGeometryType(std::int32_t& type) override {
            return Answer(type, layer_.geometryType);
        }
        std::int32_t HasField(const std::wstring& name, bool& hasField) override {
            return Answer(hasField, layer_.fields.contains(name));
        }
        std::int32_t HasPhoto(const std::wstring& path, bool& hasPhoto) override {
            return Answer(hasPhoto, layer_.photos.contains(path));
        }

      private:
        template <typename Value>
        std::int32_t Answer(Value& target, Value value) const {
            target = layer_.result == kHostOk ? value : target;
            return layer_.result;
        }

        const FakeLayer& layer_;
    };
};

}  // namespace orvex::testing
