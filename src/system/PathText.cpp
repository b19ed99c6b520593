#include "system/PathText.h"

#include <windows.h>

#include <algorithm>
#include <cwchar>
#include <new>

#include "system/Exhaustion.h"
#include "system/LocalTime.h"

namespace {

bool equalIgnoringCase(wchar_t left, wchar_t right) {
    return CompareStringOrdinal(&left, 1, &right, 1, TRUE) == CSTR_EQUAL;
}

constexpr size_t stampLength = 128;

/// Set by the first stamped name of the process; process-wide, so that all copies made in one run
/// of the host bear one stamp.
wchar_t processStamp[stampLength];

}  // namespace

WideText joinPath(const wchar_t* directory, const wchar_t* name) {
    if (directory == nullptr || name == nullptr)
        return nullptr;
    const size_t directoryLength = wcslen(directory);
    const size_t nameLength = wcslen(name);
    const bool needsSeparator = directoryLength > 0 && !isSeparator(directory[directoryLength - 1]);

    WideText path(new (std::nothrow) wchar_t[directoryLength + nameLength + 2]);
    if (!path)
        return nullptr;
    wchar_t* end = wmemcpy(path.get(), directory, directoryLength) + directoryLength;
    if (needsSeparator)
        *end++ = L'\\';
    wmemcpy(end, name, nameLength + 1);
    return path;
}

std::wstring withSeparator(std::wstring path) {
    if (!path.empty() && !isSeparator(path.back()))
        path += L'\\';
    return path;
}

void putInFront(std::wstring& path, const std::wstring& directory) {
    if (!directory.empty() && !isSeparator(directory.back()))
        path.insert(0, 1, L'\\');
    path.insert(0, directory);
}

WideText parentDirectoryOrThrow(const wchar_t* path) {
    if (path == nullptr)
        return nullptr;
    size_t length = wcslen(path);
    while (length > 1 && !isSeparator(path[length - 1]))
        --length;
    if (length < 2)
        return nullptr;
    WideText parent(new wchar_t[length]);
    wmemcpy(parent.get(), path, length - 1);
    parent[length - 1] = L'\0';
    return parent;
}

WideText parentDirectory(const wchar_t* path) {
    return nullIfExhausted([path] { return parentDirectoryOrThrow(path); });
}

void makeStampedName(const wchar_t* path, std::wstring& name) {
    if (processStamp[0] == L'\0') {
        if (const auto now = localTime())
            std::swprintf(processStamp, stampLength, L"%d%d%d%d%d%d", now->year, now->month,
                          now->day, now->hour, now->minute, now->second);
    }
    name = path ? path : L"";
    const size_t dot = name.rfind(L'.');
    name.insert(dot == std::wstring::npos ? name.size() : dot, processStamp);
}

const wchar_t* nameStamp() {
    return processStamp;
}

bool equalIgnoringCase(const wchar_t* left, const wchar_t* right) {
    return CompareStringOrdinal(left, -1, right, -1, TRUE) == CSTR_EQUAL;
}

bool samePath(const wchar_t* left, const wchar_t* right) {
    while (*left && *right) {
        const bool same = *left == *right || equalIgnoringCase(*left, *right) ||
                          (isSeparator(*left) && isSeparator(*right));
        if (!same)
            return false;
        ++left;
        ++right;
    }
    const wchar_t* tail = *left ? left : right;
    return std::all_of(tail, tail + wcslen(tail), isSeparator);
}
