#include <unordered_set>

#include "author/check/Checks.h"
#include "author/check/ExpressionReading.h"
#include "expression/Symbols.h"
#include "system/TextParsing.h"

namespace {

void checkValue(const Checked& checked, const ElementNode& element,
                const ScriptVariable& variable) {
    const AttributeNode* value = element.find(L"Value");
    if (value == nullptr)
        return;
    int32_t number = 0;
    if (variable.type == VARIABLE_INT && parseIntText(value->value.c_str(), number) &&
        value->value.size() > 9 && (number == INT32_MAX || number == INT32_MIN) &&
        value->value != std::to_wstring(number))
        checked.report.tellOf(
            Fault::integerOutOfRange, value->valuePlace,
            inMarks(value->value) + L" counts as " + std::to_wstring(number) + L".");
    for (const TextPiece& piece : piecesOf(value->value)) {
        const bool isDirectory = piece.meaning == TextPiece::directory &&
                                 (isFolderWord(piece.text) ||
                                  checked.model.find(directoryKind, piece.text) != noElement);
        const bool isVariable =
            piece.meaning == TextPiece::variable && checked.variables.find(piece.text);
        if (isDirectory || isVariable)
            checked.report.tellOf(Fault::referenceStaysText,
                                  checked.model.spanIn(*value, piece.from, piece.length),
                                  inMarks(value->value.substr(piece.from, piece.length)) +
                                      L" isn't replaced in the Value of a variable.",
                                  L"write it where the value is used.");
    }
}

void checkType(const Checked& checked, const ElementNode& element) {
    const AttributeNode* type = element.find(L"Type");
    if (type == nullptr || findKeyword(variableTypeKeywords(), type->value))
        return;
    std::wstring help = didYouMean(checked.nearMiss.find(type->value, variableTypeKeywords()));
    if (help.empty())
        for (const VariableTypeKeyword& keyword : variableTypeKeywords())
            help.append(help.empty() ? L"use " : L" or ").append(inMarks(keyword.word));
    checked.report.tellOf(Fault::variableTypeUnknown, type->valuePlace,
                          inMarks(type->value) + L" is no type, so there is no variable " +
                              inMarks(element.id()) + L".",
                          help);
}

void checkName(const Checked& checked, const ElementNode& element, ElementNumber number) {
    const AttributeNode* id = element.find(idAttribute);
    if (id == nullptr || id->value.empty()) {
        checked.report.tellOf(Fault::variableHidden, element.place,
                              L"A variable without an Id can't be reached.", L"give it an Id.");
        return;
    }
    const ScriptVariable* found = checked.variables.find(id->value);
    if (found && found->element != number)
        checked.report.tellOf(
            Fault::variableHidden, id->valuePlace,
            found->isBuiltIn
                ? inMarks(id->value) + L" is a built-in variable, which hides this one."
                : inMarks(id->value) + L" is hidden by the variable before it.",
            L"give it a name of its own.");
}

/// All words by which texts and expressions could read a variable, whatever stands around them.
std::unordered_set<std::wstring> mentionedNames(const ScriptModel& model) {
    std::unordered_set<std::wstring> names;
    for (const ElementNode& element : model.elements())
        for (const AttributeNode& attribute : element.attributes) {
            for (const TextPiece& piece : piecesOf(attribute.value))
                names.insert(piece.text);
            if (attribute.name == L"Expression")
                for (const ExpressionToken& token : tokensOf(attribute.value))
                    names.insert(token.text);
        }
    return names;
}

}  // namespace

void checkVariables(const Checked& checked) {
    const ScriptModel& model = checked.model;
    // Where parts don't work, what they would have read is taken for read.
    const std::unordered_set<std::wstring> mentioned =
        checked.report.hasGaps() ? mentionedNames(model) : std::unordered_set<std::wstring>{};
    for (ElementNumber child = model.elements().empty() ? noElement : model[0].firstChild;
         child != noElement; child = model[child].nextSibling) {
        const ElementNode& element = model[child];
        if (!element.is(variableKind) && !element.is(variableConstKind))
            continue;
        ElementMaker::tellProblems(checked.maker.onDemand(child), true, false, checked.report);
        checkType(checked, element);
        checkName(checked, element, child);
        const ScriptVariable* variable = checked.variables.find(element.id());
        if (variable == nullptr || variable->element != child)
            continue;
        checkValue(checked, element, *variable);
        if (!variable->read && !mentioned.contains(variable->name))
            checked.report.tellOf(Fault::variableNeverRead, element.place,
                                  L"Nothing reads the variable " + inMarks(element.id()) + L".",
                                  L"remove it.");
    }
}
