#include "support/ShellLinkFile.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <shlobj.h>

#include <iterator>

namespace {

void read(IShellLinkW& link, ShellLinkFile& content) {
    wchar_t text[1024] = L"";
    const int capacity = static_cast<int>(std::size(text));
    EXPECT_TRUE(SUCCEEDED(link.GetPath(text, capacity, nullptr, SLGP_RAWPATH)));
    content.target = text;
    EXPECT_EQ(link.GetArguments(text, capacity), S_OK);
    content.arguments = text;
    EXPECT_EQ(link.GetDescription(text, capacity), S_OK);
    content.description = text;
    EXPECT_EQ(link.GetWorkingDirectory(text, capacity), S_OK);
    content.workingDirectory = text;
    EXPECT_EQ(link.GetIconLocation(text, capacity, &content.iconIndex), S_OK);
    content.icon = text;
}

}  // namespace

ShellLinkFile::ShellLinkFile(const std::wstring& path) {
    EXPECT_TRUE(SUCCEEDED(CoInitialize(nullptr)));
    void* created = nullptr;
    EXPECT_EQ(
        CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW, &created),
        S_OK);
    auto* const link = static_cast<IShellLinkW*>(created);
    void* queried = nullptr;
    EXPECT_EQ(link->QueryInterface(IID_IPersistFile, &queried), S_OK);
    auto* const file = static_cast<IPersistFile*>(queried);
    const HRESULT loaded = file->Load(path.c_str(), STGM_READ);
    EXPECT_EQ(loaded, S_OK) << "no link can be read there";
    if (loaded == S_OK)
        read(*link, *this);
    file->Release();
    link->Release();
    CoUninitialize();
}
