#include "author/SystemDirectories.h"

#include <gtest/gtest.h>

#include "support/Text.h"

TEST(SystemDirectories, StandAsTheirFolderWords) {
    const struct {
        const wchar_t* path;
        const wchar_t* words;
    } paths[] = {
        {L"c:\\program files\\x", L"[programfilesfolder]\\x"},
        {L"d:\\windows\\system32\\x", L"[system32folder]\\x"},
        {L"[windowsfolder]\\system32", L"[system32folder]"},
        {L"c:\\windows", L"[windowsfolder]"},
        {L"c:\\programdata\\microsoft\\windows\\start menu\\programs\\x",
         L"[programmenufolder]\\x"},
        {L"c:\\windows2\\x", L"c:\\windows2\\x"},
        {L"D:\\x", L"D:\\x"},
        {L"data", L"data"},
        {L"1:\\windows", L"1:\\windows"},
    };
    for (const auto& [path, words] : paths)
        EXPECT_EQ(withFolderWords(path), words) << narrow(path);
}

TEST(SystemDirectories, AreThoseThatNoProductHasToItself) {
    for (const wchar_t* path :
         {L"[programfilesfolder]", L"[programfilesfolder]\\common files", L"c:", L"d:\\windows",
          L"c:\\windows\\system32", L"c:\\windows\\system32\\drivers", L"c:\\program files",
          L"c:\\program files (x86)", L"c:\\users", L"c:\\users\\public", L"c:\\programdata",
          L"c:\\program files\\windows nt", L"[programmenufolder]\\startup"})
        EXPECT_TRUE(isSystemDirectory(path)) << narrow(path);
    for (const wchar_t* path :
         {L"[programfilesfolder]\\common files\\x", L"[programfilesfolder]\\common", L"data", L"",
          L"c:\\users\\x", L"c:\\programdata\\x", L"c:\\windows.old", L"common files"})
        EXPECT_FALSE(isSystemDirectory(path)) << narrow(path);
}
