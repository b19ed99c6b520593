/* A custom action that changes the machine: it writes a file into the application's directory. */

#include <temz/CustomAction.h>

#include <string.h>
#include <windows.h>

__declspec(dllexport) uint32_t
    set(CustomActionParams* params, wchar_t* message, uint32_t capacity) {
    static const char text[] = "set";
    char path[sizeof params->applicationRootDirectory + sizeof "settings.txt"];
    DWORD written = 0;
    (void)message;
    (void)capacity;
    strcat(strcpy(path, params->applicationRootDirectory), "settings.txt");
    const HANDLE file = CreateFileA(path, GENERIC_WRITE, 0, NULL, CREATE_ALWAYS, 0, NULL);
    if (file == INVALID_HANDLE_VALUE)
        return GetLastError();
    WriteFile(file, text, sizeof text - 1, &written, NULL);
    CloseHandle(file);
    return 0;
}
