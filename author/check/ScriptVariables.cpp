#include "author/check/ScriptVariables.h"

#include <algorithm>

#include "author/check/ExpressionReading.h"
#include "author/check/TextPieces.h"
#include "engine/CContext.h"

namespace {

VariableType typeOf(std::wstring_view word) {
    const VariableTypeKeyword* keyword = findKeyword(variableTypeKeywords(), std::wstring(word));
    return keyword ? keyword->type : VARIABLE_UNKNOWN;
}

std::wstring_view valueOf(const ElementNode& element, std::wstring_view attributeName) {
    const AttributeNode* attribute = element.find(attributeName);
    return attribute ? std::wstring_view(attribute->value) : std::wstring_view();
}

}  // namespace

KnownText ScriptVariable::asText() const {
    return hasKnownValue() ? KnownText::of(value) : KnownText::ofChanging(value);
}

ScriptVariables::ScriptVariables(const ScriptModel& model) {
    for (const wchar_t* name : {osBitVariable, osMajorVersionVariable, osMinorVersionVariable}) {
        ScriptVariable variable;
        variable.name = name;
        variable.type = VARIABLE_INT;
        variable.isConst = variable.isBuiltIn = true;
        add(variable);
    }
    if (model.elements().empty())
        return;
    for (ElementNumber child = model[0].firstChild; child != noElement;
         child = model[child].nextSibling) {
        const ElementNode& element = model[child];
        if (!element.is(variableKind) && !element.is(variableConstKind))
            continue;
        ScriptVariable variable;
        variable.name = element.id();
        variable.type = typeOf(valueOf(element, L"Type"));
        variable.isConst = element.is(variableConstKind);
        variable.element = child;
        variable.value = valueOf(element, L"Value");
        if (variable.type != VARIABLE_UNKNOWN)
            add(variable);
    }
    findAssigned(model);
}

void ScriptVariables::add(ScriptVariable variable) {
    byName.try_emplace(variable.name, variables.size());
    allNames.push_back(variable.name);
    variables.push_back(std::move(variable));
}

const ScriptVariable* ScriptVariables::find(std::wstring_view name) const {
    const auto found = byName.find(std::wstring(name));
    return found == byName.end() ? nullptr : &variables[found->second];
}

std::wstring_view ScriptVariables::nameInFrontOf(std::wstring_view text) const {
    for (size_t length = text.size(); length-- > 1;)
        if (const ScriptVariable* variable = find(text.substr(0, length)))
            return variable->name;
    return {};
}

// All names of an expression that has a "=" in it count: what a "=" leads to isn't worked out here.
void ScriptVariables::findAssigned(const ScriptModel& model) {
    const auto markAssigned = [this](const std::wstring& name) {
        const auto found = byName.find(name);
        if (found != byName.end() && !variables[found->second].isConst)
            variables[found->second].assigned = true;
    };
    for (const ElementNode& element : model.elements()) {
        const AttributeNode* expression = element.find(L"Expression");
        if (!expression || expression->value.find(L'=') == std::wstring::npos)
            continue;
        for (const TextPiece& piece : piecesOf(expression->value)) {
            const ScriptVariable* inserted =
                piece.meaning == TextPiece::variable ? find(piece.text) : nullptr;
            const std::wstring& text = inserted ? inserted->value : piece.text;
            for (const ExpressionToken& token : tokensOf(text))
                markAssigned(token.text);
        }
    }
}
