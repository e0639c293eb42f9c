#include "support/com/ComUserAccount_win.h"

#include <OrvexHost.h>

#include <utility>

#include "support/com/ComGuard_win.h"
#include "support/com/ComPtr_win.h"
#include "support/com/Variant_win.h"

namespace orvex {
namespace {

class CopiedAccount final : public OrvexUserAccount {
  public:
    CopiedAccount(std::wstring userName, std::wstring service, std::wstring token)
        : userName_(std::move(userName)), service_(std::move(service)), token_(std::move(token)) {}

    std::int32_t GetUserName(std::wstring& name) override {
        name = userName_;
        return kHostOk;
    }
    std::int32_t GetService(std::wstring& service) override {
        service = service_;
        return kHostOk;
    }
    std::int32_t GetToken(std::wstring& token) override {
        token = token_;
        return kHostOk;
    }

  private:
    std::wstring userName_;
    std::wstring service_;
    std::wstring token_;
};

}  // namespace

std::unique_ptr<OrvexUserAccount> MakeComUserAccount(IUnknown& application, std::int32_t& result) {
    std::unique_ptr<OrvexUserAccount> account;
    result = Guarded([&]() -> HRESULT {
        ComPtr<IOrvexUserAccount> offered;
        const HRESULT asked = application.QueryInterface(__uuidof(IOrvexUserAccount), offered.ReceiveAny());
        if (FAILED(asked) || !offered) {
            return asked == E_NOINTERFACE || SUCCEEDED(asked) ? kHostNotImplemented : asked;
        }
        BString userName;
        BString service;
        BString token;
        const HRESULT given = offered->GetAccount(userName.Receive(), service.Receive(), token.Receive());
        if (FAILED(given)) {
            return given;
        }
        if (std::wstring address = TextOf(service.Get()); !address.empty()) {
            account = std::make_unique<CopiedAccount>(TextOf(userName.Get()), std::move(address),
                                                      TextOf(token.Get()));
        }
        return S_OK;
    });
    return account;
}

}  // namespace orvex
