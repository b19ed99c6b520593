// A library with a custom action that fails, and tells how its host has started.

#include <windows.h>

#include <objbase.h>
#include <temz/CustomAction.h>

#include <cwchar>

extern "C" __declspec(dllexport) uint32_t
    tellStart(CustomActionParams*, wchar_t* message, uint32_t capacity) {
    const bool apartment = CoInitializeEx(nullptr, COINIT_MULTITHREADED) == RPC_E_CHANGED_MODE;
    std::swprintf(message, capacity, L"error mode %u, %ls", GetErrorMode(),
                  apartment ? L"an apartment" : L"no apartment");
    return 1;
}
