// Where threads end, the compiler's runtime destroys the thread's objects and frees their memory in the order
// in which these two were first used in the process, and the second is mostly used first: destructors then
// run on freed memory (GCC 12 for Windows). Qt has such objects, so a host's thread that had shown a dialog
// could crash when it ends. Here the first is used when the library is loaded.
#include <cxxabi.h>

extern "C" void* __dso_handle;

namespace {

struct DestructorsFirst {
    DestructorsFirst() {
        abi::__cxa_thread_atexit([](void*) {}, nullptr, &__dso_handle);
    }
};
const DestructorsFirst destructorsFirst __attribute__((init_priority(101)));

}  // namespace
