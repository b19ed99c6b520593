#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <shlobj.h>

#include <string>
#include <vector>

/// A link object of the shell that lists the calls it gets, and does nothing else.
class FakeShellLink final : public IShellLinkW {
public:
    using Calls = std::vector<std::wstring>;

    explicit FakeShellLink(Calls& calls) : calls(calls) {}

    HRESULT set = S_OK;      ///< the result of each call that sets something
    HRESULT queried = S_OK;  ///< the result of the query for the file interface
    HRESULT saved = S_OK;    ///< the result of Save

    HRESULT WINAPI QueryInterface(REFIID id, void** object) override {
        EXPECT_TRUE(IsEqualIID(id, IID_IPersistFile));
        calls.push_back(L"QueryInterface");
        *object = SUCCEEDED(queried) ? &file : nullptr;
        return queried;
    }
    ULONG WINAPI AddRef() override { return list(L"AddRef of the link"), 2; }
    ULONG WINAPI Release() override { return list(L"Release of the link"), 0; }

    HRESULT WINAPI SetPath(LPCWSTR path) override { return list(L"SetPath ", path); }
    HRESULT WINAPI SetWorkingDirectory(LPCWSTR directory) override {
        return list(L"SetWorkingDirectory ", directory);
    }
    HRESULT WINAPI SetIconLocation(LPCWSTR path, int index) override {
        return list(L"SetIconLocation " + std::to_wstring(index) + L" ", path);
    }

    // Calls that nobody is to make.
    HRESULT WINAPI GetPath(LPWSTR, int, WIN32_FIND_DATAW*, DWORD) override { return strange(); }
    HRESULT WINAPI GetIDList(LPITEMIDLIST*) override { return strange(); }
    HRESULT WINAPI SetIDList(LPCITEMIDLIST) override { return strange(); }
    HRESULT WINAPI GetDescription(LPWSTR, int) override { return strange(); }
    HRESULT WINAPI SetDescription(LPCWSTR) override { return strange(); }
    HRESULT WINAPI GetWorkingDirectory(LPWSTR, int) override { return strange(); }
    HRESULT WINAPI GetArguments(LPWSTR, int) override { return strange(); }
    HRESULT WINAPI SetArguments(LPCWSTR) override { return strange(); }
    HRESULT WINAPI GetHotkey(WORD*) override { return strange(); }
    HRESULT WINAPI SetHotkey(WORD) override { return strange(); }
    HRESULT WINAPI GetShowCmd(int*) override { return strange(); }
    HRESULT WINAPI SetShowCmd(int) override { return strange(); }
    HRESULT WINAPI GetIconLocation(LPWSTR, int, int*) override { return strange(); }
    HRESULT WINAPI SetRelativePath(LPCWSTR, DWORD) override { return strange(); }
    HRESULT WINAPI Resolve(HWND, DWORD) override { return strange(); }

private:
    /// The same object as a file.
    class File final : public IPersistFile {
    public:
        explicit File(FakeShellLink& link) : link(link) {}

        HRESULT WINAPI QueryInterface(REFIID, void**) override { return strange(); }
        ULONG WINAPI AddRef() override { return link.list(L"AddRef of the file"), 2; }
        ULONG WINAPI Release() override { return link.list(L"Release of the file"), 1; }
        HRESULT WINAPI Save(LPCOLESTR path, BOOL remember) override {
            link.list(L"Save " + std::to_wstring(remember) + L" ", path);
            return link.saved;
        }
        HRESULT WINAPI GetClassID(CLSID*) override { return strange(); }
        HRESULT WINAPI IsDirty() override { return strange(); }
        HRESULT WINAPI Load(LPCOLESTR, DWORD) override { return strange(); }
        HRESULT WINAPI SaveCompleted(LPCOLESTR) override { return strange(); }
        HRESULT WINAPI GetCurFile(LPOLESTR*) override { return strange(); }

    private:
        FakeShellLink& link;
    };

    static HRESULT strange() {
        ADD_FAILURE() << "a call that has no place in the making of a link";
        return E_NOTIMPL;
    }

    HRESULT list(const std::wstring& call, const wchar_t* argument = L"") {
        calls.push_back(call + argument);
        return set;
    }

    Calls& calls;
    File file{*this};
};
