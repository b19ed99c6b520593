#pragma once

#include <windows.h>

#include <shlobj.h>

#include "system/CallTable.h"

namespace own {

inline HRESULT SetPath(IShellLinkW* link, const wchar_t* target) {
    return link->SetPath(target);
}
inline HRESULT SetIconLocation(IShellLinkW* link, const wchar_t* iconFile, int index) {
    return link->SetIconLocation(iconFile, index);
}
inline HRESULT SetWorkingDirectory(IShellLinkW* link, const wchar_t* directory) {
    return link->SetWorkingDirectory(directory);
}
inline HRESULT Save(IPersistFile* file, const wchar_t* path, BOOL remember) {
    return file->Save(path, remember);
}

}  // namespace own

/// The methods of the shell's link object by which a link is described and written.
#define TEMZ_LINK_CALLS(CALL) \
    CALL(SetPath)             \
    CALL(SetIconLocation)     \
    CALL(SetWorkingDirectory) \
    CALL(Save)
TEMZ_CALL_TABLE(LinkCalls, linkCalls, "link", TEMZ_LINK_CALLS, TEMZ_OWN_CALL)
