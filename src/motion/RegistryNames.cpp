#include "motion/RegistryNames.h"

#include "elements/Vocabulary.h"

bool rootFromName(const std::wstring& name, HKEY& root) {
    const RegistryKeyword* keyword = findKeyword(registryRootKeywords(), name);
    if (keyword == nullptr)
        return false;
    // The 32-bit number is sign-extended to the size of a handle.
    const intptr_t handle = static_cast<int32_t>(keyword->number);
    root = reinterpret_cast<HKEY>(handle);  // NOLINT(performance-no-int-to-ptr): that is all it is
    return true;
}

bool typeFromName(const std::wstring& name, uint32_t& type) {
    const RegistryKeyword* keyword = findKeyword(registryTypeKeywords(), name);
    if (keyword == nullptr)
        return false;
    type = keyword->number;
    return true;
}
