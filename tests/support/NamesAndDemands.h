#pragma once

#include <string>
#include <utility>
#include <vector>

#include "elements/CElement.h"

/// What an element declares, as names with whether it can't do without them.
inline std::vector<std::pair<std::wstring, bool>> namesAndDemands(
    const std::vector<AttributeDeclaration>& declarations) {
    std::vector<std::pair<std::wstring, bool>> list;
    for (const AttributeDeclaration& declaration : declarations)
        list.emplace_back(declaration.name, declaration.required);
    return list;
}
