#include "plan/ShadowRegistry.h"

#include <algorithm>

#include "system/PathText.h"
#include "trace/CallText.h"

namespace {

/// Below "\REGISTRY\MACHINE" and "\REGISTRY\USER" stand the hives, which aren't keys that come and
/// go.
constexpr std::ptrdiff_t hiveDepth = 3;

bool isHive(const std::wstring& path) {
    return std::count(path.begin(), path.end(), L'\\') <= hiveDepth;
}

std::wstring parentKey(const std::wstring& path) {
    const size_t separator = path.find_last_of(L'\\');
    return separator == std::wstring::npos ? L"" : path.substr(0, separator);
}

/// Without doubled separators and one at the end, all of which mean nothing to the system.
std::wstring plainPath(const std::wstring& path) {
    std::wstring plain;
    for (const wchar_t character : path)
        if (character != L'\\' || (!plain.empty() && plain.back() != L'\\'))
            plain += character;
    if (!plain.empty() && plain.back() == L'\\')
        plain.pop_back();
    return plain;
}

std::wstring joined(const std::wstring& path, const std::wstring& name) {
    return name.empty() ? path : path + L"\\" + name;
}

}  // namespace

// Which key it is.

/// Opens what the machine has below a key with all rights that can be had.
LSTATUS ShadowRegistry::openOnMachine(HKEY parent, const std::wstring& path,
                                      MachineKey& key) const {
    if (const OpenKey* own = openKeys.find(parent))
        return openBySystemName(system, joined(own->place.path, path), MAXIMUM_ALLOWED, key);
    HKEY opened = nullptr;
    const LSTATUS result = system.RegOpenKeyExW(parent, path.c_str(), 0, MAXIMUM_ALLOWED, &opened);
    if (result == ERROR_SUCCESS)
        key.reset(opened);
    return result;
}

/// The system's name for the nearest key that the machine has, and the rest behind it.
ShadowRegistry::Place ShadowRegistry::onMachine(HKEY parent, const std::wstring& path) const {
    Place place;
    std::wstring there = path;
    for (; !there.empty(); there = parentKey(there)) {
        MachineKey key;
        place.error = openOnMachine(parent, there, key);
        place.path = systemName(key.get());
        if (place.error == ERROR_SUCCESS)
            break;
        if (place.error != ERROR_FILE_NOT_FOUND && place.error != ERROR_ACCESS_DENIED)
            return place;
    }
    if (there.empty()) {
        const OpenKey* const own = openKeys.find(parent);
        place.path = own ? own->place.path : systemName(parent);
        place.error = place.path.empty() ? ERROR_INVALID_HANDLE : ERROR_SUCCESS;
    }
    place.path = joined(place.path, plainPath(path.substr(there.size())));
    return place;
}

ShadowRegistry::Place ShadowRegistry::placeOf(HKEY parent, const wchar_t* path) const {
    const std::wstring below = path ? path : L"";
    const OpenKey* const own = openKeys.find(parent);
    Place place;
    if (own != nullptr && planned(own->place.path)) {
        place.error = below.starts_with(L'\\') ? ERROR_BAD_PATHNAME : ERROR_SUCCESS;
        place.path = joined(own->place.path, plainPath(below));
    } else {
        place = onMachine(parent, below);
    }
    place.shown = joined(own ? own->place.shown : HandleNames().find(parent), plainPath(below));
    return place;
}

/// Whether a key is there, as told by what has been made or removed there or above; nothing when
/// the machine decides.
std::optional<bool> ShadowRegistry::planned(const std::wstring& path) const {
    if (const auto own = keys.find(path); own != keys.end())
        return own->second.isThere;
    for (std::wstring above = parentKey(path); !above.empty(); above = parentKey(above))
        if (keys.contains(above))
            return false;
    return std::nullopt;
}

bool ShadowRegistry::isThere(const std::wstring& path) const {
    if (const std::optional<bool> there = planned(path))
        return *there;
    MachineKey key;
    return openBySystemName(system, path, MAXIMUM_ALLOWED, key) != ERROR_FILE_NOT_FOUND;
}

// What is below it.

/// Calls `visit` for each key that has been made or removed directly below one.
template <class Visitor>
void ShadowRegistry::visitPlannedIn(const std::wstring& path, Visitor&& visit) const {
    const std::wstring prefix = path + L"\\";
    for (auto key = keys.lower_bound(prefix); key != keys.end(); ++key) {
        if (!equalIgnoringCase(std::wstring_view(key->first).substr(0, prefix.size()), prefix))
            return;
        if (key->first.find(L'\\', prefix.size()) == std::wstring::npos)
            visit(key->second);
    }
}

bool ShadowRegistry::isTouched(const std::wstring& path) const {
    bool touched = planned(path).has_value();
    visitPlannedIn(path, [&](const Key&) { touched = true; });
    return touched;
}

std::vector<std::wstring> ShadowRegistry::subkeysOf(const std::wstring& path) const {
    constexpr DWORD longestName = 256;
    std::vector<std::wstring> names;
    MachineKey real;
    if (!planned(path) &&
        openBySystemName(system, path, KEY_ENUMERATE_SUB_KEYS, real) == ERROR_SUCCESS) {
        wchar_t name[longestName];
        DWORD length = longestName;
        for (DWORD index = 0; system.RegEnumKeyExW(real.get(), index, name, &length, nullptr,
                                                   nullptr, nullptr, nullptr) == ERROR_SUCCESS;
             ++index, length = longestName)
            if (!keys.contains(joined(path, name)))
                names.emplace_back(name, length);
    }
    visitPlannedIn(path, [&](const Key& key) {
        if (key.isThere)
            names.insert(std::upper_bound(names.begin(), names.end(), key.name, LessIgnoringCase()),
                         key.name);
    });
    return names;
}

const std::vector<std::wstring>& ShadowRegistry::subkeysOf(OpenKey& key) const {
    if (key.subkeysAt != changes)
        key.subkeys = subkeysOf(key.place.path);
    key.subkeysAt = changes;
    return key.subkeys;
}

// The calls.

LSTATUS ShadowRegistry::open(const Place& place, REGSAM access, HKEY* key) {
    const std::optional<bool> there = planned(place.path);
    if (there && !*there)
        return ERROR_FILE_NOT_FOUND;
    MachineKey real;
    if (!there)
        if (const LSTATUS error = openBySystemName(system, place.path, access, real))
            return error;
    *key = openKeys.give({place, access, std::move(real), {}, 0});
    return ERROR_SUCCESS;
}

LSTATUS ShadowRegistry::answer(Call<&RegistryCalls::RegOpenKeyExW>, HKEY parent,
                               const wchar_t* path, DWORD /*options*/, REGSAM access, HKEY* key) {
    const Place place = placeOf(parent, path);
    return place.error ? place.error : open(place, access, key);
}

/// Makes a key with those that are missing above it.
LSTATUS ShadowRegistry::make(const Place& place) {
    if (isThere(place.path))
        return ERROR_SUCCESS;
    Place above = place;
    above.path = parentKey(place.path);
    above.shown = parentKey(place.shown);
    if (above.path.empty())
        return ERROR_FILE_NOT_FOUND;
    if (const LSTATUS error = make(above))
        return error;
    MachineKey real;
    if (!planned(above.path))
        if (const LSTATUS error = openBySystemName(system, above.path, KEY_CREATE_SUB_KEY, real))
            return error;
    keys[place.path] = {true, nameOf(place.path)};
    ++changes;
    Change change{};
    change.kind = ChangeKind::keyAdded;
    change.object = place.shown;
    listener.planned(change);
    return ERROR_SUCCESS;
}

LSTATUS ShadowRegistry::answer(Call<&RegistryCalls::RegCreateKeyExW>, HKEY parent,
                               const wchar_t* path, DWORD /*reserved*/, wchar_t* /*keyClass*/,
                               DWORD /*options*/, REGSAM access, SECURITY_ATTRIBUTES* /*security*/,
                               HKEY* key, DWORD* disposition) {
    const Place place = placeOf(parent, path);
    if (place.error)
        return place.error;
    const bool wasThere = isThere(place.path);
    if (const LSTATUS error = make(place))
        return error;
    if (disposition)
        *disposition = wasThere ? REG_OPENED_EXISTING_KEY : REG_CREATED_NEW_KEY;
    return open(place, access, key);
}

LSTATUS ShadowRegistry::remove(const Place& place) {
    if (!isThere(place.path))
        return ERROR_FILE_NOT_FOUND;
    if (isHive(place.path) || !subkeysOf(place.path).empty())
        return ERROR_ACCESS_DENIED;
    MachineKey real;
    if (!planned(place.path))
        if (const LSTATUS error = openBySystemName(system, place.path, DELETE, real))
            return error;
    const std::wstring inside = place.path + L"\\";
    std::erase_if(keys, [&](const auto& key) {
        return equalIgnoringCase(std::wstring_view(key.first).substr(0, inside.size()), inside);
    });
    keys[place.path] = {false, {}};
    values.erase(place.path);
    ++changes;
    Change change{};
    change.kind = ChangeKind::keyRemoved;
    change.object = place.shown;
    listener.planned(change);
    return ERROR_SUCCESS;
}

LSTATUS ShadowRegistry::answer(Call<&RegistryCalls::RegDeleteKeyW>, HKEY parent,
                               const wchar_t* path) {
    const Place place = placeOf(parent, path);
    return place.error ? place.error : remove(place);
}

LSTATUS ShadowRegistry::answer(Call<&RegistryCalls::RegQueryInfoKeyW>, HKEY handle,
                               wchar_t* keyClass, DWORD* classLength, DWORD* reserved,
                               DWORD* subkeys, DWORD* longestSubkey, DWORD* longestClass,
                               DWORD* valueCount, DWORD* longestName, DWORD* longestData,
                               DWORD* descriptorSize, FILETIME* written) {
    OpenKey* const key = openKeys.find(handle);
    LSTATUS result = ERROR_SUCCESS;
    if (key == nullptr || key->real)
        result = system.RegQueryInfoKeyW(key ? key->real.get() : handle, keyClass, classLength,
                                         reserved, subkeys, longestSubkey, longestClass, valueCount,
                                         longestName, longestData, descriptorSize, written);
    else
        for (DWORD* number : {classLength, subkeys, longestSubkey, longestClass, valueCount,
                              longestName, longestData, descriptorSize})
            if (number)
                *number = 0;
    if (result == ERROR_SUCCESS && key && subkeys && isTouched(key->place.path))
        *subkeys = static_cast<DWORD>(subkeysOf(*key).size());
    return result;
}

LSTATUS ShadowRegistry::answer(Call<&RegistryCalls::RegEnumKeyExW>, HKEY handle, DWORD index,
                               wchar_t* name, DWORD* length, DWORD* reserved, wchar_t* keyClass,
                               DWORD* classLength, FILETIME* written) {
    OpenKey* const key = openKeys.find(handle);
    if (key == nullptr || (key->real && !isTouched(key->place.path)))
        return system.RegEnumKeyExW(key ? key->real.get() : handle, index, name, length, reserved,
                                    keyClass, classLength, written);
    const std::vector<std::wstring>& subkeys = subkeysOf(*key);
    if (index >= subkeys.size())
        return ERROR_NO_MORE_ITEMS;
    const std::wstring& subkey = subkeys[index];
    if (subkey.size() >= *length)
        return ERROR_MORE_DATA;
    *length = static_cast<DWORD>(subkey.copy(name, subkey.size()));
    name[subkey.size()] = L'\0';
    return ERROR_SUCCESS;
}

/// No text at all would stand for a value that isn't there.
std::wstring ShadowRegistry::Value::text() const {
    const std::wstring text =
        textOfRegistryData(type, data.data(), static_cast<DWORD>(data.size()));
    return text.empty() ? L"empty" : text;
}

/// Whether the system has what it makes of this one, too: it ends a text whose end isn't set with
/// it.
bool ShadowRegistry::Value::isKeptAs(const Value& kept) const {
    const bool isText = type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ;
    std::vector<BYTE> ended = data;
    ended.resize(data.size() + (isText ? sizeof(wchar_t) : 0));
    return kept.type == type && (kept.data == data || kept.data == ended);
}

/// A value as it is now; nothing when it isn't there, or can't be read.
std::optional<ShadowRegistry::Value> ShadowRegistry::valueAt(const std::wstring& path,
                                                             const std::wstring& name) const {
    if (const auto own = values.find(path); own != values.end())
        if (const auto value = own->second.find(name); value != own->second.end())
            return value->second;
    MachineKey key;
    Value value;
    DWORD size = 0;
    if (planned(path) || openBySystemName(system, path, KEY_QUERY_VALUE, key) ||
        RegQueryValueExW(key.get(), name.c_str(), nullptr, &value.type, nullptr, &size))
        return std::nullopt;
    value.data.resize(size);
    if (RegQueryValueExW(key.get(), name.c_str(), nullptr, &value.type, value.data.data(), &size))
        return std::nullopt;
    return value;
}

LSTATUS ShadowRegistry::set(const OpenKey& key, const std::wstring& name, const Value& value) {
    if (!isThere(key.place.path))
        return ERROR_KEY_DELETED;
    if (!(key.access & (KEY_SET_VALUE | MAXIMUM_ALLOWED)))
        return ERROR_ACCESS_DENIED;
    const std::optional<Value> before = valueAt(key.place.path, name);
    Change change{};
    change.kind = ChangeKind::valueSet;
    change.object = key.place.shown + L"\\" + name;
    change.before = before ? before->text() : L"";
    change.after = value.text();
    change.bytes = value.data.size();
    change.sameContent = before && value.isKeptAs(*before);
    values[key.place.path][name] = value;
    listener.planned(change);
    return ERROR_SUCCESS;
}

LSTATUS ShadowRegistry::answer(Call<&RegistryCalls::RegSetValueExW>, HKEY handle,
                               const wchar_t* name, DWORD /*reserved*/, DWORD type,
                               const BYTE* data, DWORD size) {
    const OpenKey* const key = openKeys.find(handle);
    if (key == nullptr)
        return ERROR_INVALID_HANDLE;
    return set(*key, name ? name : L"",
               {type, data ? std::vector<BYTE>(data, data + size) : std::vector<BYTE>()});
}

LSTATUS ShadowRegistry::answer(Call<&RegistryCalls::RegCloseKey>, HKEY key) {
    return openKeys.close(key) ? LSTATUS{ERROR_SUCCESS} : system.RegCloseKey(key);
}
