#include "plan/ShadowLinks.h"

HRESULT ShadowLinks::answer(Call<&LinkCalls::SetPath>, IShellLinkW* link, const wchar_t* target) {
    lastTarget = target;
    return system.SetPath(link, target);
}

HRESULT ShadowLinks::answer(Call<&LinkCalls::Save>, IPersistFile* /*file*/, const wchar_t* path,
                            BOOL /*remember*/) {
    if (const DWORD error = files.refusalToWrite(path, 0))
        return HRESULT_FROM_WIN32(error);
    const std::wstring link = fullPath(path);
    Change change{};
    change.kind = ChangeKind::linkWritten;
    change.object = link;
    change.source = lastTarget;
    change.before = files.textOf(files.look(link));
    listener.planned(change);
    SeenFile file;
    file.attributes = FILE_ATTRIBUTE_ARCHIVE;
    GetSystemTimeAsFileTime(&file.written);
    files.write(link, file);
    return S_OK;
}
