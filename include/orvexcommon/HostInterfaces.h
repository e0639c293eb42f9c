#pragma once
// Objects that the component expects from its host. On Windows they are COM objects, which the component
// creates by class id; OrvexHost.idl describes their interfaces, and a host may implement them in any way.
// Elsewhere the host registers a factory per class id in its object library (orvexobjects). That library also
// works on Windows, where it registers the factories with COM; a host with COM classes of its own does not
// need it.
#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <variant>

#include "orvexcommon/RasterProperties.h"

#if defined(_WIN32)
#if defined(ORVEXOBJECTS_BUILD)
#define ORVEXOBJECTS_API __declspec(dllexport)
#else
#define ORVEXOBJECTS_API __declspec(dllimport)
#endif
#else
#define ORVEXOBJECTS_API __attribute__((visibility("default")))
#endif

namespace orvex {

/// A class id, in the field order of a GUID.
struct ClassId {
    std::uint32_t data1;
    std::uint16_t data2;
    std::uint16_t data3;
    std::uint8_t data4[8];

    friend bool operator==(const ClassId&, const ClassId&) = default;
};

/// {38E5B774-7F17-48A4-BB8A-CEEA8FE4F258}: the settings object OrvexSystemSettings.
inline constexpr ClassId kSystemSettingsClass{
    0x38E5B774, 0x7F17, 0x48A4, {0xBB, 0x8A, 0xCE, 0xEA, 0x8F, 0xE4, 0xF2, 0x58}};
/// {A59ECFF0-11E3-4339-B008-8FBD1D3B6420}: the host application object.
inline constexpr ClassId kApplicationClass{
    0xA59ECFF0, 0x11E3, 0x4339, {0xB0, 0x08, 0x8F, 0xBD, 0x1D, 0x3B, 0x64, 0x20}};
/// {41A55615-706A-467A-9682-DCB2F9C98BC5}: the raster-information object.
inline constexpr ClassId kRasterInformationClass{
    0x41A55615, 0x706A, 0x467A, {0x96, 0x82, 0xDC, 0xB2, 0xF9, 0xC9, 0x8B, 0xC5}};
/// {FAFBA4E0-3533-449F-8A15-D7B13B1A1591}: the shapefile object.
inline constexpr ClassId kShapefileClass{
    0xFAFBA4E0, 0x3533, 0x449F, {0x8A, 0x15, 0xD7, 0xB1, 0x3B, 0x1A, 0x15, 0x91}};

/// Result codes of host objects: 0 is success, negative values are failures (the HRESULT values of the same
/// names).
inline constexpr std::int32_t kHostOk = 0;
inline constexpr std::int32_t kHostNotImplemented = static_cast<std::int32_t>(0x80004001);
inline constexpr std::int32_t kHostFail = static_cast<std::int32_t>(0x80004005);
inline constexpr std::int32_t kHostClassNotRegistered = static_cast<std::int32_t>(0x80040154);

/// One value of the settings object. Booleans travel as 16-bit integers, -1 for true and 0 for false.
using SettingValue = std::variant<std::monostate, std::int16_t, std::int32_t, double, std::wstring>;

/// Base of every object from the object library.
class HostObject {
  public:
    virtual ~HostObject() = default;
};

/// The host's settings object OrvexSystemSettings: named values in sections.
class OrvexSystemSettings : public HostObject {
  public:
    /// Overwrites `value` (set to the default by the caller) if the setting is stored. Returns a result code.
    virtual std::int32_t Get(const std::wstring& section, const std::wstring& key, SettingValue& value) = 0;
    /// Stores the value. Returns a result code; a failure keeps the old value.
    virtual std::int32_t Set(const std::wstring& section, const std::wstring& key,
                             const SettingValue& value) = 0;
};

/// Geometry type codes of layers of points. Any other code is another geometry.
inline constexpr std::int32_t kPointLayer = 0x10002;
inline constexpr std::int32_t kPointZLayer = 0x10006;

/// A layer that the host can open: its state when it was opened. Used on the thread that opened it.
class OrvexLayer : public HostObject {
  public:
    /// True if the layer was made for photos, whatever its fields. Returns a result code, as the others do.
    virtual std::int32_t IsPhotoLayer(bool& isPhotoLayer) = 0;
    virtual std::int32_t GetGeometryType(std::int32_t& type) = 0;
    /// True if the layer's records have a field of the name. Letter case is the host's business.
    virtual std::int32_t HasField(const std::wstring& name, bool& hasField) = 0;
    /// True if a record is of the photo with the full path.
    virtual std::int32_t HasPhoto(const std::wstring& path, bool& hasPhoto) = 0;
};

/// The open project.
class OrvexProject : public HostObject {
  public:
    /// Full path of the folder that photo layers are written to; empty if there is none. Returns a result
    /// code.
    virtual std::int32_t GetPhotoFolder(std::wstring& folder) = 0;
    /// Opens a layer for reading. `path` is as the user typed it; a relative one is the host's business.
    /// Returns a result code; a failure leaves `layer` unchanged.
    virtual std::int32_t OpenLayer(const std::wstring& path, std::unique_ptr<OrvexLayer>& layer) = 0;
};

/// The user's account at a cloud service: its state when it was asked for. A host whose tokens change gives
/// the current one to whoever asks anew. Used on any one thread at a time. Each function returns a result
/// code; a failure leaves the text unchanged.
class OrvexUserAccount : public HostObject {
  public:
    /// Name for people; may be empty.
    virtual std::int32_t GetUserName(std::wstring& name) = 0;
    /// "https://host/path", "http://host:port", or the full path of a folder of listings.
    virtual std::int32_t GetService(std::wstring& service) = 0;
    /// Bearer token of the service; empty if it wants none. The component sends it to the service only, and
    /// neither stores nor shows it.
    virtual std::int32_t GetToken(std::wstring& token) = 0;
};

/// The host application object.
class OrvexApplication : public HostObject {
  public:
    /// Folder of the open project with a trailing separator; empty if no project is open. Returns a result
    /// code.
    virtual std::int32_t GetProjectFolder(std::wstring& folder) = 0;
    /// Reads a numbered option of the host into `value` if it is set. Returns a result code.
    virtual std::int32_t GetOptionItem(std::int32_t item, SettingValue& value) = 0;
    /// The open project. Null and a failure code if there is none to give: a host without photo layers need
    /// not override this.
    virtual std::unique_ptr<OrvexProject> GetProject(std::int32_t& result) {
        result = kHostNotImplemented;
        return nullptr;
    }
    /// The signed-in user's account; null with kHostOk if nobody is signed in, null with a failure code if
    /// there is none to give: a host without cloud layers need not override this.
    virtual std::unique_ptr<OrvexUserAccount> GetUserAccount(std::int32_t& result) {
        result = kHostNotImplemented;
        return nullptr;
    }
};

/// Reads properties of raster files. Created on any thread, several at a time, and used on the thread that
/// created it; possibly still after the component's function has returned, if the user gave up on a file that
/// did not respond. Optional: without the class the component reads the files itself.
class OrvexRasterInformation : public HostObject {
  public:
    /// Reads the file's properties without its pixels. Returns a result code; on failure `properties` is
    /// unchanged and `reason` gives the cause in plain words if known. An object that only knows the
    /// essentials leaves `hasDetails` false.
    virtual std::int32_t Describe(const std::wstring& path, RasterProperties& properties,
                                  std::wstring& reason) = 0;
};

/// Reads shapefiles, on the threads and under the terms of OrvexRasterInformation. Optional too. Everything
/// but Open is about the file that was opened last and fails before that. Each function returns a result
/// code; a failure leaves the results unchanged.
class OrvexShapefile : public HostObject {
  public:
    /// Opens a shapefile for reading. On failure `reason` gives the cause in plain words if known.
    virtual std::int32_t Open(const std::wstring& path, std::wstring& reason) = 0;
    virtual std::int32_t GetShapeCount(std::int32_t& count) = 0;
    /// Code of the file format: 0 null, 1 point, 3 polyline, 5 polygon, 8 multipoint, with 10 added for Z and
    /// 20 for M, 31 multipatch.
    virtual std::int32_t GetShapeType(std::int32_t& type) = 0;
    /// Bounds of the shapes in units of the CRS: minimum X, minimum Y, maximum X, maximum Y.
    virtual std::int32_t GetExtent(std::array<double, 4>& extent) = 0;
    virtual std::int32_t GetFieldCount(std::int32_t& count) = 0;
    /// Attribute field by its index from 0. Types: 0 double, 1 integer, 2 string, 3 date, 4 logical,
    /// 5 invalid.
    virtual std::int32_t GetFieldInfo(std::int32_t index, std::wstring& name, std::int32_t& type) = 0;
};

using HostObjectFactory = std::function<std::unique_ptr<HostObject>()>;

}  // namespace orvex

/// Registers the factory of a class; an empty factory removes the class. The latest registration counts. The
/// factories of the raster-information and the shapefile class are called on any thread, several at a time,
/// and may still be running when the class is removed.
///
/// On Windows the classes become class objects of the calling thread's COM apartment, and these two also
/// class objects of the multithreaded apartment, where the component's threads find them: register on the
/// thread that calls the component, and remove on the same thread, not from DllMain. While a class is
/// registered, COM stays initialised on that thread, single-threaded unless the host has chosen otherwise.
/// Throws std::system_error if COM refuses.
ORVEXOBJECTS_API void RegisterHostClass(const orvex::ClassId& classId, orvex::HostObjectFactory factory);

/// Creates an object of a class. Null and a failure code (kHostClassNotRegistered, kHostFail) if that fails;
/// never throws. The caller owns the object.
ORVEXOBJECTS_API std::unique_ptr<orvex::HostObject> CreateHostObject(const orvex::ClassId& classId,
                                                                     std::int32_t& result);
