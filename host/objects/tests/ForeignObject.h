#pragma once
// What another host's COM objects have in common.
#include <OrvexHost.h>
#include <gtest/gtest.h>

#include <atomic>
#include <bit>

#include "orvexcommon/HostInterfaces.h"

namespace orvex::host {

/// Object with one dual interface, which is called through its table of functions only. Has no error info.
template <typename Interface>
class ForeignObject : public Interface {
  public:
    ForeignObject() { ++Live(); }
    virtual ~ForeignObject() { --Live(); }
    ForeignObject(const ForeignObject&) = delete;
    ForeignObject& operator=(const ForeignObject&) = delete;

    /// Objects that have not been released.
    static std::atomic<long>& Live() {
        static std::atomic<long> live = 0;
        return live;
    }

    STDMETHODIMP QueryInterface(REFIID interfaceId, void** object) override {
        const bool isKnown = IsEqualIID(interfaceId, __uuidof(IUnknown)) ||
                             IsEqualIID(interfaceId, __uuidof(IDispatch)) ||
                             IsEqualIID(interfaceId, __uuidof(Interface));
        *object = isKnown ? static_cast<Interface*>(this) : nullptr;
        references_ += isKnown ? 1 : 0;
        return isKnown ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
    STDMETHODIMP_(ULONG) Release() override {
        const ULONG left = --references_;
        if (left == 0) {
            delete this;
        }
        return left;
    }
    STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
        return E_NOTIMPL;
    }

  private:
    std::atomic<ULONG> references_ = 1;
};

/// Class object of such objects, registered in the calling thread's apartment while it exists; its references
/// do not count.
template <typename Object>
class ForeignClass final : public IClassFactory {
  public:
    explicit ForeignClass(const ClassId& classId) {
        EXPECT_EQ(CoRegisterClassObject(std::bit_cast<CLSID>(classId), this, CLSCTX_INPROC_SERVER,
                                        REGCLS_MULTIPLEUSE, &token_),
                  S_OK);
    }
    virtual ~ForeignClass() { CoRevokeClassObject(token_); }
    ForeignClass(const ForeignClass&) = delete;
    ForeignClass& operator=(const ForeignClass&) = delete;

    STDMETHODIMP QueryInterface(REFIID interfaceId, void** object) override {
        const bool isKnown =
            IsEqualIID(interfaceId, __uuidof(IUnknown)) || IsEqualIID(interfaceId, __uuidof(IClassFactory));
        *object = isKnown ? static_cast<IClassFactory*>(this) : nullptr;
        return isKnown ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    STDMETHODIMP CreateInstance(IUnknown*, REFIID interfaceId, void** object) override {
        auto* made = new Object;
        const HRESULT result = made->QueryInterface(interfaceId, object);
        made->Release();
        return result;
    }
    STDMETHODIMP LockServer(BOOL) override { return S_OK; }

  private:
    DWORD token_ = 0;
};

}  // namespace orvex::host
