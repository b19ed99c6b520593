#include "host/JsonReporter.h"

#include <gmock/gmock.h>

#include "FakeConsole.h"
#include "host/Utf8.h"

namespace {

class JsonReporterTest : public testing::Test {
protected:
    FakeConsole console;
    JsonReporter reporter{JsonReporter::Detail::actions};
};

Call fileCall() {
    Call call;
    call.group = L"file";
    call.name = L"DeleteFileW";
    call.arguments = {L"C:\\a", L"b"};
    call.result = L"0";
    call.failed = true;
    call.systemError = 5;
    call.duration = std::chrono::nanoseconds(1234);
    return call;
}

TEST_F(JsonReporterTest, BeginsWithTheVersionOfItsSchema) {
    RunHeader header;
    header.version = L"1.2.3";
    header.elevated = true;
    reporter.started(header);

    EXPECT_TRUE(console.output.starts_with(
        LR"({"event":"start","schema":"temz-run-1","version":"1.2.3",)"));
    EXPECT_THAT(console.output, testing::HasSubstr(LR"("elevated":true,)"));
    EXPECT_TRUE(console.output.ends_with(L"}\n"));
    EXPECT_EQ(console.error, L"");
}

TEST_F(JsonReporterTest, EscapesWhatWouldEndATextOrALine) {
    reporter.warned(L"\"\\/\n\r\t\x01\x1F\x7F\u00E4\u5B89\U0001F4BE");

    EXPECT_EQ(console.output,
              L"{\"event\":\"warning\",\"text\":\"\\\"\\\\/\\u000a\\u000d\\u0009\\u0001\\u001f"
              L"\x7F\u00E4\u5B89\U0001F4BE\"}\n");
}

TEST_F(JsonReporterTest, WritesEachActionWithItsFateAndPlaces) {
    Action action;
    action.number = 3;
    action.percent = 40;
    action.code = TEMZ_ACTION_DELETE_FILE;
    action.text1 = L"a";
    action.calls = {fileCall()};
    reporter.began(action);
    const struct {
        Fate fate;
        const wchar_t* word;
    } fates[] = {{Fate::done, L"done"},
                 {Fate::ignored, L"ignored"},
                 {Fate::nonVital, L"not-vital"},
                 {Fate::failed, L"failed"},
                 {Fate::stopped, L"stopped"}};

    EXPECT_EQ(
        console.output,
        L"{\"event\":\"action\",\"number\":3,\"percent\":40,\"code\":4,\"text1\":\"a\",\"text2\":"
        L"\"\"}\n");
    for (const auto& [fate, word] : fates) {
        console.output.clear();
        reporter.ended(action, fate);
        EXPECT_EQ(console.output, std::wstring(LR"({"event":"action-end","number":3,"fate":")") +
                                      word + LR"(","source":"","target":"C:\\a"})" + L"\n");
    }
}

TEST_F(JsonReporterTest, ShowsCallsOnDemandAndTheEnginesLogAlways) {
    Call line = fileCall();
    line.group = L"log";
    JsonReporter detailed{JsonReporter::Detail::calls};

    reporter.called(fileCall());
    EXPECT_EQ(console.output, L"");
    reporter.called(line);
    EXPECT_TRUE(console.output.starts_with(LR"({"event":"call","group":"log",)"));
    console.output.clear();
    detailed.called(fileCall());
    EXPECT_EQ(console.output,
              L"{\"event\":\"call\",\"group\":\"file\",\"name\":\"DeleteFileW\",\"arguments\":"
              L"[\"C:\\\\a\",\"b\"],\"result\":\"0\",\"failed\":true,\"systemError\":5,"
              L"\"nanoseconds\":1234}\n");
}

TEST_F(JsonReporterTest, WritesEachFailureWithWhyAndWhatToDo) {
    Action action;
    action.number = 3;
    Failure failure;
    failure.code = TEMZ_ACTION_DELETE_FILE;
    failure.systemError = 5;
    failure.what = L"Deleting a";
    failure.why = L"why";
    failure.target = L"C:\\a";
    failure.advice = L"Mend it.";
    failure.call = L"DeleteFileW";

    reporter.failed(action, failure, 2);

    EXPECT_EQ(console.output,
              LR"({"event":"failure","number":3,"attempt":2,"code":4,"systemError":5,)"
              LR"("what":"Deleting a","why":"why","source":"","target":"C:\\a",)"
              LR"("advice":"Mend it.","call":"DeleteFileW"})"
              L"\n");
}

TEST_F(JsonReporterTest, EndsWithTheExitCode) {
    RunSummary summary;
    summary.ending = Ending::failedWithRestart;
    summary.restartNeeded = true;
    summary.waiting = {L"a", L"b"};
    summary.reason = L"why";
    reporter.finished(summary);

    EXPECT_TRUE(console.output.starts_with(LR"({"event":"end","exitCode":3017,)"));
    EXPECT_TRUE(
        console.output.ends_with(LR"("stoppedAt":"","reason":"why"})"
                                 L"\n"));
    EXPECT_THAT(console.output,
                testing::HasSubstr(LR"("leftOut":[],"restartNeeded":true,"waiting":["a","b"],)"));
}

TEST(Utf8Test, IsValidWhateverTheTextHolds) {
    const struct {
        std::wstring text;
        const char* utf8;
    } texts[] = {
        {L"", ""},
        {L"a\u00E4\u5B89", "a\xC3\xA4\xE5\xAE\x89"},
        {L"\U0001F4BE", "\xF0\x9F\x92\xBE"},
        {{L'a', wchar_t{0xD83D}, L'b'},
         "a\xEF\xBF\xBD"
         "b"},
        {{wchar_t{0xDCBE}}, "\xEF\xBF\xBD"},
        {{L'a', wchar_t{0xD83D}}, "a\xEF\xBF\xBD"},
    };
    for (const auto& [text, utf8] : texts)
        EXPECT_EQ(toUtf8(text), utf8);
}

}  // namespace
