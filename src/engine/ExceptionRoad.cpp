// When memory is exhausted, std::bad_alloc is thrown from a reserve of the C++ runtime. The reserve
// has a lock, which is made from memory when it is first taken: if there is none by then, that
// throws, needs the reserve, needs the lock, and so on to the end of the stack. And what a thread
// needs to throw at all is made from memory at its first exception, or the process ends. So both
// are made while the library is loaded, and by each thread that begins later.

#include <cxxabi.h>
#include <windows.h>

#include <cstddef>

// The linker leads all calls of malloc in this library here (--wrap=malloc), and gives the true
// one. NOLINTBEGIN(bugprone-reserved-identifier): the linker's names
extern "C" void* __real_malloc(size_t size);
extern "C" void* __wrap_malloc(size_t size);

namespace {

/// Whether the next allocation is to fail: that of the one exception that is thrown to try the
/// road.
bool nextFails = false;

}  // namespace

extern "C" void* __wrap_malloc(size_t size) {
    if (!nextFails)
        return __real_malloc(size);
    nextFails = false;
    return nullptr;
}
// NOLINTEND(bugprone-reserved-identifier)

namespace {

void makeThreadReady() {
    // Asking makes it; the answer is stored so that the question isn't left out.
    [[maybe_unused]] const volatile auto* const volatile made = abi::__cxa_get_globals();
}

void throwFromReserve() {
    nextFails = true;
    try {
        throw 0;
    } catch (int) {
        // It has come through.
    }
}

}  // namespace

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, void*) {
    if (reason == DLL_PROCESS_ATTACH || reason == DLL_THREAD_ATTACH)
        makeThreadReady();
    if (reason == DLL_PROCESS_ATTACH)
        throwFromReserve();
    return TRUE;
}
