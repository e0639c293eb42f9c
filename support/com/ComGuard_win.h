#pragma once
#include <windows.h>

#include <new>
#include <system_error>

namespace orvex {

/// What the body answers; E_OUTOFMEMORY, the code of a system error, or E_FAIL when it throws. No exception
/// passes a COM call.
template <typename Body>
HRESULT Guarded(Body&& body) noexcept {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (const std::system_error& error) {
        // The code is an HRESULT already, or a Win32 code, which becomes one.
        const HRESULT code = HRESULT_FROM_WIN32(static_cast<DWORD>(error.code().value()));
        return FAILED(code) ? code : E_FAIL;
    } catch (...) {
        return E_FAIL;
    }
}

}  // namespace orvex
