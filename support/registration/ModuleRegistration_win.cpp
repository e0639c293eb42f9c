#include "support/registration/ModuleRegistration_win.h"

#include <ole2.h>

#include <memory>
#include <system_error>

#include "support/com/ComPtr_win.h"
#include "support/com/ModuleFile_win.h"

// The system has them, mingw-w64's header has not.
extern "C" {
HRESULT WINAPI RegisterTypeLibForUser(ITypeLib* library, OLECHAR* file, OLECHAR* helpFolder);
HRESULT WINAPI UnRegisterTypeLibForUser(REFGUID id, WORD major, WORD minor, LCID language, SYSKIND system);
}

namespace orvex {
namespace {

[[noreturn]] void Throw(int code, const char* call) {
    throw std::system_error(code, std::system_category(), call);
}

void Check(HRESULT result, const char* call) {
    if (FAILED(result)) {
        Throw(result, call);
    }
}

std::string_view ScriptIn(HMODULE module, int resource) {
    const HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(resource), L"REGISTRY");
    const HGLOBAL loaded = found == nullptr ? nullptr : LoadResource(module, found);
    const void* data = loaded == nullptr ? nullptr : LockResource(loaded);
    if (data == nullptr) {
        Throw(static_cast<int>(GetLastError()), "FindResourceW");
    }
    return {static_cast<const char*>(data), SizeofResource(module, found)};
}

/// The type library in a module, with what the system knows it by.
class TypeLibrary {
  public:
    TypeLibrary(const std::wstring& file, RegistrationScope scope) : file_(file), scope_(scope) {
        Check(LoadTypeLibEx(file.c_str(), REGKIND_NONE, library_.Receive()), "LoadTypeLibEx");
        Check(library_->GetLibAttr(&attributes_), "GetLibAttr");
    }
    ~TypeLibrary() {
        if (attributes_ != nullptr) {
            library_->ReleaseTLibAttr(attributes_);
        }
    }
    TypeLibrary(const TypeLibrary&) = delete;
    TypeLibrary& operator=(const TypeLibrary&) = delete;

    /// The key that all versions of the library share.
    RegistryPlace Place() const {
        constexpr int kGuidLength = 39;
        wchar_t id[kGuidLength] = {};
        StringFromGUID2(attributes_->guid, id, kGuidLength);
        return ClassesOf(scope_).Below(L"TypeLib").Below(id);
    }

    void Register() const {
        std::wstring file = file_;  // the declarations ask for texts that may be written to
        std::wstring folder = file_.substr(0, file_.rfind(L'\\'));
        const auto call = scope_ == RegistrationScope::User ? &RegisterTypeLibForUser : &RegisterTypeLib;
        Check(call(library_.Get(), file.data(), folder.data()), "RegisterTypeLib");
    }

    void Unregister() const {
        const auto call = scope_ == RegistrationScope::User ? &UnRegisterTypeLibForUser : &UnRegisterTypeLib;
        const HRESULT result = call(attributes_->guid, attributes_->wMajorVerNum, attributes_->wMinorVerNum,
                                    attributes_->lcid, attributes_->syskind);
        if (FAILED(result) && IsRegistered()) {  // it is a failure too when there was nothing to remove
            Throw(result, "UnRegisterTypeLib");
        }
    }

  private:
    /// In this scope: what the machine has registered is no business of one user's.
    bool IsRegistered() const {
        wchar_t version[16] = {};
        wsprintfW(version, L"%x.%x", attributes_->wMajorVerNum, attributes_->wMinorVerNum);
        return ReadRegistry(Place().Below(version)).has_value();
    }

    std::wstring file_;
    RegistrationScope scope_;
    ComPtr<ITypeLib> library_;
    TLIBATTR* attributes_ = nullptr;
};

}  // namespace

ModuleRegistration::ModuleRegistration(const void* address, int scriptResource)
    : file_(ModuleFile(address)),
      script_(ParseRegistrarScript(ScriptIn(ModuleOf(address), scriptResource), {{L"MODULE", file_}})) {}

void ModuleRegistration::Register(RegistrationScope scope) const {
    RegistryJournal journal;
    ApplyScript(script_, scope, journal);
    const TypeLibrary library(file_, scope);
    journal.Remember(library.Place());
    library.Register();
    journal.Keep();
}

void ModuleRegistration::Unregister(RegistrationScope scope) const {
    RegistryJournal journal;
    RevertScript(script_, scope, journal);
    const TypeLibrary library(file_, scope);
    journal.Remember(library.Place());
    library.Unregister();
    journal.Keep();
}

}  // namespace orvex
