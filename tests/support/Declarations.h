#pragma once

#include <string>
#include <utility>
#include <vector>

#include "elements/CElement.h"

/// Names of attributes, each with whether an element demands it.
using NamesAndDemands = std::vector<std::pair<std::wstring, bool>>;

inline NamesAndDemands namesAndDemands(const std::vector<AttributeDeclaration>& declarations) {
    NamesAndDemands list;
    for (const AttributeDeclaration& declaration : declarations)
        list.emplace_back(declaration.name, declaration.required);
    return list;
}

/// What an element reads from its own XML, in order.
inline NamesAndDemands declaredBy(const CElement& element) {
    std::vector<AttributeDeclaration> declarations(1);
    element.getAttributes(declarations);
    return namesAndDemands(declarations);
}

/// What an element takes from its parent, in order.
inline NamesAndDemands derivedBy(const CElement& element) {
    std::vector<AttributeDeclaration> declarations(1);
    element.getDerivedAttributes(declarations);
    return namesAndDemands(declarations);
}
