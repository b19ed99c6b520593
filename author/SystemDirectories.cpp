#include "author/SystemDirectories.h"

#include <algorithm>
#include <cwctype>
#include <iterator>

namespace {

/// Another name of a folder. Each may begin with what those before it make.
struct Alias {
    std::wstring_view path;
    std::wstring_view word;
};

constexpr Alias aliases[] = {
    {L"c:\\program files", L"[programfilesfolder]"},
    {L"c:\\programdata\\microsoft\\windows\\start menu", L"[startmenufolder]"},
    {L"c:\\windows", L"[windowsfolder]"},
    {L"[startmenufolder]\\programs", L"[programmenufolder]"},
    {L"[windowsfolder]\\system32", L"[system32folder]"},
    {L"[windowsfolder]\\syswow64", L"[syswow64folder]"},
};

/// Those in which Windows or several products keep something; so is what stands above them.
constexpr std::wstring_view shared[] = {
    L"[programfilesfolder]\\common files",
    L"[programfilesfolder]\\internet explorer",
    L"[programfilesfolder]\\modifiablewindowsapps",
    L"[programfilesfolder]\\msbuild",
    L"[programfilesfolder]\\reference assemblies",
    L"[programfilesfolder]\\uninstall information",
    L"[programfilesfolder]\\windows defender",
    L"[programfilesfolder]\\windows defender advanced threat protection",
    L"[programfilesfolder]\\windows mail",
    L"[programfilesfolder]\\windows media player",
    L"[programfilesfolder]\\windows nt",
    L"[programfilesfolder]\\windows photo viewer",
    L"[programfilesfolder]\\windows portable devices",
    L"[programfilesfolder]\\windows security",
    L"[programfilesfolder]\\windows sidebar",
    L"[programfilesfolder]\\windowsapps",
    L"[programfilesfolder]\\windowspowershell",
    L"[programmenufolder]\\accessibility",
    L"[programmenufolder]\\accessories",
    L"[programmenufolder]\\administrative tools",
    L"[programmenufolder]\\maintenance",
    L"[programmenufolder]\\startup",
    L"[programmenufolder]\\system tools",
    L"[programmenufolder]\\windows powershell",
    L"[system32folder]\\drivers\\etc",
    L"[windowsfolder]\\fonts",
    L"[windowsfolder]\\inf",
    L"[windowsfolder]\\temp",
    L"c:\\program files (x86)\\common files",
    L"c:\\programdata\\microsoft\\windows",
    L"c:\\users\\default",
    L"c:\\users\\public\\desktop",
    L"c:\\users\\public\\documents",
};

bool isInOrIs(std::wstring_view path, std::wstring_view directory) {
    return path.starts_with(directory) &&
           (path.size() == directory.size() || path[directory.size()] == L'\\');
}

bool startsWithDrive(std::wstring_view path) {
    return path.size() > 1 && path[1] == L':' && std::iswalpha(path[0]);
}

/// The system may be on another drive than C.
std::wstring onDriveC(std::wstring path) {
    if (startsWithDrive(path))
        path[0] = L'c';
    return path;
}

}  // namespace

std::wstring withFolderWords(std::wstring path) {
    for (const auto& [alias, word] : aliases)
        if (isInOrIs(onDriveC(path), alias))
            path.replace(0, alias.size(), word);
    return path;
}

bool isSystemDirectory(std::wstring_view path) {
    const std::wstring directory = onDriveC(withFolderWords(std::wstring(path)));
    const bool isOutermost = directory.find(L'\\') == std::wstring::npos;
    if (isOutermost && (directory.starts_with(L'[') || startsWithDrive(directory)))
        return true;
    return !directory.empty() &&
           std::any_of(std::begin(shared), std::end(shared),
                       [&](std::wstring_view known) { return isInOrIs(known, directory); });
}
