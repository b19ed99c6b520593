#include <algorithm>
#include <cwctype>

#include "author/verify/Picture.h"

namespace {

constexpr SystemsOwn rows[] = {
    {L"?:\\installlog\\temz.log", L"the engine's own log"},
    {L"?:\\pagefile.sys", L"memory"},
    {L"?:\\swapfile.sys", L"memory"},
    {L"?:\\system volume information", L"restore points and indexes"},
    {L"?:\\windows\\prefetch", L"how programs started"},
    {L"?:\\windows\\logs", L"logs"},
    {L"?:\\windows\\system32\\logfiles", L"logs"},
    {L"?:\\windows\\system32\\winevt", L"logs"},
    {L"?:\\windows\\system32\\sru", L"what programs used"},
    {L"?:\\windows\\system32\\config", L"the registry, which is looked at itself"},
    {L"?:\\windows\\serviceprofiles", L"what services of the system keep"},
    {L"?:\\programdata\\microsoft\\windows defender", L"the scanner's findings"},
    {L"hkey_local_machine\\hardware", L"made anew at each start"},
    {L"hkey_local_machine\\sam", L"accounts, changed by each logon"},
    {L"hkey_local_machine\\security", L"accounts, changed by each logon"},
    {L"hkey_local_machine\\system\\controlset00?",
     L"the same as CurrentControlSet, or one of another start"},
    {L"hkey_local_machine\\system\\currentcontrolset\\hardware profiles",
     L"made anew by Wine's desktop"},
    {L"hkey_local_machine\\system\\currentcontrolset\\control\\class",
     L"made anew by Wine's desktop"},
    {L"hkey_local_machine\\system\\currentcontrolset\\control\\deviceclasses",
     L"made anew by Wine's desktop"},
    {L"hkey_local_machine\\system\\currentcontrolset\\control\\servicecurrent",
     L"a counter of service processes"},
    {L"hkey_local_machine\\system\\currentcontrolset\\control\\video",
     L"made anew by Wine's desktop"},
    {L"hkey_local_machine\\system\\currentcontrolset\\control\\session manager: "
     L"pendingfilerenameoperations",
     L"what waits for a restart, which is looked at itself"},
    {L"hkey_local_machine\\system\\currentcontrolset\\services\\bam", L"what programs used"},
    {L"hkey_local_machine\\software\\microsoft\\windows nt\\currentversion\\schedule",
     L"the task scheduler's notes"},
    {L"hkey_local_machine\\software\\microsoft\\windows search", L"the index"},
    {L"hkey_current_user\\software\\classes\\local settings", L"names of programs that ran"},
    {L"hkey_current_user\\software\\microsoft\\windows\\currentversion\\explorer",
     L"what the user has opened"},
    {L"hkey_current_user\\software\\wine\\fonts", L"made anew by Wine for each code page"},
    {L"hkey_current_user\\software\\wine\\temporary system parameters",
     L"made anew by Wine's desktop"},
};

/// Whether the name is the row's, or that of something below it: a file in a directory, a value or
/// a key in a key.
bool isIn(const std::wstring& name, const std::wstring& row) {
    if (name.size() < row.size())
        return false;
    for (size_t i = 0; i < row.size(); ++i)
        if (row[i] != L'?' && std::towlower(name[i]) != static_cast<wint_t>(row[i]))
            return false;
    return name.size() == row.size() || name[row.size()] == L'\\' || name[row.size()] == L':';
}

}  // namespace

const SystemsOwn* findSystemsOwn(const std::wstring& name) {
    const auto* found = std::find_if(std::begin(rows), std::end(rows),
                                     [&](const SystemsOwn& row) { return isIn(name, row.name); });
    return found == std::end(rows) ? nullptr : found;
}
