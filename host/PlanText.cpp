#include "PlanText.h"

#include "Diagnosis.h"
#include "PlanTree.h"
#include "PlanWords.h"

namespace {

constexpr size_t effectColumn = 54;

/// The control sequence for a line of this symbol.
const wchar_t* colourOf(wchar_t symbol) {
    switch (symbol) {
        case L'+':
            return L"\x1B[32m";
        case L'-':
            return L"\x1B[31m";
        case L'~':
            return L"\x1B[33m";
        case L'!':
            return L"\x1B[35m";
        case L'x':
            return L"\x1B[91m";
        case L'?':
        case L'>':
            return L"\x1B[36m";
        default:
            return L"";
    }
}

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
    const std::wstring colour = inColour ? colourOf(line.symbol) : L"";
    return colour.empty() ? text : colour + text + L"\x1B[0m";
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
