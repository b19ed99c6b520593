#include "elements/CDirectoryElement.h"

#include <cwchar>

#include "system/PathText.h"
#include "system/ShellOperations.h"

bool CDirectoryElement::isCumulativeAttribute(const wchar_t* attributeName) const {
    return attributeName && wcscmp(attributeName, pathAttribute) == 0;
}

bool CDirectoryElement::combineWithParent(const std::wstring& parentValue,
                                          std::wstring& value) const {
    value.insert(0, withSeparator(parentValue));
    return true;
}

void CDirectoryElement::getAttributes(std::vector<AttributeDeclaration>& list) const {
    assignDeclarations(list, directoryKind.declared);
}

void CDirectoryElement::getDerivedAttributes(std::vector<AttributeDeclaration>& list) const {
    assignDeclarations(list, directoryKind.derived);
}

bool CDirectoryElement::getDefaultAttribute(AttributeRecord& record,
                                            const wchar_t* attributeName) const {
    std::wstring path;
    if (wcscmp(attributeName, pathAttribute) != 0 || !getSpecialFolder(id, path))
        return false;
    fillAttributeRecord(record, pathAttribute, path.c_str());
    return true;
}
