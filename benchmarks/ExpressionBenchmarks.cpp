// One evaluation of an expression, from its text.

#include <muParser.h>

#include "Script.h"
#include "Timing.h"
#include "expression/CExpression.h"

namespace {

void evaluateByEngine(benchmark::State& state) {
    const ScriptFile script("", "",
                            "<Variable Id='Flag' Type='int' Value='0'/>"
                            "<Variable Id='Count' Type='int' Value='3'/>");
    CContext context;
    if (!context.load(script.path().c_str()))
        state.SkipWithError("The script can't be loaded.");
    for (auto _ : state)
        benchmark::DoNotOptimize(
            CExpression().evaluate(L"OS_BIT E 64 AND ( ! Flag OR Count GE 3 )", context));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(evaluateByEngine)->Name("evaluation/engine")->UseRealTime();

// A parser that stands ready, with its variables, and is given the text each time.
void evaluateByParser(benchmark::State& state) {
    double osBit = 64, flag = 0, count = 3;
    mu::Parser parser;
    parser.DefineVar(L"OS_BIT", &osBit);
    parser.DefineVar(L"Flag", &flag);
    parser.DefineVar(L"Count", &count);
    for (auto _ : state) {
        parser.SetExpr(L"OS_BIT == 64 && ( Flag == 0 || Count >= 3 )");
        benchmark::DoNotOptimize(parser.Eval());
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(evaluateByParser)->Name("evaluation/muparser")->UseRealTime();

}  // namespace
