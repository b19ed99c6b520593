#include "system/ShellLink.h"

#include <memory>
#include <string>

#include "system/FileOperations.h"
#include "system/LinkCalls.h"
#include "system/PathText.h"
#include "system/ShellCalls.h"
#include "system/TextFields.h"

namespace {

struct Releaser {
    void operator()(IUnknown* object) const { object->Release(); }
};
template <class Interface>
using ComPtr = std::unique_ptr<Interface, Releaser>;

/// The component library on the calling thread, for the length of a scope.
class ComScope {
public:
    ComScope() { static_cast<void>(shellCalls.CoInitialize(nullptr)); }
    ComScope(const ComScope&) = delete;
    ComScope& operator=(const ComScope&) = delete;
    ~ComScope() { shellCalls.CoUninitialize(); }
};

// SHCNF_FLUSHNOWAIT of the first shells; later headers add the bit of SHCNF_FLUSH to it.
constexpr UINT flushWithoutWait = 0x2000;

bool isGiven(const wchar_t* text) {
    return text && *text;
}

std::wstring directoryOf(const wchar_t* path) {
    std::wstring directory;
    directoryOfPath(path, directory);
    return directory;
}

/// A copy of the icon file that a later version of it doesn't change, or itself where that fails.
std::wstring copyOfIcon(const wchar_t* iconFile) {
    std::wstring copy;
    makeStampedName(iconFile, copy);
    return copyFileWithDelay(iconFile, copy.c_str(), false) == COPY_DONE ? copy : iconFile;
}

/// False when the link's objects can't be had; that the file can't be written is no failure.
bool writeLink(const wchar_t* linkPath, const wchar_t* target, const wchar_t* workingDirectory,
               const wchar_t* iconFile) {
    const ComScope com;
    void* created = nullptr;
    if (FAILED(shellCalls.CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER,
                                           IID_IShellLinkW, &created)))
        return false;
    ComPtr<IShellLinkW> link(static_cast<IShellLinkW*>(created));
    linkCalls.SetPath(link.get(), target);
    const std::wstring icon = isGiven(iconFile) ? copyOfIcon(iconFile) : target;
    linkCalls.SetIconLocation(link.get(), icon.c_str(), 0);
    const std::wstring directory =
        isGiven(workingDirectory) ? workingDirectory : directoryOf(target);
    linkCalls.SetWorkingDirectory(link.get(), directory.c_str());

    void* queried = nullptr;
    if (FAILED(link->QueryInterface(IID_IPersistFile, &queried))) {
        // Left unreleased.
        static_cast<void>(link.release());
        return false;
    }
    const ComPtr<IPersistFile> file(static_cast<IPersistFile*>(queried));
    wchar_t path[pathBufferLength];
    copyBounded(path, linkPath);
    linkCalls.Save(file.get(), path, TRUE);
    return true;
}

}  // namespace

int32_t createShellLink(const wchar_t* linkPath, const wchar_t* target,
                        const wchar_t* workingDirectory, const wchar_t* iconFile) {
    if (!writeLink(linkPath, target, workingDirectory, iconFile))
        return -1;
    notifyLinkChanged(linkPath);
    shellCalls.SHChangeNotify(SHCNE_ASSOCCHANGED, flushWithoutWait, nullptr, nullptr);
    return 0;
}

void notifyLinkChanged(const wchar_t* linkPath) {
    constexpr UINT flags = SHCNF_PATHW | SHCNF_FLUSH;
    shellCalls.SHChangeNotify(static_cast<LONG>(SHCNE_CREATE | SHCNE_INTERRUPT), flags, linkPath,
                              nullptr);
    shellCalls.SHChangeNotify(static_cast<LONG>(SHCNE_UPDATEDIR | SHCNE_INTERRUPT), flags,
                              directoryOf(linkPath).c_str(), nullptr);
}
