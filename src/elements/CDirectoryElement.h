#pragma once

#include "elements/CElement.h"

/// The script element `Directory`: gives an id to a place on the disk. It is never executed, but
/// made whenever a path is asked for. Its one attribute, `Path`, is the element's own text behind
/// the path of the enclosing `Directory`; without a text of its own it is the system's folder that
/// the id names, or else the enclosing directory's path.
class CDirectoryElement final : public CElement {
public:
    using CElement::CElement;

    bool isCumulativeAttribute(const wchar_t* attributeName) const override;
    bool combineWithParent(const std::wstring& parentValue, std::wstring& value) const override;
    void getAttributes(std::vector<AttributeDeclaration>& list) const override;
    void getDerivedAttributes(std::vector<AttributeDeclaration>& list) const override;
    bool getDefaultAttribute(AttributeRecord& record, const wchar_t* attributeName) const override;
};
