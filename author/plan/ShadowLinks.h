#pragma once

#include <string>

#include "plan/AnsweredCall.h"
#include "plan/Change.h"
#include "plan/ShadowFiles.h"
#include "system/LinkCalls.h"

/// The shell's links: the object is described really, and its file isn't written.
class ShadowLinks {
public:
    ShadowLinks(ShadowFiles& files, ChangeListener& listener) : files(files), listener(listener) {}

    HRESULT answer(Call<&LinkCalls::SetPath>, IShellLinkW* link, const wchar_t* target);
    HRESULT answer(Call<&LinkCalls::Save>, IPersistFile* file, const wchar_t* path, BOOL remember);

private:
    const LinkCalls system = linkCalls;
    ShadowFiles& files;
    ChangeListener& listener;
    std::wstring lastTarget;
};
