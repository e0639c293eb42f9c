#include "entry/c/HostTable.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>

#include "feature/FeatureRow.h"
#include "settings/FileSettings.h"
#include "support/JsonLimits.h"
#include "support/JsonText.h"
#include "support/Text.h"

namespace orvex {
namespace {

using Json = nlohmann::json;

/// Text that a function of the host puts.
class PutText {
  public:
    /// What the host is given to call.
    static void Put(void* sink, const char* text) noexcept {
        auto& self = *static_cast<PutText*>(sink);
        try {
            if (text != nullptr) {
                self.text_.emplace(text, strnlen(text, kMostJsonBytes + 1));
            }
        } catch (...) {
            self.isMemoryExhausted_ = true;
        }
    }

    /// nullopt if the host has put none, or one that is too long.
    std::optional<std::string> Take() {
        if (isMemoryExhausted_) {
            throw std::bad_alloc();
        }
        return text_ && text_->size() <= kMostJsonBytes ? std::move(text_) : std::nullopt;
    }

  private:
    std::optional<std::string> text_;
    bool isMemoryExhausted_ = false;
};

/// Calls a function of the host that puts a text. nullopt if it does not return 0, or puts none.
template <typename Function, typename... Arguments>
std::optional<std::string> Ask(Function function, void* context, Arguments... arguments) {
    PutText sink;
    const std::int32_t result = function(context, arguments..., &PutText::Put, &sink);
    std::optional<std::string> text = sink.Take();
    return result == 0 ? std::move(text) : std::nullopt;
}

/// Runs what may throw for an object whose functions return codes; a failure is logged under a name.
template <typename Body>
std::int32_t Logged(const char* function, Body body) {
    try {
        body();
        return kHostOk;
    } catch (const LDataError& error) {
        LogWarning(FromUtf8(function) + L" of the host: " + error.Text());
        return kHostFail;
    }
}

/// The setting that a JSON text stands for; whole numbers as small as they can be, for booleans are of 16
/// bits.
SettingValue SettingOf(const std::string& text) {
    const Json json = ParseCallersJson(text);
    if (json.is_string()) {
        return JsonWide(json.get<std::string>());
    }
    if (json.is_boolean()) {
        return static_cast<std::int16_t>(json.get<bool>() ? -1 : 0);
    }
    if (!json.is_number()) {
        throw LDataError(L"neither a number nor a string");
    }
    const auto number = json.get<double>();
    const auto fits = [&](auto limits) {
        return json.is_number_integer() && number >= limits.min() && number <= limits.max();
    };
    if (fits(std::numeric_limits<std::int16_t>())) {
        return json.get<std::int16_t>();
    }
    return fits(std::numeric_limits<std::int32_t>()) ? SettingValue(json.get<std::int32_t>())
                                                     : SettingValue(number);
}

struct SettingJson {
    std::string operator()(std::monostate) const { return "null"; }
    std::string operator()(const std::wstring& text) const { return JsonQuoted(text); }
    std::string operator()(auto number) const { return Json(number).dump(); }
};

class TableSettings final : public OrvexSystemSettings {
  public:
    explicit TableSettings(const OrvexHost& table) : table_(table) {}

    std::int32_t Get(const std::wstring& section, const std::wstring& key, SettingValue& value) override {
        return Logged("get_setting", [&] {
            const auto text =
                Ask(table_.get_setting, table_.context, ToUtf8(section).c_str(), ToUtf8(key).c_str());
            value = text ? SettingOf(*text) : value;
        });
    }
    std::int32_t Set(const std::wstring& section, const std::wstring& key,
                     const SettingValue& value) override {
        const std::string json = std::visit(SettingJson(), value);
        const std::int32_t result =
            table_.set_setting(table_.context, ToUtf8(section).c_str(), ToUtf8(key).c_str(), json.c_str());
        return result == 0 ? kHostOk : kHostFail;
    }

  private:
    const OrvexHost& table_;
};

/// Copy of the account of a signed-in user.
class TableAccount final : public OrvexUserAccount {
  public:
    /// `json`: members "user", "service" and "token". Throws LDataError if they are not texts.
    explicit TableAccount(const Json& json)
        : user_(TextOf(json, "user")), service_(TextOf(json, "service")), token_(TextOf(json, "token")) {}

    std::int32_t GetUserName(std::wstring& name) override { return Give(user_, name); }
    std::int32_t GetService(std::wstring& service) override { return Give(service_, service); }
    std::int32_t GetToken(std::wstring& token) override { return Give(token_, token); }

  private:
    static std::wstring TextOf(const Json& json, const char* member) {
        const Json value = json.is_object() ? json.value(member, Json("")) : Json();
        if (!value.is_string()) {
            throw LDataError(L"no object of texts");
        }
        return JsonWide(value.get_ref<const std::string&>());
    }
    static std::int32_t Give(const std::wstring& text, std::wstring& target) {
        target = text;
        return kHostOk;
    }

    std::wstring user_, service_, token_;
};

class TableApplication final : public OrvexApplication {
  public:
    /// `registered`: for what the table lacks; null if the host has registered none.
    TableApplication(const OrvexHost& table, std::unique_ptr<OrvexApplication> registered)
        : table_(table), registered_(std::move(registered)) {}

    std::int32_t GetProjectFolder(std::wstring& folder) override {
        if (table_.project_folder == nullptr) {
            return registered_ ? registered_->GetProjectFolder(folder) : kHostOk;
        }
        const auto text = Ask(table_.project_folder, table_.context);
        if (text) {
            folder = NativePath(FromUtf8(*text));
            folder += folder.empty() || IsSeparator(folder.back()) ? L"" : NativePath(L"/");
        }
        return text ? kHostOk : kHostFail;
    }

    std::int32_t GetOptionItem(std::int32_t item, SettingValue& value) override {
        if (table_.get_option == nullptr && registered_) {
            return registered_->GetOptionItem(item, value);
        }
        if (table_.get_option == nullptr) {
            value = item == kKmlOptionItem ? SettingValue(std::int16_t{-1}) : value;
            return kHostOk;
        }
        return Logged("get_option", [&] {
            const auto text = Ask(table_.get_option, table_.context, item);
            value = text ? SettingOf(*text) : value;
        });
    }

    std::unique_ptr<OrvexProject> GetProject(std::int32_t& result) override {
        return registered_ ? registered_->GetProject(result) : OrvexApplication::GetProject(result);
    }

    std::unique_ptr<OrvexUserAccount> GetUserAccount(std::int32_t& result) override {
        if (table_.account == nullptr) {
            return registered_ ? registered_->GetUserAccount(result)
                               : OrvexApplication::GetUserAccount(result);
        }
        std::unique_ptr<OrvexUserAccount> account;
        result = Logged("account", [&] {
            const auto text = Ask(table_.account, table_.context);
            const Json json = text ? ParseCallersJson(*text) : throw LDataError(L"failed");
            account = json.is_null() ? nullptr : std::make_unique<TableAccount>(json);
        });
        return account;
    }

  private:
    const OrvexHost& table_;
    std::unique_ptr<OrvexApplication> registered_;
};

/// The table's objects; those that it lacks are the registered ones, or stand-ins for a host without any.
class TableObjects final : public HostObjects {
  public:
    explicit TableObjects(const OrvexHost& table) : table_(table) {}

    std::unique_ptr<OrvexSystemSettings> CreateSystemSettings(std::int32_t& result) override {
        if (table_.get_setting != nullptr) {
            result = kHostOk;
            return std::make_unique<TableSettings>(table_);
        }
        auto registered = registered_->CreateSystemSettings(result);
        if (!registered) {
            result = kHostOk;
            registered = std::make_unique<FileSettings>(UserSettingsFile());
        }
        return registered;
    }
    std::unique_ptr<OrvexApplication> CreateApplication(std::int32_t& result) override {
        auto registered = registered_->CreateApplication(result);
        result = kHostOk;
        return std::make_unique<TableApplication>(table_, std::move(registered));
    }
    RasterInformationMaker RasterInformation() override { return registered_->RasterInformation(); }
    ShapefileMaker Shapefiles() override { return registered_->Shapefiles(); }

  private:
    const OrvexHost& table_;
    std::unique_ptr<HostObjects> registered_ = MakeHostObjects();
};

}  // namespace

HostTable::HostTable(const OrvexHost* host) {
    if (host == nullptr) {
        return;
    }
    // A host that was compiled with an earlier or a later header has fewer or more members, each of this
    // size.
    constexpr std::size_t kMember = sizeof(void*);
    if (host->size < offsetof(OrvexHost, context)) {
        throw InvalidCall(L"the host table's size is not set");
    }
    std::memcpy(&table_, host, std::min(host->size / kMember * kMember, sizeof(table_)));
    if ((table_.get_setting == nullptr) != (table_.set_setting == nullptr)) {
        throw InvalidCall(L"the host table has only one of get_setting and set_setting");
    }
}

CallHost HostTable::Host() const {
    return {reinterpret_cast<NativeWindow>(table_.owner),
            [this] { return std::make_unique<TableObjects>(table_); }};
}

LogReceiver HostTable::Log() const {
    if (table_.log == nullptr) {
        return {};
    }
    return [log = table_.log, context = table_.context](LogLevel level, const std::string& line) {
        log(context, static_cast<std::int32_t>(level), line.c_str());
    };
}

}  // namespace orvex
