#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "motion/CMotionElement.h"
#include "support/ScriptTest.h"

/// An element that does as it is told and counts what is asked of it.
class MotionProbe final : public CMotionElement {
public:
    MotionProbe(const wchar_t* elementName, const wchar_t* elementId, CContext& context)
        : CMotionElement(elementName, elementId, context, made) {}

    int32_t prepare(bool& descend, CContext& context) override {
        begunWith = descend;
        heardAtPrepare = heard(context);
        ++prepared;
        descend = descends;
        return prepareResult;
    }

    bool isChildAllowed(const wchar_t* childName) const override {
        return std::wstring_view(childName) != L"Illegal";
    }

    int32_t execute(CContext& context) override {
        heardAtExecute = heard(context);
        ++executed;
        if (onExecute)
            onExecute();
        if (results.empty())
            return 0;
        const int32_t result = results.front();
        results.pop_front();
        return result;
    }

    void loseNode() { node = {}; }

    bool descends = true;
    int32_t prepareResult = 0;
    std::deque<int32_t> results;  ///< of `execute`, one by one, then 0
    std::function<void()> onExecute;

    std::optional<bool> begunWith;  ///< what `prepare` found in `descend`
    int prepared = 0;
    int executed = 0;
    size_t heardAtPrepare = 0;
    size_t heardAtExecute = 0;

private:
    static constexpr AttributeDeclaration declared[] = {
        {L"On", false}, {L"Vital", false}, {L"Path", false}};
    static constexpr ElementKind made = {
        .name = L"Probe", .className = "MotionProbe", .declared = declared};

    static size_t heard(CContext& context) {
        const auto* observer = static_cast<RecordingObserver*>(context.getProduct()->observer);
        return observer ? observer->updates.size() : 0;
    }
};

/// What CMotionElement does by itself.
class PlainElement final : public CMotionElement {
public:
    using CMotionElement::CMotionElement;
    using CMotionElement::progressFrom;
    using CMotionElement::progressTo;
};

/// Runs an element whose class is the test's, among real ones.
class MotionElementTest : public ScriptTest {
protected:
    /// Makes the probe of `<Probe Id='P' attributes>children</Probe>`, which the observer hears.
    MotionProbe& makeProbe(std::string_view attributes, std::string_view children = {}) {
        context.unload();
        EXPECT_TRUE(loadProduct("<Probe Id='P' " + std::string(attributes) + ">" +
                                std::string(children) + "</Probe>"));
        context.runMode = RUNMODE_INSTALL;
        context.getProduct()->observer = &observer;
        probe.emplace(L"Probe", L"P", context);
        std::wstring message;
        EXPECT_TRUE(probe->readDeclaredAttributes(context, message));
        return *probe;
    }

    const ErrorInfo& errorInfo() { return context.getProduct()->errorInfo; }

    std::optional<MotionProbe> probe;
};

/// So many elements that only announce themselves.
inline std::string cautions(int count) {
    std::string children;
    for (int i = 0; i < count; ++i)
        children += "<Caution Title='c'/>";
    return children;
}
