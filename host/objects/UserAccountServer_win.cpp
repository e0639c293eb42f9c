#include "host/objects/UserAccountServer_win.h"

#include <memory>
#include <string>

#include "support/com/ComGuard_win.h"
#include "support/com/Variant_win.h"

namespace orvex::host {
namespace {

struct AccountTexts {
    std::wstring userName;
    std::wstring service;
    std::wstring token;
};

HRESULT Read(OrvexUserAccount& account, AccountTexts& texts) {
    HRESULT result = account.GetUserName(texts.userName);
    result = FAILED(result) ? result : account.GetService(texts.service);
    return FAILED(result) ? result : account.GetToken(texts.token);
}

}  // namespace

HRESULT UserAccountPart::GetAccount(BSTR* userName, BSTR* service, BSTR* token) {
    if (userName == nullptr || service == nullptr || token == nullptr) {
        return E_POINTER;
    }
    *userName = *service = *token = nullptr;
    return Guarded([&]() -> HRESULT {
        std::int32_t result = kHostOk;
        AccountTexts texts;
        if (const std::unique_ptr<OrvexUserAccount> account = application_.GetUserAccount(result)) {
            result = Read(*account, texts);
        }
        if (FAILED(result)) {
            return result;
        }
        BString userNameText(texts.userName);
        BString serviceText(texts.service);
        BString tokenText(texts.token);
        *userName = userNameText.Detach();
        *service = serviceText.Detach();
        *token = tokenText.Detach();
        return S_OK;
    });
}

}  // namespace orvex::host
