#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "support/FakeCall.h"
#include "support/FakeShellLink.h"
#include "system/ShellCalls.h"

/// A shell for the life of the object: it makes one link object, which writes nothing, and lists
/// the calls in their order.
class FakeLinkShell {
public:
    std::vector<std::wstring> calls;
    FakeShellLink link{calls};
    HRESULT initialized = S_OK;
    HRESULT created = S_OK;

private:
    static std::wstring textOf(LONG event, UINT flags, LPCVOID item) {
        wchar_t numbers[64];
        std::swprintf(numbers, std::size(numbers), L"SHChangeNotify %08lX %04X ",
                      static_cast<unsigned long>(event), flags);
        return numbers + (item ? std::wstring(static_cast<const wchar_t*>(item)) : L"null");
    }

    const FakeCall<shellCalls, &ShellCalls::CoInitialize> initialize{[this](void* reserved) {
        EXPECT_EQ(reserved, nullptr);
        calls.push_back(L"CoInitialize");
        return initialized;
    }};
    const FakeCall<shellCalls, &ShellCalls::CoUninitialize> uninitialize{
        [this] { calls.push_back(L"CoUninitialize"); }};
    const FakeCall<shellCalls, &ShellCalls::CoCreateInstance> create{
        [this](REFCLSID classId, IUnknown* outer, DWORD context, REFIID id, void** object) {
            EXPECT_TRUE(IsEqualCLSID(classId, CLSID_ShellLink));
            EXPECT_EQ(outer, nullptr);
            EXPECT_EQ(context, 1u);
            EXPECT_TRUE(IsEqualIID(id, IID_IShellLinkW));
            calls.push_back(L"CoCreateInstance");
            *object = SUCCEEDED(created) ? &link : nullptr;
            return created;
        }};
    const FakeCall<shellCalls, &ShellCalls::SHChangeNotify> notify{
        [this](LONG event, UINT flags, LPCVOID item, LPCVOID other) {
            EXPECT_EQ(other, nullptr);
            calls.push_back(textOf(event, flags, item));
        }};
};
