#pragma once
#include <windows.h>

#include <new>
#include <system_error>

namespace orvex {

/// Returns the result of `body`; if it throws, E_OUTOFMEMORY, the code of the std::system_error, or E_FAIL.
/// Exceptions must not cross a COM call.
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
