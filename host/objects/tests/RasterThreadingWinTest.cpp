// Another host's raster-information class in a library, with each threading model that its registration may
// name. A manifest registers it, as in programs without an installer: the registry stays untouched.
#include <OrvexHost.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <thread>

#include "support/HostObjects.h"
#include "support/com/ComApartment_win.h"
#include "support/com/ComPtr_win.h"
#include "support/com/ModuleFile_win.h"

namespace orvex::host {
namespace {

/// A manifest that names the class, active on the thread that made it.
class ClassManifest {
  public:
    explicit ClassManifest(const std::string& threadingModel) {
        std::ofstream(file_) << R"(<assembly xmlns="urn:schemas-microsoft-com:asm.v1" manifestVersion="1.0">)"
                             << R"(<assemblyIdentity type="win32" name="RasterClass" version="1.0.0.0"/>)"
                             << R"(<file name="raster_class_server.dll"><comClass )"
                             << R"(clsid="{41A55615-706A-467A-9682-DCB2F9C98BC5}" threadingModel=")"
                             << threadingModel << R"("/></file></assembly>)";
        ACTCTXW description{};
        description.cbSize = sizeof(description);
        description.lpSource = file_.c_str();
        context_ = CreateActCtxW(&description);
        EXPECT_NE(context_, INVALID_HANDLE_VALUE) << GetLastError();
        EXPECT_TRUE(ActivateActCtx(context_, &cookie_)) << GetLastError();
    }
    ~ClassManifest() {
        DeactivateActCtx(0, cookie_);
        ReleaseActCtx(context_);
        std::error_code none;
        std::filesystem::remove(file_, none);
    }
    ClassManifest(const ClassManifest&) = delete;
    ClassManifest& operator=(const ClassManifest&) = delete;

  private:
    /// Beside the library: the system looks for it where the manifest is.
    std::filesystem::path file_ =
        std::filesystem::path(ModuleFile(reinterpret_cast<const void*>(&RegisterHostClass))).parent_path() /
        ("raster-class-" + std::to_string(GetCurrentProcessId()) + ".manifest");
    HANDLE context_ = INVALID_HANDLE_VALUE;
    ULONG_PTR cookie_ = 0;
};

struct Described {
    std::int32_t result = 1;
    RasterProperties properties;
    DWORD thread = 0;  ///< that asked
};

/// As the component's workers do it.
Described DescribeOnAWorker(const std::string& threadingModel) {
    Described described;
    const RasterInformationMaker maker = MakeHostObjects()->RasterInformation();
    std::thread([&] {
        const ClassManifest manifest(threadingModel);
        described.thread = GetCurrentThreadId();
        if (const auto object = maker(described.result)) {
            std::wstring reason;
            described.result = object->Describe(L"plain", described.properties, reason);
        }
    }).join();
    return described;
}

TEST(RasterThreadingWin, BothAndFreeAreCalledDirectly) {
    for (const char* model : {"Both", "Free"}) {
        const Described described = DescribeOnAWorker(model);
        EXPECT_EQ(described.result, kHostOk) << model;
        EXPECT_EQ(described.properties.width, 300) << model;
        EXPECT_EQ(static_cast<DWORD>(described.properties.projectionCode), described.thread) << model;
        EXPECT_FALSE(described.properties.hasDetails);
    }
}

/// The type library of the host's objects as the system's registry has it, until destroyed.
class RegisteredTypeLibrary {
  public:
    RegisteredTypeLibrary() {
        const std::wstring file = ModuleFile(reinterpret_cast<const void*>(&RegisterHostClass));
        EXPECT_EQ(LoadTypeLibEx(file.c_str(), REGKIND_NONE, library_.Receive()), S_OK);
        std::wstring path = file;
        result_ = RegisterTypeLib(library_.Get(), path.data(), nullptr);
    }
    ~RegisteredTypeLibrary() {
        TLIBATTR* attributes = nullptr;
        if (SUCCEEDED(library_->GetLibAttr(&attributes))) {
            UnRegisterTypeLib(attributes->guid, attributes->wMajorVerNum, attributes->wMinorVerNum,
                              attributes->lcid, attributes->syskind);
            library_->ReleaseTLibAttr(attributes);
        }
    }
    RegisteredTypeLibrary(const RegisteredTypeLibrary&) = delete;
    RegisteredTypeLibrary& operator=(const RegisteredTypeLibrary&) = delete;

    HRESULT Result() const { return result_; }

  private:
    ComPtr<ITypeLib> library_;
    HRESULT result_ = E_FAIL;
};

TEST(RasterThreadingWin, ApartmentIsCarriedOverByTheTypeLibrary) {
    EXPECT_LT(DescribeOnAWorker("Apartment").result, 0) << "not without it";
    const RegisteredTypeLibrary library;
    if (library.Result() == TYPE_E_REGISTRYACCESS) {
        GTEST_SKIP() << "only an administrator registers a type library for the machine";
    }
    ASSERT_EQ(library.Result(), S_OK);
    const Described described = DescribeOnAWorker("Apartment");
    EXPECT_EQ(described.result, kHostOk);
    EXPECT_EQ(described.properties.width, 300);
    EXPECT_EQ(described.properties.pixelHeight, 0.5);
    EXPECT_EQ(described.properties.linearUnit, L"metre");
    EXPECT_EQ(described.properties.extent, (std::array<double, 4>{1, 2, 3, 4}));
    EXPECT_NE(static_cast<DWORD>(described.properties.projectionCode), described.thread);
}

}  // namespace
}  // namespace orvex::host
