#include "plan/EndedProcesses.h"

#include <tlhelp32.h>

#include "plan/OpenedFile.h"

namespace {

/// Calls `visit` with the path of each module of a process, as long as that gives true.
template <class Visitor>
void visitModules(DWORD process, Visitor&& visit) {
    const OpenedFile snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPMODULE, process));
    MODULEENTRY32W module{};
    module.dwSize = sizeof module;
    if (!snapshot)
        return;
    for (BOOL more = Module32FirstW(snapshot.get(), &module);
         more && visit(std::wstring(module.szExePath));
         more = Module32NextW(snapshot.get(), &module)) {
    }
}

bool hasLoaded(DWORD process, const std::wstring& path) {
    bool found = false;
    visitModules(process, [&](const std::wstring& module) {
        found = equalIgnoringCase(module, path);
        return !found;
    });
    return found;
}

}  // namespace

std::wstring EndedProcesses::add(DWORD id) {
    ids.insert(id);
    std::wstring program;
    visitModules(id, [&](const std::wstring& module) {
        if (program.empty())  // the first module
            program = module;
        modules.insert(module);
        return true;
    });
    return program;
}

bool EndedProcesses::haveReleased(const std::wstring& path) const {
    if (!modules.contains(path))
        return false;
    const OpenedFile snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    PROCESSENTRY32W process{};
    process.dwSize = sizeof process;
    if (!snapshot)
        return false;
    for (BOOL more = Process32FirstW(snapshot.get(), &process); more;
         more = Process32NextW(snapshot.get(), &process))
        if (!contain(process.th32ProcessID) && hasLoaded(process.th32ProcessID, path))
            return false;
    return true;
}
