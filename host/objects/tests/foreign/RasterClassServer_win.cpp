// Library with the foreign class.
#include <bit>

#include "host/objects/tests/foreign/ForeignRaster_win.h"
#include "orvexcommon/HostInterfaces.h"

STDAPI DllGetClassObject(REFCLSID classId, REFIID interfaceId, void** object) {
    if (!IsEqualCLSID(classId, std::bit_cast<CLSID>(orvex::kRasterInformationClass))) {
        *object = nullptr;
        return CLASS_E_CLASSNOTAVAILABLE;
    }
    return orvex::foreign::ForeignRasterClass().QueryInterface(interfaceId, object);
}

STDAPI DllCanUnloadNow() {
    return orvex::foreign::LiveObjects() == 0 ? S_OK : S_FALSE;
}
