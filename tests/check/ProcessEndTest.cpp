#include <gmock/gmock.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "check/CCheckTest.h"
#include "engine/CContext.h"
#include "logging/CSubject.h"
#include "support/ChildProcess.h"

// What ends the process is compared with a run in a process of its own.
namespace {

std::string inFragment(const std::string& action) {
    return "<Root><Product><Directory Id=\"R\" Path=\"C:\\temz-tests\\no\"/>"
           "<InstallExecuteSequence><Fragment>" +
           action + "</Fragment></InstallExecuteSequence></Product></Root>";
}

std::string inComponent(const std::string& action) {
    return "<Root><Product><Directory Id=\"R\" Path=\"C:\\temz-tests\\no\"><Component Id=\"C\">" +
           action +
           "</Component></Directory><InstallExecuteSequence><Feature><ComponentRef Id=\"C\"/>"
           "</Feature></InstallExecuteSequence></Product></Root>";
}

std::string letters(size_t count) {
    return std::string(count, 'x');
}

/// A script that just fits in its fields when `length` is the longest, and one that doesn't.
struct Limit {
    const char* code;
    const char* what;
    std::string (*script)(size_t length);
    size_t longest;
};

const Limit limits[] = {
    {"TZ431", "Caution",
     [](size_t length) { return inFragment("<Caution Title=\"" + letters(length) + "\"/>"); }, 511},
    {"TZ431", "Condition",
     [](size_t length) {
         return inFragment("<Condition Expression=\"" + std::string(length - 1, ' ') + "1\"/>");
     },
     511},
    {"TZ431", "Service",
     [](size_t length) {
         return inFragment("<ServiceControl Action=\"stop\" Wait=\"no\" Vital=\"no\" Name=\"" +
                           letters(length) + "\"/>");
     },
     511},
    {"TZ432", "Id",
     [](size_t length) { return inFragment("<Fragment Id=\"" + letters(length) + "\"/>"); }, 255},
    {"TZ432", "VariableId",
     [](size_t length) {
         std::string script = inFragment("");
         return script.insert(
             6, "<Variable Type=\"int\" Value=\"1\" Id=\"" + letters(length) + "\"/>");
     },
     255},
    {"TZ432", "ProductId",
     [](size_t length) {
         std::string script = inFragment("");
         return script.insert(script.find("<Product") + 8, " Id=\"" + letters(length) + "\"");
     },
     255},
    {"TZ432", "SequenceId",
     [](size_t length) {
         std::string script = inFragment("");
         return script.insert(script.find("Sequence") + 8, " Id=\"" + letters(length) + "\"");
     },
     255},
    {"TZ512", "RemoveDirectory",
     [](size_t length) {
         return inFragment("<RemoveDirectory Vital=\"no\" Path=\"[R]" +
                           letters(length - std::string("C:\\temz-tests\\no\\").size()) + "\"/>");
     },
     257},
    {"TZ512", "KillProcess",
     [](size_t length) {
         return inComponent("<File Source=\"no\" Vital=\"no\" KillProcess=\"yes\" Name=\"" +
                            letters(length) + "\"/>");
     },
     259},
};

void PrintTo(const Limit& limit, std::ostream* stream) {
    *stream << limit.what;
}

class ProcessEndTest : public CCheckTest, public testing::WithParamInterface<Limit> {
protected:
    bool isFound(const std::string& script, std::string_view code) {
        const std::vector<Finding> findings = check(script);
        return std::any_of(findings.begin(), findings.end(), [&](const Finding& finding) {
            return narrow(finding.kind->code) == code && finding.endsRun;
        });
    }

    void runAndExit(const std::string& script) {
        CContext context;
        context.runMode = RUNMODE_INSTALL;
        const bool done = context.load(folder.write(L"run.xml", script).c_str()) &&
                          context.getProduct()->run(&context) == 0;
        std::fputs("came back", stderr);
        std::exit(done ? EXIT_SUCCESS : EXIT_FAILURE);
    }
};

}  // namespace

TEST_P(ProcessEndTest, IsFoundWhereTheProcessEndsAndOneCharacterBeforeNot) {
    const Limit& limit = GetParam();
    const std::string fitting = limit.script(limit.longest);
    const std::string tooLong = limit.script(limit.longest + 1);
    EXPECT_FALSE(isFound(fitting, limit.code));
    EXPECT_TRUE(isFound(tooLong, limit.code));
    EXPECT_EXIT(runAndExit(fitting), testing::ExitedWithCode(EXIT_SUCCESS), "");
    EXPECT_EXIT(runAndExit(tooLong), endedByInvalidParameter(), "");
}

INSTANTIATE_TEST_SUITE_P(TooLong, ProcessEndTest, testing::ValuesIn(limits));

TEST_F(ProcessEndTest, ACircleOfReferencesEndsItToo) {
    const std::string circle =
        "<Root><Product><Fragment Id=\"A\"><FragmentRef Id=\"B\"/></Fragment><Fragment Id=\"B\">"
        "<FragmentRef Id=\"A\"/></Fragment><InstallExecuteSequence><FragmentRef Id=\"A\"/>"
        "</InstallExecuteSequence></Product></Root>";
    EXPECT_TRUE(isFound(circle, "TZ210"));
    // Some crashes end in 0: that the run doesn't come back is what tells.
    EXPECT_EXIT({ runAndExit(circle); }, [](int) { return true; },
                testing::Not(testing::HasSubstr("came back")));
}
