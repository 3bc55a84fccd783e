// Entry point of the module. The library has no start-up or shutdown work; on Windows it asks the
// system not to be told of threads that come and go. Elsewhere there is nothing to do.

#if defined(_WIN32)

#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) {
        DisableThreadLibraryCalls(module);
    }
    return TRUE;
}

#endif
