/* Stands for the system's TerminateProcess in programs and libraries whose lines are counted, so that a
   process that ends itself by force writes its counts first. */
#define TerminateProcess declaredTerminateProcess
#include <windows.h>
#undef TerminateProcess

typedef BOOL(WINAPI* Terminate)(HANDLE, UINT);

void __gcov_dump(void);

BOOL WINAPI TerminateProcess(HANDLE process, UINT code) {
    const HMODULE system = GetModuleHandleW(L"kernel32");
    const Terminate terminate = (Terminate)(void*)GetProcAddress(system, "TerminateProcess");
    if (GetProcessId(process) == GetCurrentProcessId())
        __gcov_dump();
    return terminate(process, code);
}

/* By this name it is called. */
const Terminate __imp_TerminateProcess = TerminateProcess;
