#include "motion/CRegistryKeyMtElement.h"

#include <cwchar>

#include "engine/CContext.h"
#include "logging/CSubject.h"
#include "motion/RegistryNames.h"
#include "system/PathText.h"
#include "system/RegistryOperations.h"

static_assert(sizeof(CRegistryKeyMtElement) == sizeof(CMotionElement));

CRegistryKeyMtElement::CRegistryKeyMtElement(const XmlHandle& node, CContext& context)
    : CMotionElement(node, context, registryKeyKind) {
    requireActionKind();
}

bool CRegistryKeyMtElement::isCumulativeAttribute(const wchar_t* attributeName) const {
    return attributeName && wcscmp(attributeName, L"Key") == 0;
}

bool CRegistryKeyMtElement::combineWithParent(const std::wstring& parentValue,
                                              std::wstring& value) const {
    putInFront(value, parentValue);
    return true;
}

int32_t CRegistryKeyMtElement::prepare(bool& descend, CContext& context) {
    descend = false;
    std::wstring action;
    std::wstring key;
    std::wstring rootName;
    std::wstring title;
    if (!getAttributesText({&action, &key, &rootName, &title}, registryKeyKind.fetched, context))
        return -1;
    HKEY root = nullptr;
    if (!rootFromName(rootName, root))
        return fail(rootName + L" is unknown Registry KEY in the " + describe(), context);
    const ActionKeyword* keyword = findKeyword(registryKeyActionKeywords(), action);
    if (keyword == nullptr)
        return fail(action + L" is unknown Action in the " + describe(), context);
    const std::wstring path = rootName + L"\\" + key;
    announce(keyword->action, path, title, context);
    descend = keyword->action == ACTION_CREATE_REGISTRY_KEY ? createKey(root, key.c_str())
                                                            : deleteKeyTree(root, key.c_str());
    if (descend)
        return 0;
    context.subject().setErrorInfo(keyword->action, path, 0, title.c_str());
    return -1;
}
