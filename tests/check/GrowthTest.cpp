#include <tinyxml.h>

#include "author/check/ScriptWalk.h"
#include "author/check/XmlChecks.h"
#include "check/CCheckTest.h"

namespace {

/// How many steps the walk takes through a script.
size_t stepsThrough(const std::string& script) {
    const ScriptText text(script);
    Report report(text, L"script.xml");
    TiXmlDocument document;
    EXPECT_TRUE(parseScript(text, document, report));
    const ScriptModel model(text, document);
    const ScriptVariables variables(model);
    NearMiss nearMiss;
    ElementMaker maker(model, variables, nearMiss);
    ScriptWalk walk(model, variables, maker, nearMiss, report);
    walk.run();
    return walk.steps();
}

/// Each fragment refers to the next one twice: a run takes twice as long for each.
std::string doublingScript(size_t fragments) {
    std::string script = "<Script><Product>";
    for (size_t i = 0; i < fragments; ++i) {
        const std::string reference = "<FragmentRef Id=\"F" + std::to_string(i + 1) + "\"/>";
        script += "<Fragment Id=\"F" + std::to_string(i) + "\">" + reference + reference +
                  "</Fragment>\n";
    }
    script += "<Fragment Id=\"F" + std::to_string(fragments) + "\"/>";
    return script +
           "<InstallExecuteSequence><FragmentRef Id=\"F0\"/></InstallExecuteSequence>"
           "</Product></Script>";
}

/// A chain of references as long as the script.
std::string chainScript(size_t length) {
    std::string script = "<Script><Product>";
    for (size_t i = 0; i < length; ++i)
        script += "<Fragment Id=\"F" + std::to_string(i) + "\"><FragmentRef Id=\"F" +
                  std::to_string(i + 1) + "\"/></Fragment>\n";
    script += "<Fragment Id=\"F" + std::to_string(length) + "\"/>";
    return script +
           "<InstallExecuteSequence><FragmentRef Id=\"F0\"/></InstallExecuteSequence>"
           "</Product></Script>";
}

std::string directoryChainScript(size_t length) {
    std::string script = "<Script><Product>";
    for (size_t i = 0; i < length; ++i)
        script += "<Directory Id=\"D" + std::to_string(i) + "\" Path=\"[D" + std::to_string(i + 1) +
                  "]a\"/>\n";
    script += "<Directory Id=\"D" + std::to_string(length) + "\" Path=\"C:\\\"/>";
    return script +
           "<InstallExecuteSequence><Fragment><Caution Title=\"[D0]\"/></Fragment>"
           "</InstallExecuteSequence></Product></Script>";
}

}  // namespace

using GrowthTest = CCheckTest;

TEST_F(GrowthTest, ReferencesThatDoubleARunDoNotDoubleTheCheck) {
    EXPECT_EQ(stepsThrough(doublingScript(50)), 101U);
    EXPECT_EQ(stepsThrough(doublingScript(100)), 201U);
}

TEST_F(GrowthTest, AChainOfReferencesIsFollowedToItsEndWithoutRecursion) {
    EXPECT_EQ(stepsThrough(chainScript(50'000)), 50'001U);
    EXPECT_NE(findingsIn(chainScript(1001)).find("TZ216"), std::string::npos);
    EXPECT_EQ(findingsIn(chainScript(999)), "");
}

TEST_F(GrowthTest, DirectoriesThatNeedTooManyOthersCannotBeMade) {
    EXPECT_EQ(findingsIn(directoryChainScript(500)).find("TZ217"), std::string::npos);
    EXPECT_NE(findingsIn(directoryChainScript(50'000)).find("TZ217"), std::string::npos);
}

TEST_F(GrowthTest, TextsThatDoubleAreNotMade) {
    const std::string front =
        "<Script><Product><Directory Id=\"D0\" Path=\"" + std::string(500'000, 'x') + "\"/>";
    const std::string behind =
        "<InstallExecuteSequence><Fragment><Caution Title=\"[D8]\"/></Fragment>"
        "</InstallExecuteSequence></Product></Script>";
    std::string doubling;
    for (int i = 1; i <= 40; ++i) {
        const std::string below = "[D" + std::to_string(i - 1) + "]";
        doubling +=
            "<Directory Id=\"D" + std::to_string(i) + "\" Path=\"" + below + below + "\"/>\n";
    }
    EXPECT_NE(findingsIn(front + doubling + behind).find("TZ217"), std::string::npos);
}

TEST_F(GrowthTest, ReferencesInOneTextAreCounted) {
    const auto script = [](size_t references) {
        std::string text;
        for (; references > 0; --references)
            text += "#V";
        return "<Script><Variable Id=\"V\" Type=\"string\" Value=\"\"/><Product>"
               "<InstallExecuteSequence><Fragment><Caution Title=\"" +
               text + "\"/></Fragment></InstallExecuteSequence></Product></Script>";
    };
    EXPECT_EQ(findingsIn(script(9'999)).find("TZ217"), std::string::npos);
    EXPECT_NE(findingsIn(script(10'000)).find("TZ217"), std::string::npos);
}

// Each finding told its line, and counted its column from the line's start: a script in one line of
// some megabytes took all memory, and hours.
TEST_F(GrowthTest, AScriptInOneLineIsWalkedAlongOnce) {
    constexpr size_t amount = 100'000;
    std::string script = "<Script><Product>";
    for (size_t i = 0; i < amount; ++i)
        script += "<Directory Path=\"a\"/>";
    CheckRequest request;
    request.script = folder.write(L"script.xml", script + "</Product></Script>");
    Finding last{};
    checkScript(request, [&last](const Finding& found) { last = found; });
    EXPECT_EQ(last.place, (Place{1, static_cast<uint32_t>(script.size()) - 3, 1}));
    EXPECT_EQ(last.sourceLine, L"");
}
