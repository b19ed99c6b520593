#include "motion/CInstallMtElement.h"

#include <cwchar>

static_assert(sizeof(CInstallMtElement) == sizeof(CMotionElement));

CInstallMtElement::CInstallMtElement(const XmlHandle& node, CContext& context)
    : CMotionElement(node, context, installKind) {
    if (wcscmp(name, installKind.name) != 0)
        throw std::wstring(L"Create element error:") + name + L" element is not " +
            installKind.name;
}
