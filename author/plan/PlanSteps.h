#pragma once

#include <windows.h>

#include <cstdint>
#include <map>
#include <string>
#include <type_traits>

#include "plan/Change.h"
#include "trace/CallFailure.h"

enum class StepKind {
    group,      ///< an element is reached that only holds others
    element,    ///< an element is reached that acts; what it does follows
    condition,  ///< a Condition has been decided
    search,     ///< a FileSearch has been made
    action,     ///< an action is announced
    change,     ///< something would change
    failure,    ///< something would fail
    leftOut,    ///< an element is left out in this mode, by its `On`
};

/// What a failure means for a run.
enum class FailureFate {
    vital,     ///< the host is asked, and the run ends unless it is told to go on; the plan goes on
    notVital,  ///< the run goes on
    endsRun,   ///< the run ends unasked, and so does the plan
};

/// Of what is left out: how many elements, and how many of them are a File.
struct LeftOut {
    uint32_t elements = 0;
    uint32_t files = 0;
};

/// One line of a plan. Which of the fields have a meaning depends on the kind.
struct PlanStep {
    StepKind kind{};
    // Of the element in which it happens.
    uint32_t depth = 0;  ///< 0 directly in the sequence
    uint32_t line = 0;   ///< of the script, from 1
    std::wstring element;
    std::wstring id;

    std::wstring object;   ///< the expression; the file that is looked for; the first text of an
                           ///< action or failure; what is changed; the `On`
    std::wstring detail;   ///< the variables of the expression with their values, those of a
                           ///< condition before and those of a search behind it; the second text
                           ///< of an action or failure; where a change has its content from
    std::wstring before;   ///< of a change
    std::wstring after;    ///< of a change; the version that a file which is looked for must have
    std::wstring message;  ///< of a failure
    uint64_t bytes = 0;    ///< of a change
    uint64_t bytesBefore = 0;
    uint32_t code = 0;         ///< of an action or failure
    uint32_t systemError = 0;  ///< of a failure
    bool holds = false;        ///< the condition is true, or the file found
    bool sameContent = false;
    bool unforeseeable = false;
    FailureFate fate{};
    ChangeKind change{};
    LeftOut leftOut;  ///< by a condition that is false, or by `On`
};

class StepListener {
public:
    virtual void step(const PlanStep& step) = 0;
    /// Whether it looks at the steps at all.
    virtual bool wantsSteps() const { return true; }

protected:
    ~StepListener() = default;
};

/// Follows a run that changes nothing, and tells it as the steps of a plan. For a CallWrapper, of
/// which it must be the last, so that nothing of what it asks is seen by the others.
class PlanSteps final : public ChangeListener {
public:
    PlanSteps(CContext& context, StepListener& listener) : context(context), listener(listener) {}
    PlanSteps(const PlanSteps&) = delete;
    PlanSteps& operator=(const PlanSteps&) = delete;

    void planned(const Change& change) override;
    bool wantsContents() const override { return listener.wantsSteps(); }
    /// The product's last action has been announced.
    void announced();
    /// A vital action has failed, as the product's record tells.
    void failed();
    /// The run has failed and has ended by that. Tells it where no element has told it yet.
    void ended();

    template <auto& table, auto member, class Result, class... Arguments>
    Result around(const char* /*name*/, Result (*real)(Arguments...),
                  std::type_identity_t<Arguments>... arguments) {
        if constexpr (isCall<member>(&WalkCalls::VisitElement))
            return visit(real, arguments...);
        else if constexpr (isCall<member>(&WalkCalls::Evaluate))
            return evaluate(real, arguments...);
        else if constexpr (isCall<member>(&LogCalls::WriteLine))
            return writeLine(real, arguments...);
        else
            return real(arguments...);
    }

private:
    using VisitCall = decltype(WalkCalls::VisitElement);
    using EvaluateCall = decltype(WalkCalls::Evaluate);
    using LineCall = decltype(LogCalls::WriteLine);

    /// An element whose visit goes on.
    struct Visit {
        const CMotionElement& element;
        Visit* outer;
        uint32_t depth;
        bool settled = false;   // what has become of it is told
        bool notVital = false;  // its action has failed, and that doesn't matter
    };
    class VisitScope;
    class AskingScope;

    int32_t visit(VisitCall real, CMotionElement& element, CContext& context);
    int32_t carryOut(VisitCall real, CMotionElement& element);
    bool evaluate(EvaluateCall real, const wchar_t* expression, CContext& context);
    void writeLine(LineCall real, CLogLine& line);

    PlanStep stepOf(StepKind kind) const;
    void tellArrival();
    void tellLeftOutByMode();
    void tellCondition(const wchar_t* expression, const std::wstring& variables, bool holds);
    void tellSearch(bool found, const std::wstring& variables);
    void tellFailure(FailureFate fate);
    void tellEnd(const std::wstring& message);

    bool passes(const CMotionElement& element);
    std::wstring variablesIn(const wchar_t* expression) const;
    LeftOut countFrom(const XmlHandle& node);
    LeftOut countBeneath(const XmlHandle& node);

    CContext& context;
    StepListener& listener;
    Visit* innermost = nullptr;
    bool asking = false;   // what the engine says now is no part of the run
    bool endTold = false;  // why the run has ended
    std::map<const TiXmlNode*, LeftOut> counted;
};
