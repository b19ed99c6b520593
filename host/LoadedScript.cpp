#include "LoadedScript.h"

#include "Machine.h"
#include "ScriptFile.h"

std::wstring modeWord(temz_mode mode) {
    constexpr const wchar_t* words[] = {L"install", L"uninstall", L"upgrade"};
    return words[mode];
}

std::wstring findScript(const std::wstring& script,
                        const std::function<void(const std::wstring&)>& warn,
                        LoadProblem& problem) {
    const std::wstring opening = findOpenProblem(script);
    if (!opening.empty()) {
        problem = {Ending::scriptNotOpened, script + L" can't be opened: " + opening};
        return {};
    }
    const std::wstring reading = findReadingProblem(script);
    if (!reading.empty())
        warn(script + L" may be misread: " + reading);
    std::wstring path = findLoadablePath(wholePath(script));
    if (path.empty())
        problem = {Ending::scriptNotOpened,
                   script + L" can't be opened: its name isn't in the active code page."};
    return path;
}

ContextPtr loadScript(const std::wstring& script, const std::wstring& path, LoadProblem& problem) {
    temz_context* made = nullptr;
    temz_create(&made);
    ContextPtr context(made);
    const temz_status loaded = temz_load(context.get(), path.c_str());
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
    size_t length = 0;
    temz_last_failure(context, nullptr, 0, &length);
    std::wstring text(length, L'\0');
    if (temz_last_failure(context, text.data(), text.size(), &length) != TEMZ_OK)
        return {};
    text.resize(length - 1);
    return text;
}
