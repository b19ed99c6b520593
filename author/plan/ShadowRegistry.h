#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "plan/AnsweredCall.h"
#include "plan/Change.h"
#include "plan/FilePath.h"
#include "plan/MachineKey.h"
#include "plan/OwnHandles.h"
#include "system/RegistryCalls.h"

/// The registry as a run would leave it. A key is known by the system's own name for it, so that it
/// is one, whatever root leads to it.
class ShadowRegistry {
public:
    explicit ShadowRegistry(ChangeListener& listener) : listener(listener) {}

    LSTATUS answer(Call<&RegistryCalls::RegCreateKeyExW>, HKEY parent, const wchar_t* path,
                   DWORD reserved, wchar_t* keyClass, DWORD options, REGSAM access,
                   SECURITY_ATTRIBUTES* security, HKEY* key, DWORD* disposition);
    LSTATUS answer(Call<&RegistryCalls::RegOpenKeyExW>, HKEY parent, const wchar_t* path,
                   DWORD options, REGSAM access, HKEY* key);
    LSTATUS answer(Call<&RegistryCalls::RegQueryInfoKeyW>, HKEY handle, wchar_t* keyClass,
                   DWORD* classLength, DWORD* reserved, DWORD* subkeys, DWORD* longestSubkey,
                   DWORD* longestClass, DWORD* valueCount, DWORD* longestName, DWORD* longestData,
                   DWORD* descriptorSize, FILETIME* written);
    LSTATUS answer(Call<&RegistryCalls::RegEnumKeyExW>, HKEY handle, DWORD index, wchar_t* name,
                   DWORD* length, DWORD* reserved, wchar_t* keyClass, DWORD* classLength,
                   FILETIME* written);
    LSTATUS answer(Call<&RegistryCalls::RegDeleteKeyW>, HKEY parent, const wchar_t* path);
    LSTATUS answer(Call<&RegistryCalls::RegSetValueExW>, HKEY handle, const wchar_t* name,
                   DWORD reserved, DWORD type, const BYTE* data, DWORD size);
    LSTATUS answer(Call<&RegistryCalls::RegCloseKey>, HKEY key);

private:
    /// Where a key is or would be.
    struct Place {
        LSTATUS error = ERROR_SUCCESS;  ///< of a path or a handle that is refused
        std::wstring path;              ///< by the system's names
        std::wstring shown;             ///< as the run names it
    };
    /// A key that has been made or removed.
    struct Key {
        bool isThere;
        std::wstring name;  ///< without its parents', as it is spelt
    };
    struct Value {
        DWORD type = REG_NONE;
        std::vector<BYTE> data = {};

        std::wstring text() const;
        bool isKeptAs(const Value& kept) const;
    };
    using Values = std::map<std::wstring, Value, LessIgnoringCase>;
    /// A key that the run has open.
    struct OpenKey {
        Place place;
        REGSAM access;
        MachineKey real;  ///< none for a key that the machine doesn't have
        std::vector<std::wstring> subkeys;
        size_t subkeysAt = 0;  ///< the count of changes when they were gathered
    };

    Place placeOf(HKEY parent, const wchar_t* path) const;
    Place onMachine(HKEY parent, const std::wstring& path) const;
    LSTATUS openOnMachine(HKEY parent, const std::wstring& path, MachineKey& key) const;
    std::optional<bool> planned(const std::wstring& path) const;
    bool isThere(const std::wstring& path) const;
    template <class Visitor>
    void visitPlannedIn(const std::wstring& path, Visitor&& visit) const;
    bool isTouched(const std::wstring& path) const;
    std::vector<std::wstring> subkeysOf(const std::wstring& path) const;
    const std::vector<std::wstring>& subkeysOf(OpenKey& key) const;

    LSTATUS open(const Place& place, REGSAM access, HKEY* key);
    LSTATUS make(const Place& place);
    LSTATUS remove(const Place& place);
    LSTATUS set(const OpenKey& key, const std::wstring& name, const Value& value);
    std::optional<Value> valueAt(const std::wstring& path, const std::wstring& name) const;

    const RegistryCalls system = registryCalls;
    ChangeListener& listener;
    std::map<std::wstring, Key, LessIgnoringCase> keys;
    std::map<std::wstring, Values, LessIgnoringCase> values;
    size_t changes = 1;
    OwnHandles<HKEY, OpenKey> openKeys;
};
