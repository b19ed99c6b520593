#include "LoadedScript.h"

#include <windows.h>

#include <functional>

#include "Findings.h"
#include "GivenText.h"
#include "Machine.h"
#include "ScriptFile.h"

namespace {

/// Puts the current directory back at the end of its life: other paths of the command are counted
/// from it, too.
class KeptDirectory {
public:
    KeptDirectory() : path(wholePath(L".")) {}
    KeptDirectory(const KeptDirectory&) = delete;
    KeptDirectory& operator=(const KeptDirectory&) = delete;
    ~KeptDirectory() { SetCurrentDirectoryW(path.c_str()); }

private:
    const std::wstring path;
};

}  // namespace

std::wstring modeWord(temz_mode mode) {
    constexpr const wchar_t* words[] = {L"install", L"uninstall", L"upgrade"};
    return words[mode];
}

LoadProblem findScriptProblem(const std::wstring& script,
                              const std::function<void(const std::wstring&)>& warn) {
    const std::wstring opening = findOpenProblem(script);
    if (!opening.empty())
        return {Ending::scriptNotOpened, script + L" can't be opened: " + opening};
    const std::wstring reading = findReadingProblem(script);
    if (!reading.empty())
        warn(script + L" may be misread: " + reading);
    return {};
}

LoadProblem findFatalProblem(const std::wstring& script, const wchar_t* refusal) {
    std::wstring faults;
    if (const temz_status status = findFatalFaults(script, faults); status != TEMZ_OK)
        return {Ending::failed, script + L" can't be checked: " + temz_status_text(status)};
    if (faults.empty())
        return {};
    return {Ending::scriptNotLoaded, script + refusal + L"\n" + faults};
}

ContextPtr loadScript(const std::wstring& script, LoadProblem& problem) {
    const KeptDirectory directory;
    const std::wstring path = findLoadablePath(wholePath(script));
    if (path.empty()) {
        problem = {Ending::scriptNotOpened,
                   script + L" can't be opened: its name isn't in the active code page."};
        return nullptr;
    }
    temz_context* made = nullptr;
    temz_status loaded = temz_create(&made);
    ContextPtr context(made);
    if (loaded == TEMZ_OK)
        loaded = temz_load(context.get(), path.c_str());
    if (loaded == TEMZ_OK)
        return context;
    std::wstring reason = temz_status_text(loaded);
    if (loaded == TEMZ_LOAD_FAILED) {
        reason = lastFailure(context.get());
        if (reason.empty())
            reason = L"It is no XML that the engine can read.";
    }
    problem = {loaded == TEMZ_LOAD_FAILED ? Ending::scriptNotLoaded : Ending::failed,
               script + L" can't be loaded: " + reason};
    return nullptr;
}

std::wstring lastFailure(temz_context* context) {
    std::wstring text;
    takeText(std::bind_front(temz_last_failure, context), text);
    return text;
}
