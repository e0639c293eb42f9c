// The host's objects through COM: apartments, and values and calls that the component does not have.
#include <OrvexHost.h>
#include <gtest/gtest.h>

#include <bit>
#include <map>
#include <thread>

#include "host/objects/tests/ForeignObject.h"
#include "orvexcommon/HostInterfaces.h"
#include "settings/testing/FakeHostObjects.h"
#include "support/HostObjects.h"
#include "support/com/ComApartment_win.h"
#include "support/com/ComPtr_win.h"
#include "support/com/Variant_win.h"

namespace orvex::host {
namespace {

const CLSID kClass = std::bit_cast<CLSID>(kSystemSettingsClass);

struct Store {
    std::map<std::wstring, SettingValue> values;
    std::int32_t answer = kHostOk;
};

class StoredSettings final : public OrvexSystemSettings {
  public:
    explicit StoredSettings(Store& store) : store_(store) {}
    std::int32_t Get(const std::wstring& section, const std::wstring& key, SettingValue& value) override {
        if (const auto found = store_.values.find(section + L"/" + key); found != store_.values.end()) {
            value = found->second;
        }
        return store_.answer;
    }
    std::int32_t Set(const std::wstring& section, const std::wstring& key,
                     const SettingValue& value) override {
        if (store_.answer >= kHostOk) {
            store_.values[section + L"/" + key] = value;
        }
        return store_.answer;
    }

  private:
    Store& store_;
};

class HostObjectsWinTest : public ::testing::Test {
  protected:
    HostObjectsWinTest() {
        RegisterHostClass(kSystemSettingsClass, [this] { return std::make_unique<StoredSettings>(store_); });
    }
    ~HostObjectsWinTest() override { RegisterHostClass(kSystemSettingsClass, nullptr); }

    std::unique_ptr<OrvexSystemSettings> Settings(std::int32_t wanted = kHostOk) {
        std::int32_t result = kHostOk;
        auto settings = MakeHostObjects()->CreateSystemSettings(result);
        EXPECT_EQ(result, wanted);
        EXPECT_EQ(settings != nullptr, wanted == kHostOk);
        return settings;
    }
    /// As another client than the component does.
    ComPtr<IOrvexSystemSettings> RawSettings() {
        ComPtr<IOrvexSystemSettings> settings;
        EXPECT_EQ(CoCreateInstance(kClass, nullptr, CLSCTX_ALL, __uuidof(IOrvexSystemSettings),
                                   settings.ReceiveAny()),
                  S_OK);
        return settings;
    }

    ComApartment apartment_;
    Store store_;
};

template <typename Member>
VARIANT Of(int type, Member VARIANT::*member, Member value) {
    VARIANT variant{};
    variant.vt = static_cast<VARTYPE>(type);
    variant.*member = value;
    return variant;
}

TEST_F(HostObjectsWinTest, OtherVariantsAreReadAsTheValueThatTheyStandFor) {
    short referredShort = 5;
    VARIANT referred = Of(VT_I4, &VARIANT::lVal, 70000L);
    const BString text(L"text");
    BSTR referredText = text.Get();
    DECIMAL decimal{};
    decimal.Lo64 = 15;
    decimal.scale = 1;
    VARIANT ofDecimal{};
    ofDecimal.decVal = decimal;
    ofDecimal.vt = VT_DECIMAL;
    const struct {
        const char* name;
        VARIANT given;
        SettingValue read;
    } cases[] = {
        {"null", Of(VT_NULL, &VARIANT::lVal, 0L), std::monostate()},
        {"true", Of(VT_BOOL, &VARIANT::boolVal, VARIANT_TRUE), std::int16_t{-1}},
        {"true of C++", Of(VT_BOOL, &VARIANT::boolVal, VARIANT_BOOL{1}), std::int16_t{-1}},
        {"false", Of(VT_BOOL, &VARIANT::boolVal, VARIANT_FALSE), std::int16_t{0}},
        {"signed byte", Of(VT_I1, &VARIANT::cVal, CHAR{-5}), std::int16_t{-5}},
        {"byte", Of(VT_UI1, &VARIANT::bVal, BYTE{200}), std::int16_t{200}},
        {"unsigned 16", Of(VT_UI2, &VARIANT::uiVal, USHORT{65535}), std::int32_t{65535}},
        {"unsigned 32", Of(VT_UI4, &VARIANT::ulVal, ULONG{7}), std::int32_t{7}},
        {"great unsigned 32", Of(VT_UI4, &VARIANT::ulVal, ULONG{0xFFFFFFFF}), 4294967295.0},
        {"64", Of(VT_I8, &VARIANT::llVal, LONGLONG{-7}), std::int32_t{-7}},
        {"great 64", Of(VT_I8, &VARIANT::llVal, LONGLONG{1} << 40), 1099511627776.0},
        {"great unsigned 64", Of(VT_UI8, &VARIANT::ullVal, ULONGLONG{1} << 63), 9223372036854775808.0},
        {"int", Of(VT_INT, &VARIANT::intVal, -9), std::int32_t{-9}},
        {"float", Of(VT_R4, &VARIANT::fltVal, 0.5F), 0.5},
        {"currency", Of(VT_CY, &VARIANT::cyVal, CY{.int64 = -25000}), -2.5},
        {"date", Of(VT_DATE, &VARIANT::date, 2.25), 2.25},
        {"decimal", ofDecimal, 1.5},
        {"no text", Of(VT_BSTR, &VARIANT::bstrVal, BSTR{nullptr}), L""},
        {"number by reference", Of(VT_BYREF | VT_I2, &VARIANT::piVal, &referredShort), std::int16_t{5}},
        {"text by reference", Of(VT_BYREF | VT_BSTR, &VARIANT::pbstrVal, &referredText), L"text"},
        {"variant by reference", Of(VT_BYREF | VT_VARIANT, &VARIANT::pvarVal, &referred),
         std::int32_t{70000}},
    };
    const auto settings = RawSettings();
    for (const auto& c : cases) {
        EXPECT_EQ(settings->Set(nullptr, nullptr, c.given), S_OK) << c.name;
        EXPECT_TRUE(store_.values[L"/"] == c.read)
            << c.name << " read as kind " << store_.values[L"/"].index();
    }
}

TEST_F(HostObjectsWinTest, WhatIsNoValueIsRefusedAndChangesNothing) {
    const SettingValue old = store_.values[L"/"] = L"old";
    const VARIANT cases[] = {
        Of(VT_UNKNOWN, &VARIANT::punkVal, static_cast<IUnknown*>(nullptr)),
        Of(VT_ERROR, &VARIANT::scode, SCODE{DISP_E_PARAMNOTFOUND}),
        Of(VT_ARRAY | VT_I2, &VARIANT::parray, static_cast<SAFEARRAY*>(nullptr)),
    };
    const auto settings = RawSettings();
    for (const VARIANT& variant : cases) {
        EXPECT_EQ(settings->Set(nullptr, nullptr, variant), DISP_E_TYPEMISMATCH) << variant.vt;
        VARIANT value = variant;
        EXPECT_EQ(settings->Get(nullptr, nullptr, &value), DISP_E_TYPEMISMATCH) << variant.vt;
        EXPECT_EQ(value.vt, variant.vt);
    }
    EXPECT_EQ(settings->Get(nullptr, nullptr, nullptr), E_POINTER);
    EXPECT_TRUE(store_.values[L"/"] == old);
}

TEST_F(HostObjectsWinTest, CodesOfTheHostPassThroughAndAFailureLeavesTheValue) {
    store_.values[L"/"] = L"stored";
    for (const std::int32_t code : {kHostFail, static_cast<std::int32_t>(E_ACCESSDENIED)}) {
        store_.answer = code;
        SettingValue value = std::int16_t{7};
        EXPECT_EQ(Settings()->Get(L"", L"", value), code);
        EXPECT_TRUE(value == SettingValue(std::int16_t{7}));
        EXPECT_EQ(Settings()->Set(L"", L"", value), code);
    }
    store_.answer = S_FALSE;
    SettingValue value;
    EXPECT_EQ(Settings()->Get(L"", L"", value), S_FALSE);
    EXPECT_TRUE(value == SettingValue(L"stored"));
}

TEST_F(HostObjectsWinTest, ObjectsOutliveTheirClass) {
    const auto settings = Settings();
    RegisterHostClass(kSystemSettingsClass, nullptr);
    Settings(kHostClassNotRegistered);
    EXPECT_EQ(settings->Set(L"a", L"b", L"c"), kHostOk);
    EXPECT_TRUE(store_.values[L"a/b"] == SettingValue(L"c"));
}

// What the calling thread's apartment is, without making one.
HRESULT ApartmentOf(APTTYPE& type) {
    APTTYPEQUALIFIER qualifier{};
    return CoGetApartmentType(&type, &qualifier);
}

TEST_F(HostObjectsWinTest, AThreadIsLeftInTheApartmentThatItWasIn) {
    std::thread([this] {
        APTTYPE type{};
        Settings(kHostClassNotRegistered);  // classes belong to the thread of the host's windows
        EXPECT_EQ(ApartmentOf(type), CO_E_NOTINITIALIZED);
        RegisterHostClass(kApplicationClass, [] { return nullptr; });
        EXPECT_EQ(ApartmentOf(type), S_OK);
        RegisterHostClass(kApplicationClass, nullptr);
        EXPECT_EQ(ApartmentOf(type), CO_E_NOTINITIALIZED);
    }).join();
}

TEST_F(HostObjectsWinTest, ScriptsCallByName) {
    const auto settings = RawSettings();
    wchar_t name[] = L"get";
    LPOLESTR names[] = {name};
    DISPID id = 0;
    ASSERT_EQ(settings->GetIDsOfNames(IID_NULL, names, 1, LOCALE_INVARIANT, &id), S_OK);
    store_.values[L"AddFilesDlg/DEMLASFolder"] = L"C:\\DEM";
    const BString section(L"AddFilesDlg");
    const BString key(L"DEMLASFolder");
    Variant value;
    VARIANT arguments[] = {Of(VT_BYREF | VT_VARIANT, &VARIANT::pvarVal, value.InOut()),
                           Of(VT_BSTR, &VARIANT::bstrVal, key.Get()),
                           Of(VT_BSTR, &VARIANT::bstrVal, section.Get())};
    DISPPARAMS parameters{arguments, nullptr, 3, 0};
    ASSERT_EQ(settings->Invoke(id, IID_NULL, LOCALE_INVARIANT, DISPATCH_METHOD, &parameters, nullptr, nullptr,
                               nullptr),
              S_OK);
    ASSERT_EQ(value.Get().vt, VT_BSTR);
    EXPECT_EQ(TextOf(value.Get().bstrVal), L"C:\\DEM");
}

class AnyProject final : public OrvexProject {
  public:
    std::int32_t GetPhotoFolder(std::wstring& folder) override {
        folder = L"C:\\photos";
        return kHostOk;
    }
    std::int32_t OpenLayer(const std::wstring&, std::unique_ptr<OrvexLayer>&) override { return kHostOk; }
};

class AnyApplication final : public OrvexApplication {
  public:
    explicit AnyApplication(bool hasProject) : hasProject_(hasProject) {}
    std::int32_t GetProjectFolder(std::wstring&) override { return kHostOk; }
    std::int32_t GetOptionItem(std::int32_t, SettingValue&) override { return kHostOk; }
    std::unique_ptr<OrvexProject> GetProject(std::int32_t& result) override {
        return hasProject_ ? std::make_unique<AnyProject>() : OrvexApplication::GetProject(result);
    }

  private:
    bool hasProject_;
};

// Hosts written before projects had an interface go on as they did.
TEST_F(HostObjectsWinTest, TheProjectIsAFurtherInterfaceOfTheApplication) {
    for (const bool hasProject : {true, false}) {
        RegisterHostClass(kApplicationClass,
                          [hasProject] { return std::make_unique<AnyApplication>(hasProject); });
        ComPtr<IOrvexApplication> application;
        ASSERT_EQ(CoCreateInstance(std::bit_cast<CLSID>(kApplicationClass), nullptr, CLSCTX_ALL,
                                   __uuidof(IOrvexApplication), application.ReceiveAny()),
                  S_OK);
        ComPtr<IOrvexProject> project;
        EXPECT_EQ(application->QueryInterface(__uuidof(IOrvexProject), project.ReceiveAny()),
                  hasProject ? S_OK : E_NOINTERFACE);
        if (!hasProject) {
            continue;
        }
        ComPtr<IUnknown> whole;
        ComPtr<IUnknown> wholeOfPart;
        application->QueryInterface(__uuidof(IUnknown), whole.ReceiveAny());
        project->QueryInterface(__uuidof(IUnknown), wholeOfPart.ReceiveAny());
        EXPECT_EQ(whole.Get(), wholeOfPart.Get());
        application = {};
        BString folder;
        EXPECT_EQ(project->GetPhotoFolder(folder.Receive()), S_OK);
        EXPECT_EQ(TextOf(folder.Get()), L"C:\\photos");
        ComPtr<IOrvexLayer> layer;
        EXPECT_EQ(project->OpenLayer(nullptr, layer.Receive()), E_FAIL) << "no layer is a failure";
        EXPECT_EQ(project->OpenLayer(nullptr, nullptr), E_POINTER);
    }
    RegisterHostClass(kApplicationClass, nullptr);
}

// The interface is there before anybody signs in, since those of a COM object never change.
TEST_F(HostObjectsWinTest, TheAccountIsAFurtherInterfaceOfTheApplication) {
    testing::FakeHostObjects fake;
    RegisterHostClass(kApplicationClass, [&] {
        std::int32_t result = kHostOk;
        return fake.CreateApplication(result);
    });
    ComPtr<IOrvexApplication> application;
    ASSERT_EQ(CoCreateInstance(std::bit_cast<CLSID>(kApplicationClass), nullptr, CLSCTX_ALL,
                               __uuidof(IOrvexApplication), application.ReceiveAny()),
              S_OK);
    ComPtr<IOrvexUserAccount> account;
    ASSERT_EQ(application->QueryInterface(__uuidof(IOrvexUserAccount), account.ReceiveAny()), S_OK);
    const struct {
        std::int32_t accountResult, result;
        const wchar_t* service;
        HRESULT wanted;
    } cases[] = {{kHostNotImplemented, kHostOk, L"s", E_NOTIMPL},
                 {kHostOk, kHostOk, L"", S_OK},
                 {kHostOk, kHostFail, L"s", E_FAIL},
                 {kHostOk, kHostOk, L"https://s", S_OK}};
    for (const auto& c : cases) {
        fake.accountResult = c.accountResult;
        fake.account.reset();
        if (*c.service != 0) {
            fake.account = {L"name", c.service, L"token", c.result};
        }
        BString name;
        BString service;
        BString token;
        EXPECT_EQ(account->GetAccount(name.Receive(), service.Receive(), token.Receive()), c.wanted);
        EXPECT_EQ(TextOf(service.Get()), c.wanted == S_OK ? c.service : L"");
        EXPECT_EQ(TextOf(token.Get()), c.wanted == S_OK && fake.account ? L"token" : L"");
    }
    BString name;
    EXPECT_EQ(account->GetAccount(name.Receive(), nullptr, nullptr), E_POINTER);
    account = {};
    application = {};
    RegisterHostClass(kApplicationClass, nullptr);
}

/// Another host's application object, with an account of its own, or with none of the interface.
template <bool kHasAccount>
class ForeignApplication final : public ForeignObject<IOrvexApplication> {
  public:
    class Account final : public ForeignObject<IOrvexUserAccount> {
      public:
        STDMETHODIMP GetAccount(BSTR* userName, BSTR* service, BSTR* token) override {
            *userName = nullptr;
            *service = SysAllocString(L"https://s");
            *token = nullptr;
            return S_OK;
        }
    };

    STDMETHODIMP QueryInterface(REFIID interfaceId, void** object) override {
        if (kHasAccount && IsEqualIID(interfaceId, __uuidof(IOrvexUserAccount))) {
            *object = static_cast<IOrvexUserAccount*>(new Account);
            return S_OK;
        }
        return ForeignObject::QueryInterface(interfaceId, object);
    }
    STDMETHODIMP GetProjectFolder(BSTR*) override { return E_NOTIMPL; }
    STDMETHODIMP GetOptionItem(long, VARIANT*) override { return E_NOTIMPL; }
};

TEST(ForeignApplication, ItsAccountIsACopyAndNullTextsAreEmpty) {
    const ComApartment apartment;
    std::int32_t result = kHostOk;
    std::unique_ptr<OrvexUserAccount> account;
    {
        const ForeignClass<ForeignApplication<true>> registered(kApplicationClass);
        account = MakeHostObjects()->CreateApplication(result)->GetUserAccount(result);
        EXPECT_EQ(result, kHostOk);
    }
    EXPECT_EQ(ForeignObject<IOrvexUserAccount>::Live(), 0);
    ASSERT_NE(account, nullptr);
    std::wstring name = L"?";
    std::wstring service;
    EXPECT_EQ(account->GetUserName(name), kHostOk);
    EXPECT_EQ(account->GetService(service), kHostOk);
    EXPECT_EQ(name + service, L"https://s");
    const ForeignClass<ForeignApplication<false>> registered(kApplicationClass);
    EXPECT_EQ(MakeHostObjects()->CreateApplication(result)->GetUserAccount(result), nullptr);
    EXPECT_EQ(result, kHostNotImplemented) << "as hosts were before there were accounts";
}

const CLSID kRasterClass = std::bit_cast<CLSID>(kRasterInformationClass);

class OneFile final : public OrvexRasterInformation {
  public:
    std::int32_t Describe(const std::wstring& path, RasterProperties& properties,
                          std::wstring& reason) override {
        if (path.empty()) {
            reason = L"There is no path.";
            return kHostFail;
        }
        properties.width = 5;
        properties.height = 6;
        properties.hasDetails = true;
        properties.driver = L"GTiff";
        return kHostOk;
    }
};

void Offer() {
    RegisterHostClass(kRasterInformationClass, [] { return std::make_unique<OneFile>(); });
}
void Withdraw() {
    RegisterHostClass(kRasterInformationClass, nullptr);
}

template <typename Work>
void OnThread(Work work) {
    std::thread(std::move(work)).join();
}

/// What making an object on this thread gives, by way of the component.
std::int32_t Make() {
    std::int32_t result = 1;
    const auto object = MakeHostObjects()->RasterInformation()(result);
    EXPECT_EQ(object != nullptr, result == kHostOk);
    return result;
}

/// Nobody keeps COM initialised for threads that are in no apartment.
void ExpectNoMta() {
    OnThread([] {
        APTTYPE type{};
        EXPECT_EQ(ApartmentOf(type), CO_E_NOTINITIALIZED);
    });
}

TEST(RasterInformationWin, IsFoundInTheMultithreadedApartmentAndWhereItWasRegistered) {
    for (const COINIT kind : {COINIT_APARTMENTTHREADED, COINIT_MULTITHREADED}) {
        OnThread([kind] {
            const ComApartment apartment(kind);
            Offer();
            EXPECT_EQ(Make(), kHostOk);
            OnThread([] { EXPECT_EQ(Make(), kHostOk) << "a thread in no apartment"; });
            OnThread([] {
                const ComApartment mta(COINIT_MULTITHREADED);
                EXPECT_EQ(Make(), kHostOk);
                APTTYPE type{};
                EXPECT_EQ(ApartmentOf(type), S_OK);
                EXPECT_EQ(type, APTTYPE_MTA) << "stays in it";
            });
            OnThread([] {
                const ComApartment sta;
                EXPECT_EQ(Make(), kHostClassNotRegistered) << "an apartment of its own";
            });
            Withdraw();
            EXPECT_EQ(Make(), kHostClassNotRegistered);
            OnThread([] { EXPECT_EQ(Make(), kHostClassNotRegistered); });
        });
        ExpectNoMta();
    }
}

TEST(RasterInformationWin, WhatHoldsTheMakerHoldsTheApartment) {
    RasterInformationMaker maker = MakeHostObjects()->RasterInformation();
    OnThread([] {
        APTTYPE type{};
        EXPECT_EQ(ApartmentOf(type), S_OK) << "so that a library is not loaded anew for every file";
    });
    maker = nullptr;
    ExpectNoMta();
}

TEST(RasterInformationWin, EveryPropertyFailsUnlessAFileIsOpen) {
    const ComApartment apartment;
    Offer();
    ComPtr<IOrvexRasterInformation> object;
    ASSERT_EQ(CoCreateInstance(kRasterClass, nullptr, CLSCTX_ALL, __uuidof(IOrvexRasterInformation),
                               object.ReceiveAny()),
              S_OK);
    ComPtr<IOrvexRasterDetails> details;
    ASSERT_EQ(object->QueryInterface(__uuidof(IOrvexRasterDetails), details.ReceiveAny()), S_OK);
    const BString name(L"Driver");
    const auto expect = [&](HRESULT wanted) {
        long width = 9;
        BString text;
        Variant item;
        EXPECT_EQ(object->get_Width(&width), wanted);
        EXPECT_EQ(object->get_Wkt(text.Receive()), wanted);
        EXPECT_EQ(details->get_Detail(name.Get(), 0, item.InOut()), wanted);
        EXPECT_EQ(item.Get().vt, wanted == S_OK ? VT_BSTR : VT_EMPTY);
        EXPECT_EQ(width, wanted == S_OK ? 5 : 0);
    };
    expect(E_FAIL);
    EXPECT_EQ(object->Open(BString(L"a").Get()), S_OK);
    expect(S_OK);
    double edge = 0;
    EXPECT_EQ(object->GetExtent(&edge, &edge, &edge, &edge), E_FAIL) << "no georeference";
    EXPECT_EQ(object->Open(nullptr), E_FAIL);
    expect(E_FAIL);
    Withdraw();
}

}  // namespace
}  // namespace orvex::host
