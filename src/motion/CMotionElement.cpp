#include "motion/CMotionElement.h"

#include <cwchar>

#include "elements/ElementFactory.h"
#include "engine/CContext.h"
#include "logging/CSubject.h"
#include "logging/IterfaceObserver.h"
#include "logging/Log.h"
#include "motion/WalkCalls.h"
#include "system/Exhaustion.h"
#include "system/TextFields.h"

int32_t CMotionElement::prepare(bool& descend, CContext&) {
    descend = true;
    return 0;
}

bool CMotionElement::isChildAllowed(const wchar_t* childName) const {
    return kind->allowsChild(childName);
}

int32_t CMotionElement::execute(CContext&) {
    return 0;
}

int32_t CMotionElement::runElement(CContext& context) {
    bool descend = false;
    if (!passesOnFilter(context))
        return 0;
    if (const int32_t failure = prepare(descend, context))
        return failure;
    if (!descend)
        return 0;
    if (const int32_t failure = runChildren(context))
        return failure;
    return runAction(context);
}

bool CMotionElement::passesOnFilter(CContext& context) const {
    const std::wstring* on = find(L"On");
    if (on == nullptr || on->empty())
        return true;
    if (const OnKeyword* keyword = findKeyword(onKeywords(), *on))
        return keyword->passesIn(context.runMode);
    writeLog(WARNNING, describe(), " ", *on, " attribute is unknown.");
    return false;
}

int32_t CMotionElement::runChildren(CContext& context) {
    const size_t count = countChildElements(&node);
    XmlHandle child = firstChildOf(node);
    for (size_t index = 0; child; child = nextSiblingOf(child), ++index)
        if (const int32_t failure = runChild(child, index, count, context))
            return failure;
    return 0;
}

int32_t CMotionElement::runChild(const XmlHandle& child, size_t index, size_t count,
                                 CContext& context) {
    const MotionElementPtr element = makeChild(child, context);
    if (!element)
        return -1;
    element->setProgressRange(progressAt(index, count), progressAt(index + 1, count));
    return walkCalls.VisitElement(*element, context);
}

// Apart from the visit, on whose stack the whole walk below stands.
MotionElementPtr CMotionElement::makeChild(const XmlHandle& child, CContext& context) {
    const PassingText childName(elementNameOf(child));
    if (!childName || childName.get()[0] == L'\0') {
        fail(describe() + L" can't get child element name.", context);
        return nullptr;
    }
    if (!isChildAllowed(childName.get())) {
        fail(describe() + L" has a illegal child element(" + childName.get() + L")", context);
        return nullptr;
    }
    MotionElementPtr element = CreateMotionElement(&child, context, this);
    if (!element)
        fail(getLastCreateError() + describe() + L" cann't create child element(" +
                 childName.get() + L")",
             context);
    return element;
}

// In single precision and in this order: hosts see the rounding.
uint32_t CMotionElement::progressAt(size_t index, size_t count) const {
    const auto range = static_cast<float>(static_cast<int32_t>(progressTo - progressFrom));
    const float part = static_cast<float>(index) / static_cast<float>(count);
    return progressFrom + static_cast<uint32_t>(static_cast<int32_t>(part * range));
}

int32_t CMotionElement::runAction(CContext& context) {
    for (bool retried = false;;) {
        const int32_t code = execute(context);
        if (code == 0)
            return 0;
        int32_t answer = ANSWER_IGNORE;
        if (isVital(context))
            answer = context.subject().askObserver(&context.subject().errorInfo);
        else
            writeLog(WARNNING, notVitalMessage);

        if (answer == ANSWER_IGNORE)
            return 0;
        if (answer == ANSWER_RETRY)
            retried = true;
        else if (answer == ANSWER_ABORT || !retried)
            return code;
    }
}

bool CMotionElement::isVital(CContext&) const {
    const std::wstring* vital = find(L"Vital");
    return vital == nullptr || *vital == yesKeyword;
}

void CMotionElement::setProgressRange(uint32_t from, uint32_t to) {
    progressFrom = from;
    progressTo = to;
}

void CMotionElement::announce(ActionCode action, const std::wstring& text1,
                              const std::wstring& text2, CContext& context) const {
    ActionInfo info{};
    info.code = action;
    copyBounded(info.text1, text1.c_str());
    copyBounded(info.text2, text2.c_str());
    context.subject().setActionInfo(info, progressFrom);
}

int32_t CMotionElement::fail(const std::wstring& message, CContext& context) {
    context.subject().setErrorText(message);
    return -1;
}

int32_t CMotionElement::failExhausted(CContext& context) {
    context.subject().setErrorInfo(ERROR_CODE_MESSAGE, {}, 0, nullptr, insufficientMemory);
    return -1;
}

void CMotionElement::requireActionKind() const {
    if (wcscmp(name, kind->name) != 0)
        throw L"Failed to create element " + describe();
}

void CMotionElement::requireContainerKind() const {
    if (wcscmp(name, kind->name) != 0)
        throw std::wstring(L"Failed to create element(") + name + L")" + L" in " + kind->name;
}
