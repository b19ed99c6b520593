#include "motion/CRegistryValueMtElement.h"

#include "engine/CContext.h"
#include "logging/CSubject.h"
#include "motion/RegistryNames.h"
#include "system/RegistryOperations.h"
#include "system/TextParsing.h"

static_assert(sizeof(CRegistryValueMtElement) == sizeof(CMotionElement));

namespace {

/// Writes a text without a terminator. The system would add one that it found right behind the
/// text, so another character stands there.
bool setTextValue(HKEY root, const wchar_t* key, const wchar_t* name, uint32_t type,
                  const std::wstring& text) {
    const std::wstring guarded = text + L'.';
    return setValue(root, key, name, type, guarded.c_str(),
                    static_cast<uint32_t>(text.size() * sizeof(wchar_t)));
}

}  // namespace

CRegistryValueMtElement::CRegistryValueMtElement(const XmlHandle& node, CContext& context)
    : CMotionElement(node, context, registryValueKind) {
    requireActionKind();
}

int32_t CRegistryValueMtElement::execute(CContext& context) {
    std::wstring name;
    std::wstring typeName;
    std::wstring text;
    std::wstring key;
    std::wstring rootName;
    if (!getAttributesText({&name, &typeName, &text, &key, &rootName}, registryValueKind.fetched,
                           context))
        return -1;
    HKEY root = nullptr;
    if (!rootFromName(rootName, root))
        return fail(rootName + L" is unknown Registry KEY in the " + describe(), context);
    uint32_t type = 0;
    if (!typeFromName(typeName, type))
        return fail(typeName + L" is unknown Registry TYPE in the " + describe(), context);
    const std::wstring display = rootName + L"\\" + key + L"[Value Name]" + name;
    announce(ACTION_REGISTRY_VALUE, display, L"", context);

    bool written = false;
    if (type == REG_DWORD) {
        int32_t number = 0;
        if (!parseIntText(text.c_str(), number))
            return fail(text + L" isn't DWORD text in the " + describe(), context);
        written = setValue(root, key.c_str(), name.c_str(), type, &number, sizeof number);
    } else {
        written = setTextValue(root, key.c_str(), name.c_str(), type, text);
    }
    if (written)
        return 0;
    context.subject().setErrorInfo(ACTION_REGISTRY_VALUE, display, 0);
    return -1;
}
