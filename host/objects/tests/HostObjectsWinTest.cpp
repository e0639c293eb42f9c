// The host's settings objects through COM, with values and clients that the component does not have.
#include <OrvexHost.h>
#include <gtest/gtest.h>

#include <bit>
#include <map>
#include <stdexcept>
#include <thread>

#include "orvexcommon/HostInterfaces.h"
#include "support/HostObjects.h"
#include "support/com/ComApartment_win.h"
#include "support/com/ComPtr_win.h"
#include "support/com/ModuleFile_win.h"
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
    HostObjectsWinTest() { Register(); }
    ~HostObjectsWinTest() override { RegisterHostClass(kSystemSettingsClass, nullptr); }

    void Register() {
        RegisterHostClass(kSystemSettingsClass, [this] { return std::make_unique<StoredSettings>(store_); });
    }
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
    RegisterHostClass(kSystemSettingsClass, nullptr);
    std::thread([this] {
        ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
        Register();
        Settings();
        RegisterHostClass(kSystemSettingsClass, nullptr);
        APTTYPE type{};
        EXPECT_EQ(ApartmentOf(type), S_OK);
        EXPECT_EQ(type, APTTYPE_MTA);
        CoUninitialize();
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

ComPtr<ITypeInfo> TypeOf(const ComPtr<ITypeLib>& library, const wchar_t* id) {
    GUID guid{};
    ComPtr<ITypeInfo> type;
    EXPECT_EQ(IIDFromString(id, &guid), S_OK);
    EXPECT_EQ(library->GetTypeInfoOfGuid(guid, type.Receive()), S_OK) << id;
    return type;
}

std::wstring DefaultInterfaceOf(const ComPtr<ITypeInfo>& ofClass) {
    HREFTYPE reference = 0;
    ComPtr<ITypeInfo> type;
    TYPEATTR* attributes = nullptr;
    EXPECT_EQ(ofClass->GetRefTypeOfImplType(0, &reference), S_OK);
    EXPECT_EQ(ofClass->GetRefTypeInfo(reference, type.Receive()), S_OK);
    EXPECT_EQ(type->GetTypeAttr(&attributes), S_OK);
    wchar_t text[64] = {};
    StringFromGUID2(attributes->guid, text, 64);
    type->ReleaseTypeAttr(attributes);
    return text;
}

/// Operations of a dual interface beyond IDispatch's seven, in the order of its function table.
std::wstring OperationsOf(const ComPtr<ITypeInfo>& type) {
    std::map<std::size_t, std::wstring> slots;
    FUNCDESC* function = nullptr;
    for (UINT i = 0; type->GetFuncDesc(i, &function) == S_OK; ++i) {
        BString name;
        UINT count = 0;
        EXPECT_EQ(type->GetNames(function->memid, name.Receive(), 1, &count), S_OK);
        slots[static_cast<std::size_t>(function->oVft) / sizeof(void*)] = TextOf(name.Get());
        type->ReleaseFuncDesc(function);
    }
    std::wstring operations;
    for (std::size_t slot = 7; slot < slots.size(); ++slot) {
        operations += (slot == 7 ? L"" : L" ") + slots[slot];
    }
    return operations;
}

TEST_F(HostObjectsWinTest, TheFunctionTablesNeverChange) {
    const struct {
        const wchar_t* classId;  ///< whose default interface it is; null for none
        const wchar_t* interfaceId;
        const wchar_t* operations;
    } cases[] = {
        {L"{38E5B774-7F17-48A4-BB8A-CEEA8FE4F258}", L"{43BFF338-2E24-4C50-A907-5BC09C5DF52A}", L"Get Set"},
        {L"{A59ECFF0-11E3-4339-B008-8FBD1D3B6420}", L"{38980663-5FC7-48BB-9A47-4CC46914C1C9}",
         L"GetProjectFolder GetOptionItem"},
        {L"{41A55615-706A-467A-9682-DCB2F9C98BC5}", L"{F2E2834F-A4F3-4669-A120-E769C4974D21}",
         L"Open Width Height PixelWidth PixelHeight LinearUnit Wkt ProjectionCode ColorModel RasterKind "
         L"BandCount BitsPerBand OverviewCount GetExtent"},
        {nullptr, L"{37CAEEE9-175A-473E-A366-7C5B4F58D29E}", L"Detail"},
        {L"{FAFBA4E0-3533-449F-8A15-D7B13B1A1591}", L"{87F5FD2E-9ED1-4E93-91BF-516E5E9BE0A6}",
         L"Open ShapeCount ShapeType GetExtent FieldCount GetFieldInfo"},
    };
    ComPtr<ITypeLib> library;
    const std::wstring module = ModuleFile(reinterpret_cast<const void*>(&RegisterHostClass));
    ASSERT_EQ(LoadTypeLibEx(module.c_str(), REGKIND_NONE, library.Receive()), S_OK);
    for (const auto& c : cases) {
        if (c.classId != nullptr) {
            EXPECT_EQ(DefaultInterfaceOf(TypeOf(library, c.classId)), c.interfaceId);
        }
        EXPECT_EQ(OperationsOf(TypeOf(library, c.interfaceId)), c.operations);
    }
}

}  // namespace
}  // namespace orvex::host
