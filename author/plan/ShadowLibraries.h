#pragma once

#include <set>
#include <string>

#include "motion/ActionCalls.h"
#include "plan/AnsweredCall.h"
#include "plan/Change.h"
#include "plan/OwnHandles.h"
#include "plan/ShadowFiles.h"
#include "system/LibraryCalls.h"

/// The libraries of custom actions: found and read as files, never loaded. A function that is
/// called gives 0, and nothing is known of what it does.
class ShadowLibraries {
public:
    ShadowLibraries(const ShadowFiles& files, ChangeListener& listener)
        : files(files), listener(listener) {}

    HMODULE answer(Call<&LibraryCalls::LoadLibraryW>, const wchar_t* name);
    FARPROC answer(Call<&LibraryCalls::GetProcAddress>, HMODULE handle, const char* name);
    BOOL answer(Call<&LibraryCalls::FreeLibrary>, HMODULE library);
    uint32_t answer(Call<&ActionCalls::CallEntry>, CustomActionEntry entry,
                    CustomActionParams* params, wchar_t* message, uint32_t capacity);

private:
    struct Library {
        std::wstring path;
        std::set<std::string> exports;
    };
    struct Entry {
        std::wstring name;  ///< with that of its library
    };

    std::wstring find(const wchar_t* given) const;

    const ShadowFiles& files;
    ChangeListener& listener;
    OwnHandles<HMODULE, Library> libraries;
    OwnHandles<void*, Entry> entries;
};
