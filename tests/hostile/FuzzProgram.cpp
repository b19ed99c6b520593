// The fuzzer.
//
//     temz_fuzz CORPUS run FIRST COUNT    judges so many cases from the first on
//     temz_fuzz CORPUS judge FILE         judges one script
//     temz_fuzz CORPUS minimise FILE      cuts a finding down, as long as it is one, in its place
//
// Cases are judged in a process of their own, and whatever ends it is a finding: what a check has
// told to end it isn't run. The script stays in "finding-CASE.xml" in the current directory.

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <vector>

#include "hostile/GuardedAllocation.h"
#include "hostile/Judgement.h"
#include "hostile/ScriptFuzz.h"
#include "support/Text.h"

namespace fs = std::filesystem;

namespace {

constexpr DWORD found = 70;         // what a judge ends with that has found something
constexpr DWORD hung = 71;          // what is said of one that doesn't end
constexpr DWORD patience = 60'000;  // milliseconds for one case

/// What the judge is about to do, for whoever sees it end.
struct Progress {
    volatile LONG number;  ///< of the case
};

std::wstring number(uint32_t value) {
    return std::to_wstring(value);
}

std::vector<std::string> seedsIn(const fs::path& corpus) {
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(corpus))
        if (entry.path().extension() == L".xml")
            files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    std::vector<std::string> seeds;
    for (const fs::path& file : files)
        seeds.push_back(readFile(file.wstring()));
    return seeds;
}

[[noreturn]] void tell(const char* what, const Judgement& judgement) {
    std::fprintf(stderr, "%s\nmessage: %s\nfindings:\n%s", what, narrow(judgement.message).c_str(),
                 judgement.findings.c_str());
    ExitProcess(found);
}

/// Ends the process with `found` when the script does what none may.
void judge(const std::wstring& file, uint32_t seed) {
    std::deque<int32_t> answers;
    for (size_t count = seed % 5; count > 0; --count)
        answers.push_back(2);  // ignore it
    const Judgement judgement = judgeScript(file, Care::runUnlessFound, answers);
    checkReleasedBlocks();
    if (judgement.outcome == Judgement::notRun)
        return;
    if (!judgement.isRefusalKnown())
        tell("A check and the load don't agree.", judgement);
}

/// The judge's side of a run.
void judgeCases(const fs::path& corpus, Progress& progress, uint32_t first, uint32_t count) {
    const ScriptFuzz fuzz(seedsIn(corpus));
    const DeepDirectory directory;
    const TestFolder folder;
    for (uint32_t i = 0; i < count; ++i) {
        progress.number = static_cast<LONG>(first + i);
        const std::wstring file = folder.write(L"case.xml", fuzz.make(first + i));
        judge(file, first + i);
    }
}

/// Runs this program with these arguments; what it ended with.
DWORD resultOf(std::wstring arguments, HANDLE inherited, const Progress* progress) {
    wchar_t program[MAX_PATH];
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    std::wstring line = L"\"" + std::wstring(program) + L"\" " + arguments;
    STARTUPINFOW start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(program, line.data(), nullptr, nullptr, inherited != nullptr, 0, nullptr,
                        nullptr, &start, &process))
        return GetLastError();
    LONG last = -1;
    while (WaitForSingleObject(process.hProcess, patience) == WAIT_TIMEOUT) {
        if (progress == nullptr || progress->number == last) {
            TerminateProcess(process.hProcess, hung);
            WaitForSingleObject(process.hProcess, INFINITE);
            break;
        }
        last = progress->number;
    }
    DWORD result = 0;
    GetExitCodeProcess(process.hProcess, &result);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return result;
}

int runCases(const std::wstring& corpus, uint32_t first, uint32_t count) {
    SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
    const HANDLE mapping = CreateFileMappingW(INVALID_HANDLE_VALUE, &inheritable, PAGE_READWRITE, 0,
                                              sizeof(Progress), nullptr);
    auto* const progress =
        static_cast<Progress*>(MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 0, sizeof(Progress)));
    const ScriptFuzz fuzz(seedsIn(corpus));
    int findings = 0;
    for (uint32_t next = first, end = first + count; next < end;) {
        const DWORD result =
            resultOf(L"\"" + corpus + L"\" cases " + number(next) + L" " + number(end - next) +
                         L" " + number(static_cast<uint32_t>(reinterpret_cast<uintptr_t>(mapping))),
                     mapping, progress);
        if (result == 0)
            break;
        const auto at = static_cast<uint32_t>(progress->number);
        const std::wstring file = L"finding-" + number(at) + L".xml";
        writeFile(file, fuzz.make(at));
        std::printf("Case %u ends with %08lX: finding-%u.xml\n", at, result, at);
        ++findings;
        next = at + 1;
    }
    std::printf("%u cases from %u on, %d findings\n", count, first, findings);
    return findings == 0 ? 0 : 1;
}

int minimise(const std::wstring& corpus, const std::wstring& file) {
    const auto resultWith = [&](const std::string& script) {
        writeFile(L"candidate.xml", script);
        return resultOf(L"\"" + corpus + L"\" judge candidate.xml", nullptr, nullptr);
    };
    std::string script = readFile(file);
    const DWORD result = resultWith(script);
    if (result == 0) {
        std::puts("It is no finding.");
        return 1;
    }
    for (size_t length = script.size() / 2; length > 0; length /= 2)
        for (size_t at = 0; at < script.size();) {
            const std::string without = std::string(script).erase(at, length);
            if (resultWith(without) == result)
                writeFile(file, script = without);
            else
                at += length;
        }
    fs::remove(L"candidate.xml");
    std::printf("%zu bytes that end with %08lX\n", script.size(), result);
    return 0;
}

uint32_t numberIn(const wchar_t* text) {
    return static_cast<uint32_t>(std::wcstoul(text, nullptr, 10));
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    const std::vector<std::wstring> arguments(argv, argv + argc);
    if (argc == 5 && arguments[2] == L"run")
        return runCases(fs::absolute(argv[1]).wstring(), numberIn(argv[3]), numberIn(argv[4]));
    if (argc == 4 && arguments[2] == L"minimise")
        return minimise(argv[1], argv[3]);
    if (argc == 4 && arguments[2] == L"judge") {
        judge(argv[3], 0);
        return 0;
    }
    if (argc == 6 && arguments[2] == L"cases") {
        const auto mapping = reinterpret_cast<HANDLE>(static_cast<uintptr_t>(numberIn(argv[5])));
        judgeCases(
            argv[1],
            *static_cast<Progress*>(MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 0, sizeof(Progress))),
            numberIn(argv[3]), numberIn(argv[4]));
        return 0;
    }
    std::fputs("usage: temz_fuzz CORPUS run FIRST COUNT | judge FILE | minimise FILE\n", stderr);
    return 2;
}
