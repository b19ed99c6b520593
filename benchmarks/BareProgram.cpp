// What a process costs that does nothing, or, given a source and a target, nothing but to copy.

#include <windows.h>

int wmain(int argc, wchar_t** argv) {
    return argc < 3 || CopyFileW(argv[1], argv[2], FALSE) ? 0 : 1;
}
