// Where threads end, the compiler's runtime destroys the thread's objects and frees their memory in the order
// in which these two were first used in the process, and the second is mostly used first: destructors then
// run on freed memory (GCC 12 for Windows). Qt has such objects, so a host's thread that had shown a dialog
// could crash when it ends. Here the first is used when the library is loaded.
#include <windows.h>

#include <cxxabi.h>

namespace {

// It counts as a use of the module that is named until the thread ends, so that module is one that never
// goes; and the destructor, which is called then, is one that does nothing and stays as well.
struct DestructorsFirst {
    DestructorsFirst() {
        const HMODULE runtime = GetModuleHandleW(L"msvcrt.dll");
        const FARPROC release = GetProcAddress(runtime, "free");
        abi::__cxa_thread_atexit(reinterpret_cast<void (*)(void*)>(reinterpret_cast<void*>(release)), nullptr,
                                 runtime);
    }
};
const DestructorsFirst destructorsFirst __attribute__((init_priority(101)));

}  // namespace
