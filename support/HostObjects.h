#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "orvexcommon/HostInterfaces.h"

namespace orvex {

/// Creates raster-information objects, on any thread; null and a failure code if the host has none. It owns
/// what it needs, so a worker thread may use it after the dialog is closed.
using RasterInformationMaker = std::function<std::unique_ptr<OrvexRasterInformation>(std::int32_t& result)>;

/// The same for shapefile objects.
using ShapefileMaker = std::function<std::unique_ptr<OrvexShapefile>(std::int32_t& result)>;

/// Creates the host's objects. Null and a failure code if an object cannot be created.
class HostObjects {
  public:
    virtual ~HostObjects() = default;
    virtual std::unique_ptr<OrvexSystemSettings> CreateSystemSettings(std::int32_t& result) = 0;
    virtual std::unique_ptr<OrvexApplication> CreateApplication(std::int32_t& result) = 0;
    virtual RasterInformationMaker RasterInformation() = 0;
    virtual ShapefileMaker Shapefiles() = 0;
};

/// Folder of the open project; empty if there is none, or if the application object (may be null) does not
/// know.
inline std::wstring ProjectFolderOf(OrvexApplication* application) {
    std::wstring folder;
    return application != nullptr && application->GetProjectFolder(folder) >= 0 ? folder : std::wstring();
}

/// Text for the log and for the host's developers when an object that the component needs cannot be created:
/// names the class and says what the host has to register. `result`: failure code of its creation.
std::wstring MissingObjectText(std::string_view name, const ClassId& id, std::int32_t result);

/// The host's objects by class id: in-process factories on Linux, COM on Windows.
std::unique_ptr<HostObjects> MakeHostObjects();

}  // namespace orvex
