#include "plan/PlanSteps.h"

#include <algorithm>
#include <cwchar>
#include <exception>
#include <sstream>
#include <vector>

#include "engine/CContext.h"
#include "expression/Symbols.h"
#include "logging/CSubject.h"
#include "system/PathText.h"
#include "system/TextParsing.h"
#include "trace/CallText.h"

namespace {

const ElementKind* findKind(const wchar_t* name) {
    const auto kinds = motionKinds();
    const auto found = std::find_if(kinds.begin(), kinds.end(), [name](const ElementKind* kind) {
        return wcscmp(kind->name, name) == 0;
    });
    return found == kinds.end() ? nullptr : *found;
}

bool isOfKind(const CMotionElement& element, const ElementKind& kind) {
    return wcscmp(element.getName(), kind.name) == 0;
}

/// Whether an element does nothing but hold others.
bool onlyHolds(const CMotionElement& element) {
    const ElementKind* kind = findKind(element.getName());
    return kind && !kind->children.empty() && kind->actions.empty();
}

std::wstring textOfAttribute(const CMotionElement& element, const wchar_t* name) {
    AttributeRecord record;
    return element.getAttribute(name, record) ? record.value : std::wstring();
}

std::wstring valueOf(const CVariable& variable) {
    if (variable.type == VARIABLE_STRING)
        return L"\"" + variable.getString() + L"\"";
    try {
        return std::to_wstring(variable.getInt());
    } catch (const std::wstring&) {
        return L"no integer";
    }
}

/// The element that a reference stands for; null for all else.
XmlHandlePtr targetOf(const XmlHandle& node, CContext& context) {
    const WideText name = getElementName(&node);
    for (const ReferenceKind& reference : motionReferences())
        if (name && wcscmp(reference.name, name.get()) == 0) {
            const WideText id = getAttributeCopy(idAttribute, &node);
            return id ? context.findElementById(reference.target->name, id.get()) : nullptr;
        }
    return nullptr;
}

}  // namespace

class PlanSteps::VisitScope {
public:
    VisitScope(PlanSteps& steps, const CMotionElement& element)
        : steps(steps),
          visit{element, steps.innermost, steps.innermost ? steps.innermost->depth + 1 : 0} {
        steps.innermost = &visit;
    }
    VisitScope(const VisitScope&) = delete;
    VisitScope& operator=(const VisitScope&) = delete;
    ~VisitScope() { steps.innermost = visit.outer; }

private:
    PlanSteps& steps;

public:
    Visit visit;
};

class PlanSteps::AskingScope {
public:
    explicit AskingScope(bool& asking) : asking(asking) { asking = true; }
    AskingScope(const AskingScope&) = delete;
    AskingScope& operator=(const AskingScope&) = delete;
    ~AskingScope() { asking = false; }

private:
    bool& asking;
};

void PlanSteps::planned(const Change& change) {
    PlanStep step = stepOf(StepKind::change);
    step.change = change.kind;
    step.object = change.object;
    step.detail = change.source;
    step.before = change.before;
    step.after = change.after;
    step.bytes = change.bytes;
    step.bytesBefore = change.bytesBefore;
    hideNameStamp(step.object);
    hideNameStamp(step.detail);
    step.sameContent = change.sameContent;
    step.unforeseeable = change.unforeseeable;
    listener.step(step);
}

void PlanSteps::announced() {
    const ActionInfo& action = context.subject().actionInfo;
    PlanStep step = stepOf(StepKind::action);
    step.code = action.code;
    step.object = action.text1;
    step.detail = action.text2;
    listener.step(step);
}

void PlanSteps::failed() {
    tellFailure(FailureFate::vital);
}

void PlanSteps::ended() {
    if (!endTold)
        tellEnd(context.subject().errorInfo.message);
}

int32_t PlanSteps::visit(VisitCall real, CMotionElement& element, CContext&) {
    const VisitScope scope(*this, element);
    if (passes(element))
        return carryOut(real, element);
    tellLeftOutByMode();
    return real(element, context);
}

int32_t PlanSteps::carryOut(VisitCall real, CMotionElement& element) {
    tellArrival();
    int32_t result = 0;
    try {
        result = real(element, context);
    } catch (const std::wstring& message) {
        if (!endTold)
            tellEnd(message);
        throw;
    }
    if (innermost->notVital)
        tellFailure(FailureFate::notVital);
    else if (result != 0 && !endTold)
        tellFailure(FailureFate::endsRun);
    else if (result == 0 && !innermost->settled && isOfKind(element, fileSearchKind))
        tellSearch(false, {});
    return result;
}

bool PlanSteps::evaluate(EvaluateCall real, const wchar_t* expression, CContext&) {
    innermost->settled = true;
    const std::wstring before = variablesIn(expression);
    const bool holds = real(expression, context);
    if (isOfKind(innermost->element, conditionKind))
        tellCondition(expression, before, holds);
    else
        tellSearch(true, variablesIn(expression));
    return holds;
}

// A line is written where it goes out of scope, from which nothing may be thrown.
void PlanSteps::writeLine(LineCall real, CLogLine& line) {
    if (asking)
        return;
    try {
        if (innermost && line.composed().ends_with(notVitalMessage))
            innermost->notVital = true;
    } catch (const std::exception&) {
        // The failure is left out.
    }
    real(line);
}

PlanStep PlanSteps::stepOf(StepKind kind) const {
    PlanStep step;
    step.kind = kind;
    if (innermost == nullptr)
        return step;
    const CMotionElement& element = innermost->element;
    step.depth = innermost->outer ? innermost->depth - 1 : 0;
    step.line = getElementLine(element.getNode());
    step.element = element.getName();
    step.id = element.getId();
    return step;
}

void PlanSteps::tellArrival() {
    const CMotionElement& element = innermost->element;
    const bool toldElsewhere = isOfKind(element, installKind) || isOfKind(element, conditionKind) ||
                               isOfKind(element, fileSearchKind);
    if (!toldElsewhere)
        listener.step(stepOf(onlyHolds(element) ? StepKind::group : StepKind::element));
}

void PlanSteps::tellLeftOutByMode() {
    PlanStep step = stepOf(StepKind::leftOut);
    step.object = textOfAttribute(innermost->element, L"On");
    step.leftOut = countFrom(*innermost->element.getNode());
    listener.step(step);
}

void PlanSteps::tellCondition(const wchar_t* expression, const std::wstring& variables,
                              bool holds) {
    PlanStep step = stepOf(StepKind::condition);
    step.object = expression;
    step.detail = variables;
    step.holds = holds;
    if (!holds)
        step.leftOut = countBeneath(*innermost->element.getNode());
    listener.step(step);
}

void PlanSteps::tellSearch(bool found, const std::wstring& variables) {
    const CMotionElement& element = innermost->element;
    PlanStep step = stepOf(StepKind::search);
    step.object =
        withSeparator(textOfAttribute(element, pathAttribute)) + textOfAttribute(element, L"Name");
    step.detail = variables;
    step.after = textOfAttribute(element, L"MinVersion");
    step.holds = found;
    listener.step(step);
}

void PlanSteps::tellFailure(FailureFate fate) {
    const ErrorInfo& error = context.subject().errorInfo;
    PlanStep step = stepOf(StepKind::failure);
    step.fate = fate;
    step.code = error.code;
    step.object = error.text1;
    step.detail = error.text2;
    step.systemError = error.systemError;
    step.message = error.message;
    endTold = endTold || fate == FailureFate::endsRun;
    if (innermost)
        innermost->settled = true;
    listener.step(step);
}

void PlanSteps::tellEnd(const std::wstring& message) {
    PlanStep step = stepOf(StepKind::failure);
    step.fate = FailureFate::endsRun;
    step.code = ERROR_CODE_MESSAGE;
    step.message = message;
    endTold = true;
    listener.step(step);
}

bool PlanSteps::passes(const CMotionElement& element) {
    const AskingScope scope(asking);
    return element.passesOnFilter(context);
}

std::wstring PlanSteps::variablesIn(const wchar_t* expression) const {
    std::wstring rest = expression;
    std::wstring list;
    std::vector<const CVariable*> seen;
    for (const wchar_t* delimiter : delimiters)
        std::replace(rest.begin(), rest.end(), *delimiter, L' ');
    std::wistringstream words(rest);
    for (std::wstring word; words >> word;) {
        int32_t number = 0;
        const bool isName =
            getSymbolClass(word.c_str()) == SYMBOL_OPERAND && !parseIntText(word.c_str(), number);
        const CVariable* variable = isName ? context.findVariable(word.c_str()) : nullptr;
        if (variable == nullptr || std::find(seen.begin(), seen.end(), variable) != seen.end())
            continue;
        seen.push_back(variable);
        list += (list.empty() ? L"" : L", ") + word + L" = " + valueOf(*variable);
    }
    return list;
}

LeftOut PlanSteps::countFrom(const XmlHandle& node) {
    const XmlHandlePtr target = targetOf(node, context);
    const XmlHandle& element = target ? *target : node;
    const WideText name = getElementName(&element);
    LeftOut count = countBeneath(element);
    ++count.elements;
    count.files += name && wcscmp(name.get(), fileKind.name) == 0;
    return count;
}

// Counts each node once: definitions may refer to each other many times over, and in a circle.
LeftOut PlanSteps::countBeneath(const XmlHandle& node) {
    const auto [known, isNew] = counted.try_emplace(node.node);
    if (!isNew)
        return known->second;
    LeftOut count;
    for (XmlHandlePtr child = getFirstChildElement(&node); child;
         child = getNextSiblingElement(child.get())) {
        const LeftOut beneath = countFrom(*child);
        count.elements += beneath.elements;
        count.files += beneath.files;
    }
    return counted[node.node] = count;
}
