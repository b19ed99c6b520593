#include "elements/CDirectoryElement.h"

#include <cwchar>

#include "system/PathText.h"
#include "system/ShellOperations.h"

CDirectoryElement::CDirectoryElement(const XmlHandle& node, CContext& context)
    : CElement(node, context, directoryKind) {}

CDirectoryElement::CDirectoryElement(const wchar_t* elementName, const wchar_t* id,
                                     CContext& context)
    : CElement(elementName, id, context, directoryKind) {}

bool CDirectoryElement::isCumulativeAttribute(const wchar_t* attributeName) const {
    return attributeName && wcscmp(attributeName, pathAttribute) == 0;
}

bool CDirectoryElement::combineWithParent(const std::wstring& parentValue,
                                          std::wstring& value) const {
    putInFront(value, parentValue);
    return true;
}

bool CDirectoryElement::getDefaultAttribute(AttributeRecord& record,
                                            const wchar_t* attributeName) const {
    std::wstring path;
    if (wcscmp(attributeName, pathAttribute) != 0 || !getSpecialFolder(id, path))
        return false;
    fillAttributeRecord(record, pathAttribute, path.c_str());
    return true;
}
