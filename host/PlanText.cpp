#include "PlanText.h"

#include "Diagnosis.h"
#include "PlanTree.h"
#include "PlanWords.h"

namespace {

constexpr size_t effectColumn = 54;

std::wstring lineText(const PlanLine& line, bool inColour) {
    std::wstring text(2 * (size_t{line.depth} + 1), L' ');
    if (line.symbol != L' ')
        text += std::wstring(1, line.symbol) + L" ";
    text += line.object;
    if (!line.effect.empty()) {
        text += text.size() + 1 < effectColumn ? std::wstring(effectColumn - text.size(), L' ')
                                               : std::wstring(L"  ");
        text += line.effect;
    }
    for (wchar_t& unit : text)
        if (unit < L' ')
            unit = L' ';
    const SignWords* sign = inColour ? findSign(line.symbol) : nullptr;
    return sign ? sign->colour + text + L"\x1B[0m" : text;
}

}  // namespace

std::wstring planText(const Plan& plan, bool inColour) {
    std::wstring text = headlineOf(plan.header) + L"\n" + summaryTextOf(summaryOf(plan)) + L"\n";
    const std::vector<PlanLine> lines = linesOf(plan);
    if (!lines.empty())
        text += L"\n";
    for (const PlanLine& line : lines)
        text += lineText(line, inColour) + L"\n";
    return text;
}
