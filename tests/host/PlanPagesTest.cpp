// A plan as JSON and as a page.

#include <gmock/gmock.h>

#include "FakeConsole.h"
#include "ScriptedPlan.h"
#include "host/PlanHtml.h"
#include "host/PlanJson.h"

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

namespace {

TEST(PlanJsonTest, WritesAnObjectForEachStepBetweenHeaderAndSummary) {
    const FakeConsole console;

    writePlanAsJson(scriptedPlan(), 1603, L"why");

    EXPECT_TRUE(console.output.starts_with(
        LR"({"event":"plan","schema":"temz-plan-1","version":"1.2.3","windows":"10.0.19045",)"
        LR"("mode":"upgrade","script":"C:\\setup\\install.xml","sha256":"0a1b","assumptions":[]})"
        L"\n"
        LR"({"event":"step","kind":"group","depth":0,"line":7,"element":"Feature","id":"Main"})"
        L"\n"
        LR"({"event":"step","kind":"condition","depth":1,"line":7,"element":"Condition","id":"",)"
        LR"("expression":"OS_BIT E 64","variables":"OS_BIT = 64","holds":true,)"
        LR"("elementsLeftOut":0,"filesLeftOut":0})"));
    EXPECT_THAT(console.output,
                AllOf(HasSubstr(LR"("change":"file-at-restart","object":"C:\\app\\sync.dll",)"),
                      HasSubstr(L"\"holders\":[\"sync.exe (4312)\"]}"),
                      HasSubstr(LR"("systemError":1060,"what":"Starting service X",)"),
                      HasSubstr(LR"("fate":"vital"})"), HasSubstr(LR"("on":"uninstall",)"),
                      HasSubstr(LR"({"event":"end","exitCode":1603,"filesAdded":0,)"),
                      HasSubstr(LR"("drives":["C:"],"bytesNeeded":[14336],)"),
                      EndsWith(L",\"reason\":\"why\"}\n")));
}

TEST(PlanHtmlTest, ShowsEachLineOfTheTree) {
    const std::wstring html = planHtml(scriptedPlan());

    EXPECT_THAT(html, HasSubstr(LR"(<h1>install.xml, upgrade, on this machine)"));
    EXPECT_THAT(html, HasSubstr(LR"(<p class="summary">1 file replaced;)"));
    EXPECT_THAT(
        html, HasSubstr(LR"(<li class="file change" data-area="file" data-depth="2" )"
                        LR"(style="--depth: 2"><span class="symbol">~</span><span class="object">)"
                        LR"(C:\app\a.exe<span class="place">line 7</span></span>)"
                        LR"(<span class="effect">1.3.0, 800 KB -&gt; 1.4.0, 812 KB</span></li>)"));
}

TEST(PlanHtmlTest, NamesNoLineWhereThereIsNone) {
    Plan plan;
    plan.steps = {stepOf(TEMZ_STEP_GROUP, 0, L"Feature")};
    plan.steps[0].line = 0;
    EXPECT_THAT(planHtml(plan), HasSubstr(LR"(<span class="object">Feature</span>)"));
}

TEST(PlanHtmlTest, EscapesWhatAScriptSays) {
    Plan plan;
    plan.header.script = L"<&\"'>";
    plan.steps = {changeOf(TEMZ_CHANGE_VALUE_SET, 0, L"</li><script>alert('1' & \"2\")</script>",
                           L"", L"\x1\x0B")};

    const std::wstring html = planHtml(plan);

    EXPECT_THAT(html, HasSubstr(L"&lt;/li&gt;&lt;script&gt;alert('1' &amp; &quot;2&quot;)"
                                L"&lt;/script&gt;"));
    EXPECT_THAT(html, HasSubstr(L"<h1>&lt;&amp;&quot;'&gt;, "));
    EXPECT_THAT(html, Not(HasSubstr(L"\x1")));
}

TEST(PlanHtmlTest, OffersAFilterForEachKindThatThereIs) {
    Plan plan;
    plan.steps = {changeOf(TEMZ_CHANGE_FILE_ADDED, 0, L"a"),
                  changeOf(TEMZ_CHANGE_FILE_REMOVED, 0, L"b"),
                  changeOf(TEMZ_CHANGE_VALUE_SET, 0, L"c")};

    const std::wstring html = planHtml(plan);

    EXPECT_THAT(html, HasSubstr(L"value=\"file\" checked> Files (2)"));
    EXPECT_THAT(html, HasSubstr(L"value=\"registry\" checked> Registry (1)"));
    EXPECT_THAT(html, Not(HasSubstr(L"value=\"service\"")));
}

TEST(PlanHtmlTest, NeedsNothingFromElsewhere) {
    const std::wstring html = planHtml(scriptedPlan());
    for (const wchar_t* word : {L"http:", L"https:", L"src=", L"href=", L"url(", L"@import"})
        EXPECT_THAT(html, Not(HasSubstr(word))) << word;
    EXPECT_THAT(html, HasSubstr(L"default-src 'none'"));
}

}  // namespace
