#include "PlanTree.h"

#include <optional>
#include <utility>

#include "Diagnosis.h"
#include "PlanWords.h"

namespace {

class TreeBuilder {
public:
    std::vector<PlanLine> build(const Plan& plan) {
        for (const Step& step : plan.steps)
            add(step);
        leaveAction();
        return std::move(lines);
    }

private:
    void add(const Step& step) {
        switch (step.kind) {
            case TEMZ_STEP_GROUP:
                leaveAction();
                put(step, L' ', L"group", nameOf(step), L"");
                break;
            case TEMZ_STEP_CONDITION:
                leaveAction();
                put(step, L' ', L"condition", step.element + L" " + step.object,
                    decisionText(step));
                break;
            case TEMZ_STEP_SEARCH:
                leaveAction();
                put(step, L' ', L"condition", step.element + L" " + step.object, searchText(step));
                break;
            case TEMZ_STEP_ELEMENT:
                leaveAction();
                break;
            case TEMZ_STEP_ACTION:
                if (step.code != TEMZ_ACTION_CONDITION && !acted)
                    idle = step;
                break;
            case TEMZ_STEP_CHANGE:
                settle();
                addChange(step);
                break;
            case TEMZ_STEP_FAILURE:
                settle();
                put(step, L'x', L"failure", failureLine(step), L"");
                break;
            case TEMZ_STEP_LEFT_OUT:
                leaveAction();
                put(step, L' ', L"left-out", nameOf(step),
                    L"only at " + step.object + L", " + leftOutText(step));
                break;
            default:
                break;
        }
    }

    static std::wstring nameOf(const Step& step) {
        return step.id.empty() ? step.element : step.element + L" " + step.id;
    }

    void addChange(const Step& step) {
        const ChangeWords& words = wordsOf(step);
        std::wstring object = step.object;
        const bool runs = step.code == TEMZ_CHANGE_PROGRAM_STARTED && !step.detail.empty();
        if (runs)
            object += L" " + step.detail;
        put(step, symbolOf(step), words.area, object, effectText(step));
    }

    void put(const Step& step, wchar_t symbol, const wchar_t* area, std::wstring object,
             std::wstring effect) {
        lines.push_back(
            {step.depth, step.line, symbol, area, std::move(object), std::move(effect)});
    }

    /// Something has come of the element that is under way.
    void settle() {
        idle.reset();
        acted = true;
    }

    void leaveAction() {
        acted = false;
        if (!idle)
            return;
        const Step step = *std::exchange(idle, std::nullopt);
        const bool isCaution = step.code == TEMZ_ACTION_CAUTION;
        put(step, L' ', isCaution ? L"caution" : L"idle",
            describeAction(step.code, step.object, step.detail),
            isCaution ? L"" : L"nothing to do");
    }

    std::vector<PlanLine> lines;
    std::optional<Step> idle;  // an action of which nothing has come so far
    bool acted = false;
};

}  // namespace

std::vector<PlanLine> linesOf(const Plan& plan) {
    return TreeBuilder().build(plan);
}
