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

/// Manifest that names the class, active on the thread that made it.
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

class ForeignRasterTest : public ::testing::Test {
  protected:
    struct Answer {
        std::int32_t result = kHostOk;
        RasterProperties properties;
        std::wstring reason;
        DWORD thread = 0;  ///< the worker's
    };

    /// Asks an object on a worker thread, as the component does.
    Answer Describe(const std::wstring& path, const std::string& threadingModel) const {
        Answer answer;
        std::thread([&] {
            const ClassManifest manifest(threadingModel);
            answer.thread = GetCurrentThreadId();
            if (const auto object = maker_(answer.result)) {
                answer.result = object->Describe(path, answer.properties, answer.reason);
            }
        }).join();
        return answer;
    }

    const RasterInformationMaker maker_ = MakeHostObjects()->RasterInformation();
};

TEST_F(ForeignRasterTest, BothAndFreeAreCalledDirectlyAndOddAnswersAreUnderstood) {
    const std::array<double, 4> extent{1, 2, 3, 4};
    const struct {
        const wchar_t* path;
        std::int32_t result;
        bool isThreadGiven;
        RasterEssentials read;
    } cases[] = {
        {L"plain",
         kHostOk,
         true,
         {300, 200, 0.25, 0.5, L"metre", "LOCAL_CS[\"\xC3\x9C\"]", 0, 1, 1, 3, 8, 2, extent}},
        {L"odd", kHostOk, true, {300, 200, 0.25, 0, L"", "", 0, 99, -7, 0, 8, 2, {}}},
        {L"bare", kHostOk, false, {300, 200, 0, 0, L"", "", 0, -1, -1, 0, 0, 0, {}}},
        {L"no size", kHostFail, false, {}},
        {L"fails", static_cast<std::int32_t>(E_ACCESSDENIED), false, {}},
    };
    for (const char* model : {"Both", "Free"}) {
        for (const auto& c : cases) {
            const Answer answer = Describe(c.path, model);
            EXPECT_EQ(answer.result, c.result) << c.path;
            EXPECT_EQ(answer.reason, L"") << c.path;
            EXPECT_FALSE(answer.properties.hasDetails) << c.path;
            RasterEssentials expected = c.read;
            expected.projectionCode = c.isThreadGiven ? static_cast<std::int32_t>(answer.thread) : 0;
            EXPECT_TRUE(static_cast<const RasterEssentials&>(answer.properties) == expected) << c.path;
        }
    }
    const HMODULE server = GetModuleHandleW(L"raster_class_server.dll");
    ASSERT_NE(server, nullptr) << "stays loaded while the maker exists";
    const auto canUnload = reinterpret_cast<HRESULT(STDAPICALLTYPE*)()>(
        reinterpret_cast<void*>(GetProcAddress(server, "DllCanUnloadNow")));
    EXPECT_EQ(canUnload(), S_OK) << "no object is left";
}

/// Registers the type library of the host's objects until destroyed.
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

TEST_F(ForeignRasterTest, ApartmentIsCalledOnItsOwnThreadThroughTheTypeLibrary) {
    EXPECT_LT(Describe(L"plain", "Apartment").result, 0) << "not without it";
    const RegisteredTypeLibrary library;
    if (library.Result() == TYPE_E_REGISTRYACCESS) {
        GTEST_SKIP() << "only an administrator registers a type library for the machine";
    }
    ASSERT_EQ(library.Result(), S_OK);
    const Answer answer = Describe(L"plain", "Apartment");
    EXPECT_EQ(answer.result, kHostOk);
    EXPECT_EQ(answer.properties.width, 300);
    EXPECT_EQ(answer.properties.pixelHeight, 0.5);
    EXPECT_EQ(answer.properties.linearUnit, L"metre");
    EXPECT_EQ(answer.properties.extent, (std::array<double, 4>{1, 2, 3, 4}));
    EXPECT_NE(static_cast<DWORD>(answer.properties.projectionCode), answer.thread);
}

}  // namespace
}  // namespace orvex::host
