#pragma once
// The reason of a failure as a sentence, which a COM object passes in the error info of the calling thread.
#include <ole2.h>

#include <string>

#include "support/com/ComPtr_win.h"
#include "support/com/Variant_win.h"

namespace orvex {

/// Description of the failure of a call of `object` from the thread's error info; empty if there is none.
/// Only objects that declare error info for this interface are asked, since the thread may still hold that of
/// another object.
template <typename Interface>
std::wstring ReasonOf(Interface& object) {
    ComPtr<ISupportErrorInfo> support;
    ComPtr<IErrorInfo> error;
    BString text;
    if (FAILED(object.QueryInterface(__uuidof(ISupportErrorInfo), support.ReceiveAny())) ||
        support->InterfaceSupportsErrorInfo(__uuidof(Interface)) != S_OK ||
        GetErrorInfo(0, error.Receive()) != S_OK || FAILED(error->GetDescription(text.Receive()))) {
        return {};
    }
    return TextOf(text.Get());
}

/// Sets the reason as the error info of this thread, as far as possible: the failure is reported in any case.
inline void SetReason(REFIID interfaceId, const std::wstring& reason) {
    ComPtr<ICreateErrorInfo> error;
    if (reason.empty() || FAILED(CreateErrorInfo(error.Receive()))) {
        return;
    }
    std::wstring text = reason;
    error->SetGUID(interfaceId);
    error->SetDescription(text.data());
    ComPtr<IErrorInfo> info;
    if (SUCCEEDED(error->QueryInterface(__uuidof(IErrorInfo), info.ReceiveAny()))) {
        SetErrorInfo(0, info.Get());
    }
}

}  // namespace orvex
