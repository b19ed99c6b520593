#include "elements/CDirectoryElement.h"

#include <cwchar>

#include "system/PathText.h"
#include "system/ShellOperations.h"

bool CDirectoryElement::isCumulativeAttribute(const wchar_t* attributeName) const {
    return attributeName && wcscmp(attributeName, pathAttribute) == 0;
}

bool CDirectoryElement::combineWithParent(const std::wstring& parentValue,
                                          std::wstring& value) const {
    if (parentValue.empty())
        return true;
    const wchar_t* separator = isSeparator(parentValue.back()) ? L"" : L"\\";
    value = parentValue + separator + value;
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
