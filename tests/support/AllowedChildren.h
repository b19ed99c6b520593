#pragma once

#include <string>
#include <vector>

#include "motion/CMotionElement.h"

/// Which names an element accepts for its children, out of all names of the script language and of
/// some that only come near one.
inline std::vector<std::wstring> allowedChildren(const CMotionElement& element) {
    std::vector<std::wstring> allowed;
    for (const wchar_t* name : {L"Caution",
                                L"Component",
                                L"ComponentRef",
                                L"Condition",
                                L"CopyFile",
                                L"CustomAction",
                                L"Directory",
                                L"DirectoryRef",
                                L"Feature",
                                L"FeatureRef",
                                L"File",
                                L"FileSearch",
                                L"Fragment",
                                L"FragmentRef",
                                L"Product",
                                L"InstallExecuteSequence",
                                L"RegistryKey",
                                L"RegistryValue",
                                L"ServiceControl",
                                L"ShellExcute",
                                L"Shortcut",
                                L"RemoveDirectory",
                                L"Variable",
                                L"VariableConst",
                                L"",
                                L"Cautio",
                                L"Cautions",
                                L"caution",
                                L"FILE",
                                L"feature",
                                L"Featur",
                                L"Fragments",
                                L"ShellExecute",
                                L"condition",
                                L"component",
                                L"Components"})
        if (element.isChildAllowed(name))
            allowed.push_back(name);
    return allowed;
}
