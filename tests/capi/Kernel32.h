#pragma once

/* The system's calls that the cases need, declared here so that a host without the system's headers
   can use them too. On 64-bit Windows all calls have one convention. */

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define SYSTEM_CALL __declspec(dllimport)

typedef void* Handle;

enum {
    UTF8_CODE_PAGE = 65001,
    ACTIVE_CODE_PAGE = 0,
    STANDARD_OUTPUT = -11,
    WRITE_ACCESS = 0x40000000,
    CREATE_ANEW = 2
};
#define NO_HANDLE ((Handle)(intptr_t)-1)
#define NO_ATTRIBUTES 0xFFFFFFFF

SYSTEM_CALL Handle CreateFileW(const wchar_t* path, uint32_t access, uint32_t sharing,
                               void* security, uint32_t disposition, uint32_t attributes,
                               Handle model);
SYSTEM_CALL Handle CreateThread(void* security, size_t stack, uint32_t (*start)(void*),
                                void* parameter, uint32_t flags, uint32_t* id);
SYSTEM_CALL Handle GetStdHandle(uint32_t which);
SYSTEM_CALL int32_t CloseHandle(Handle handle);
SYSTEM_CALL int32_t CreateDirectoryW(const wchar_t* path, void* security);
SYSTEM_CALL int32_t DeleteFileW(const wchar_t* path);
SYSTEM_CALL int32_t SetCurrentDirectoryW(const wchar_t* path);
SYSTEM_CALL int32_t WideCharToMultiByte(uint32_t codePage, uint32_t flags, const wchar_t* text,
                                        int32_t length, char* narrow, int32_t capacity,
                                        const char* unknown, int32_t* hadUnknown);
SYSTEM_CALL int32_t WriteFile(Handle file, const void* bytes, uint32_t size, uint32_t* written,
                              void* overlapped);
SYSTEM_CALL uint32_t GetEnvironmentVariableW(const wchar_t* name, wchar_t* text, uint32_t capacity);
SYSTEM_CALL uint32_t GetFileAttributesW(const wchar_t* path);
SYSTEM_CALL uint32_t GetModuleFileNameW(Handle module, wchar_t* path, uint32_t capacity);
SYSTEM_CALL uint32_t WaitForSingleObject(Handle handle, uint32_t milliseconds);
SYSTEM_CALL void ExitProcess(uint32_t status);

#ifdef __cplusplus
}
#endif
