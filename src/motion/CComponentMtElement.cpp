#include "motion/CComponentMtElement.h"

static_assert(sizeof(CComponentMtElement) == sizeof(CMotionElement));

void CComponentMtElement::getAttributes(std::vector<AttributeDeclaration>& list) const {
    assignDeclarations(list, componentKind.declared);
}

void CComponentMtElement::getDerivedAttributes(std::vector<AttributeDeclaration>& list) const {
    assignDeclarations(list, componentKind.derived);
}

bool CComponentMtElement::isChildAllowed(const wchar_t* childName) const {
    return componentKind.allowsChild(childName);
}
