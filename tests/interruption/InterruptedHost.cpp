// A host that ends in the midst of its run, as at a power cut:
//
//     temz_interrupted_host SCRIPT MODE                      runs
//     temz_interrupted_host SCRIPT MODE list FILE            runs, and writes the moments
//     temz_interrupted_host SCRIPT MODE before|halfway CALL  ends at this of them
//
// A moment is one of the calls, counted from 1, by which the engine changes the machine: before it
// is made, or with half of the file written that it writes. The exit code is 0 when the run has
// succeeded, 1 when it couldn't begin, 100 and the code of what has failed, or endedAtMoment.

#include <windows.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <string_view>

#include "engine/CContext.h"
#include "interruption/Moment.h"
#include "logging/CSubject.h"
#include "system/CallTables.h"
#include "trace/CallEffect.h"

namespace {

/// The calls that write a file, whose second argument is its path.
using WritingCalls = CallList<&FileCalls::CopyFileW, &LinkCalls::Save>;

/// Leaves of a file what has reached the disk when the power fails while it is written.
void halve(const wchar_t* path) {
    const HANDLE file = CreateFileW(path, GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    SetFilePointer(file, static_cast<LONG>(GetFileSize(file, nullptr) / 2), nullptr, FILE_BEGIN);
    SetEndOfFile(file);
}

[[noreturn]] void cutPower() {
    TerminateProcess(GetCurrentProcess(), endedAtMoment);
    std::abort();
}

/// Stands around the calls, counts those that change the machine and cuts the power at one.
class Fuse {
public:
    Fuse(std::wstring_view place, size_t call) : place(place), blowsAt(call) {}
    /// Writes the moments instead, a line each.
    explicit Fuse(const wchar_t* listFile) : list(listFile) {}

    template <auto& table, auto member, class Result, class... Arguments>
    Result around(const char* name, Result (*real)(Arguments...),
                  std::type_identity_t<Arguments>... arguments) {
        if constexpr (isCall<member>(&ClockCalls::Sleep)) {
            // What is waited for takes no longer than a moment here.
            return real(std::min(arguments, DWORD{10})...);
        } else if constexpr (ChangingCalls::has<member>) {
            constexpr bool writes = WritingCalls::has<member>;
            ++calls;
            list << "before " << calls << " " << name << "\n";
            if constexpr (writes)
                list << "halfway " << calls << " " << name << "\n";
            if (calls == blowsAt) {
                if constexpr (writes)
                    if (place == L"halfway") {
                        real(arguments...);
                        halve(pathOf(arguments...));
                    }
                cutPower();
            }
            return real(arguments...);
        } else {
            return real(arguments...);
        }
    }

private:
    template <class First, class... Others>
    static const wchar_t* pathOf(First, const wchar_t* path, Others...) {
        return path;
    }

    std::wstring_view place;
    size_t blowsAt = 0;
    size_t calls = 0;
    std::ofstream list;
};

int run(const wchar_t* script, int32_t mode) {
    CContext context;
    if (!context.load(script))
        return EXIT_FAILURE;
    context.runMode = mode;
    if (context.getProduct()->run(&context) == 0)
        return EXIT_SUCCESS;
    return 100 + static_cast<int>(context.getProduct()->errorInfo.code);
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
    if (count != 3 && count != 5)
        return EXIT_FAILURE;
    const std::wstring_view what = count == 5 ? arguments[3] : L"";
    Fuse fuse = what == L"list" ? Fuse(arguments[4])
                                : Fuse(what, count == 5 ? wcstoul(arguments[4], nullptr, 10) : 0);
    const CallWrapper<Fuse> wrapper(fuse);
    return run(arguments[1], static_cast<int32_t>(wcstol(arguments[2], nullptr, 10)));
}
