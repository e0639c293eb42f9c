// The raster-information class through COM: apartments, what stays behind, and calls of other clients.
#include <OrvexHost.h>
#include <gtest/gtest.h>
#include <tlhelp32.h>

#include <bit>
#include <thread>

#include "support/Handle_win.h"
#include "support/HostObjects.h"
#include "support/com/ComApartment_win.h"
#include "support/com/Variant_win.h"

namespace orvex::host {
namespace {

const CLSID kClass = std::bit_cast<CLSID>(kRasterInformationClass);

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

HRESULT ApartmentOf(APTTYPE& type) {
    APTTYPEQUALIFIER qualifier{};
    return CoGetApartmentType(&type, &qualifier);
}

/// Nobody keeps COM initialised for threads that are in no apartment.
void ExpectNoMta() {
    OnThread([] {
        APTTYPE type{};
        EXPECT_EQ(ApartmentOf(type), CO_E_NOTINITIALIZED);
    });
}

std::size_t ThreadsOfThisProcess() {
    const Handle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
    THREADENTRY32 entry{};
    entry.dwSize = sizeof(entry);
    std::size_t count = 0;
    for (BOOL more = Thread32First(snapshot.Get(), &entry); more;
         more = Thread32Next(snapshot.Get(), &entry)) {
        count += entry.th32OwnerProcessID == GetCurrentProcessId() ? 1 : 0;
    }
    return count;
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

TEST(RasterInformationWin, NothingStaysBehind) {
    const ComApartment apartment;
    Make();  // the system's own threads have come
    const std::size_t threads = ThreadsOfThisProcess();
    for (int round = 0; round < 5; ++round) {
        Offer();
        EXPECT_EQ(ThreadsOfThisProcess(), threads) << "it needs none while it is there";
        OnThread([] { EXPECT_EQ(Make(), kHostOk); });
        Withdraw();
    }
    EXPECT_EQ(ThreadsOfThisProcess(), threads);
    ExpectNoMta();
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
    ASSERT_EQ(
        CoCreateInstance(kClass, nullptr, CLSCTX_ALL, __uuidof(IOrvexRasterInformation), object.ReceiveAny()),
        S_OK);
    ComPtr<IOrvexRasterDetails> details;
    ASSERT_EQ(object->QueryInterface(__uuidof(IOrvexRasterDetails), details.ReceiveAny()), S_OK);
    const BString name(L"Driver");
    const auto expect = [&](HRESULT wanted) {
        long width = 9;
        double pixel = 9;
        BString text;
        Variant item;
        EXPECT_EQ(object->get_Width(&width), wanted);
        EXPECT_EQ(object->get_PixelWidth(&pixel), wanted);
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
    EXPECT_EQ(object->GetExtent(&edge, nullptr, &edge, &edge), E_POINTER);
    EXPECT_EQ(object->get_Height(nullptr), E_POINTER);
    EXPECT_EQ(object->get_LinearUnit(nullptr), E_POINTER);
    EXPECT_EQ(details->get_Detail(name.Get(), 0, nullptr), E_POINTER);
    EXPECT_EQ(object->Open(nullptr), E_FAIL);
    expect(E_FAIL);
    Withdraw();
}

TEST(RasterInformationWin, ItsInterfacesAreOneObject) {
    const ComApartment apartment;
    Offer();
    ComPtr<IUnknown> object;
    ASSERT_EQ(CoCreateInstance(kClass, nullptr, CLSCTX_ALL, __uuidof(IUnknown), object.ReceiveAny()), S_OK);
    for (const IID& id : {__uuidof(IDispatch), __uuidof(IOrvexRasterInformation),
                          __uuidof(IOrvexRasterDetails), __uuidof(ISupportErrorInfo)}) {
        ComPtr<IUnknown> other;
        ComPtr<IUnknown> back;
        ASSERT_EQ(object->QueryInterface(id, other.ReceiveAny()), S_OK);
        EXPECT_EQ(other->QueryInterface(__uuidof(IUnknown), back.ReceiveAny()), S_OK);
        EXPECT_EQ(back.Get(), object.Get());
    }
    Withdraw();
}

}  // namespace
}  // namespace orvex::host
