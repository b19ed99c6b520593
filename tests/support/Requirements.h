#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <string>

// What a test needs of the machine. Where that isn't there, the test is skipped and says why; a
// requirement stands in the test itself or in the SetUp of its fixture.

/// Whether this is Wine. With TEMZ_TESTS_WITHOUT_WINE in the environment it looks as if it weren't,
/// which shows what is left of the tests elsewhere.
bool runsUnderWine();

/// Whether this is Windows itself, whatever TEMZ_TESTS_WITHOUT_WINE makes it look like.
bool runsUnderWindows();

/// Whether the active code page is one of these.
bool isActiveCodePage(std::initializer_list<unsigned> codePages);

/// Whether Windows gives a program the code page that its manifest asks for: from 10 1903 on.
bool heedsManifestCodePage();

/// Whether the user may write over a read-only file. Only Wine's superuser may: Windows lets
/// nobody.
bool overwritesReadOnlyFiles();

/// Whether a read-only file can be opened to change its attributes, as whoever may change them can
/// on Windows. Wine lets only its superuser open it, though it lets all change them.
bool opensReadOnlyFilesForAttributes();

/// Whether files may have holes that take no room: not on FAT, nor on every network drive.
bool keepsHolesInFiles();

/// Makes a file of a size that takes no room, where files may have holes.
void makeHole(const std::wstring& path, uint64_t bytes);

/// For tests that change the machine, ask the user something, or need elevation, on Windows.
#define REQUIRES_WINE(reason) \
    if (runsUnderWine()) {    \
    } else                    \
        GTEST_SKIP() << "Needs Wine: " << reason

/// For tests of what Windows answers and Wine doesn't.
#define REQUIRES_WINDOWS(reason) \
    if (runsUnderWindows()) {    \
    } else                       \
        GTEST_SKIP() << "Needs Windows: " << reason

/// For tests whose texts are written for certain code pages.
#define REQUIRES_CODE_PAGE(...)            \
    if (isActiveCodePage({__VA_ARGS__})) { \
    } else                                 \
        GTEST_SKIP() << "Needs one of the code pages " #__VA_ARGS__

/// For tests of programs whose manifest asks for UTF-8.
#define REQUIRES_MANIFEST_CODE_PAGE() \
    if (heedsManifestCodePage()) {    \
    } else                            \
        GTEST_SKIP() << "Needs Windows 10 1903 or later, or Wine"

/// For tests that foresee whether a file's attributes can be changed.
#define REQUIRES_OPENED_ATTRIBUTES()         \
    if (opensReadOnlyFilesForAttributes()) { \
    } else                                   \
        GTEST_SKIP() << "Needs Windows, or Wine's superuser: another can't open a read-only file"

/// For tests of files that are larger than the drive.
#define REQUIRES_HOLES_IN_FILES() \
    if (keepsHolesInFiles()) {    \
    } else                        \
        GTEST_SKIP() << "Needs a drive with sparse files for its temporary folder"

/// For tests of what an ordinary user may not do.
#define REQUIRES_ORDINARY_USER()      \
    if (!overwritesReadOnlyFiles()) { \
    } else                            \
        GTEST_SKIP() << "Needs an ordinary user: this one may write over read-only files"
