// A host: registers a class of its own objects and asks the component for its companions.
#include <cstdio>

#include "orvexcommon/Exports.h"
#include "orvexcommon/HostInterfaces.h"
#include "orvexcommon/LasCompanion.h"
#include "orvexcommon/LasFileInfo.h"
#include "orvexcommon/Version.h"

int main() {
    RegisterHostClass(orvex::ClassId{}, [] { return std::unique_ptr<orvex::HostObject>(); });
    const AddFilesParams record;
    const bool works = GetLasCompanions() != nullptr && record.lasFiles.empty();
    std::printf("C++ %s %d\n", ORVEX_VERSION_TEXT, works ? 1 : 0);
    return works ? 0 : 1;
}
