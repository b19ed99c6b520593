#pragma once

#include "elements/CElement.h"

/// The script element `Directory`: gives an id to a place on the disk. It is never executed, but
/// made whenever a path is asked for. Its one attribute, `Path`, is the element's own text behind
/// the path of the enclosing `Directory`; without a text of its own it is the system's folder that
/// the id names, or else the enclosing directory's path.
class CDirectoryElement final : public CElement {
public:
    CDirectoryElement(const XmlHandle& node, CContext& context);
    CDirectoryElement(const wchar_t* elementName, const wchar_t* id, CContext& context);

    bool isCumulativeAttribute(const wchar_t* attributeName) const override;
    bool combineWithParent(const std::wstring& parentValue, std::wstring& value) const override;
    bool getDefaultAttribute(AttributeRecord& record, const wchar_t* attributeName) const override;
};
