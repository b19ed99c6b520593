#include "host/Explain.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <cwchar>
#include <set>

#include "host/Diagnosis.h"
#include "host/ExitCodes.h"
#include "host/Findings.h"

namespace {

/// The part by which a message is recognised; empty for one that isn't.
std::wstring partFor(const std::wstring& message) {
    const std::wstring text = explain(message);
    for (const MessageRow& row : explainedMessages())
        if (!text.empty() && text.starts_with(row.cause) &&
            message.find(row.part) != std::wstring::npos)
            return row.part;
    return L"";
}

struct Message {
    const wchar_t* message;
    const wchar_t* part;
};
constexpr Message messagesOfProgram[] = {
    {L"temz: a.xml can't be loaded: It is no XML that the engine can read.", L"It is no XML"},
    {L"a.xml can't be opened: its name isn't in the active code page.",
     L"isn't in the active code page"},
    {L"a.xml may be misread: It isn't UTF-8, which is the active code page.", L"may be misread"},
    {L"Another run goes on on this machine.", L"Another run goes on"},
    {L"The next restart brings C:\\a back, which waits for it since it was replaced. "
     L"--drop-pending takes that back.",
     L"back, which waits for it"},
    {L"This program is marked as downloaded, and files", L"is marked as downloaded"},
    {L"The engine's log is written to C:\\InstallLog, which is a link",
     L"The engine's log is written to"},
    {L"temz: a.xml isn't started: a run would surely end half-way. temz check tells more, "
     L"--no-check starts it all the same.",
     L"isn't started"},
    {L"The plan a.plan can't be kept to. It is of another script.", L"can't be kept to"},
    {L"The run was about to leave its plan: it comes to DeleteFileW(a), and the plan has nothing "
     L"more",
     L"leave its plan"},
    {L"The run has left its plan: DeleteFileW(a) has another result: success, and in the plan "
     L"Access denied. [error 5]",
     L"has left its plan"},
    {L"The plan has more than there was to do: its last calls, 2 of them, weren't made.",
     L"The plan has more than there was to do"},
    {L"The wait for another run was ended.", L"The wait for another run was ended"},
    {L"temz: The run ends behind this action: Copying a.txt. Press Ctrl+C once more to end it at "
     L"once.",
     L"The run ends behind this action"},
    {L"temz: The session ends, and the run behind this action: Copying a.txt.",
     L"The session ends"},
    {L"Windows ends the session.", L"Windows ends the session"},
    {L"temz: Ended in the middle of this action: Copying a.txt (1602).",
     L"Ended in the middle of this action"},
    {L"Copying a.txt failed: the file is in use by sync.exe (4312) [error 32]",
     L"the file is in use by"},
    {L"Copying a.txt failed: the file there is read-only, hidden [error 5]", L"the file there is "},
    {L"Copying a.txt failed: access is denied, and the program isn't run as an administrator "
     L"[error 5]",
     L"isn't run as an administrator"},
    {L"Deleting a.txt failed: access is denied [error 5]", L"access is denied"},
    {L"Copying a.txt failed: the file to copy isn't there [error 2]", L"the file to copy"},
    {L"Copying a.txt failed: the file to copy or the directory isn't there [error 3]",
     L"the file to copy"},
    {L"Starting a.exe failed: the program isn't there [error 2]", L"the program isn't there"},
    {L"Starting a.exe failed: the program's directory isn't there [error 3]",
     L"the program's directory isn't there"},
    {L"Starting a.exe failed: the question for an administrator's rights was answered with No "
     L"[error 1223]",
     L"answered with No"},
    {L"Starting a.txt failed: a file of this kind can't be started elevated [error 1155]",
     L"can't be started elevated"},
    {L"the library, or one that it needs, isn't there [error 126]",
     L"the library, or one that it needs"},
    {L"it is no 64-bit library [error 193]", L"it is no 64-bit library"},
    {L"Starting a.exe failed: it is no program that this Windows can run [error 193]",
     L"no program that this Windows can run"},
    {L"the library exports no such function [error 127]", L"exports no such function"},
    {L"Copying a.txt failed: the disk is full [error 112]", L"the disk is full"},
    {L"Copying a.txt failed: the disk is write-protected [error 19]",
     L"the disk is write-protected"},
    {L"Copying a?.txt failed: the name can't be one of a file [error 123]",
     L"the name can't be one of a file"},
    {L"Copying a.txt failed: the path is too long [error 206]", L"the path is too long"},
    {L"Starting service a failed: there is no such service [error 1060]",
     L"there is no such service"},
    {L"Starting service a failed: its program isn't there [error 2]", L"its program isn't there"},
    {L"Starting service a failed: the service is disabled [error 1058]",
     L"the service is disabled"},
    {L"Removing service a failed: the service is already being removed [error 1072]",
     L"the service is already being removed"},
    {L"Starting service a failed: its program didn't answer in time [error 1053]",
     L"didn't answer in time"},
    {L"Starting service a failed: it can't log on with its account [error 1069]",
     L"can't log on with its account"},
    {L"Stopping service a failed: the service can't be stopped now [error 1061]",
     L"the service can't be stopped now"},
    {L"Stopping service a failed: the service doesn't let itself be stopped [error 1052]",
     L"doesn't let itself be stopped"},
    {L"Stopping service a failed: other services that run depend on it: b [error 1051]",
     L"services that run depend on it"},
    {L"Creating registry key a failed: the key is being removed [error 1018]",
     L"the key is being removed"},
    {L"temz: The log is incomplete: There is not enough space on the disk. [error 112]",
     L"The log is incomplete"},
    {L"temz: a.html can't be written: Access denied. [error 5]", L"can't be written"},
    {L"temz: The product's directory can't be called a?: Windows allows no control character and "
     L"none of <>:\"/\\|?* in a name.",
     L"can't be called"},
    {L"temz: C:\\a\\b. can't be installed: Windows drops dots and blanks at the end of a name.",
     L"can't be installed: "},
    {L"temz: C:\\ is a whole drive; name a folder.", L"is a whole drive"},
    {L"temz: C:\\a can't be read: Access denied. [error 5]", L"can't be read: "},
    {L"temz: C:\\a holds no files.", L"holds no files"},
    {L"temz: a.xml isn't planned: a run would surely end half-way.", L"isn't planned"},
    {L"temz: The script has no variable A.", L"The script has no variable"},
    {L"The next restart brings C:\\a back: that can't be taken back.",
     L"back: that can't be taken back"},
    {L"Starting service a failed: it has stopped.", L"it has stopped"},
    {L"Starting service a failed: it is still starting.", L"it is still st"},
    {L"Stopping service a failed: it is still stopping.", L"it is still st"},
    {L"temz: a.xml is there already, and isn't replaced. Remove it, or name another file.",
     L"is there already, and isn't replaced"},
    {L"temz: There is no shortcut, as there isn't one program at the top of the folder",
     L"There is no shortcut"},
    {L"temz: The script isn't all ASCII. It is UTF-8, which temz.exe reads",
     L"The script isn't all ASCII"},
    {L"temz: a.xml can't be opened: Access denied. [error 5]", L"can't be opened"},
    {L"temz: a.xml can't be loaded: There is no such reason.", L"can't be loaded"},
    {L"temz: a is no command. See temz help.", L" is no command"},
    {L"temz: -a is no option. See temz help.", L" is no option"},
    {L"temz: --log is no option of check. See temz help.", L" is no option"},
    {L"temz: The SCRIPT is missing. See temz help.", L" is missing."},
    {L"temz: --log needs a value: FILE. See temz help.", L" needs a value"},
    {L"temz: --json takes no value. See temz help.", L" takes no value"},
    {L"temz: --json stands twice. See temz help.", L" stands twice"},
    {L"temz: --wait can't be \"a\", only SECONDS. See temz help.", L" can't be \""},
    {L"temz: A run has failed.", L"A run has failed"},
    {L"Nothing was done (1618).", L"Nothing was done ("},
    {L"Failed after 1 of 2 actions (1603). What was done before stays.",
     L"What was done before stays"},
    {L"Ended by the user after 1 action (1602). What was done before stays.",
     L"What was done before stays"},
    {L"Stopped before Copying a.txt, after 0 of 2 actions (1602). What was done before stays.",
     L"What was done before stays"},
};

TEST(ExplainTest, KnowsEachMessageOfTheEngine) {
    constexpr Message messages[] = {
        // References in texts.
        {L"(File,x)[X] mismatch.", L" mismatch."},
        {L"(File,x)] can't be the first", L"] can't be the first"},
        // The making of elements.
        {L"Create Element error:Elements refer to each other without end.",
         L"refer to each other without end"},
        {L"Create Motion Element error:The name or id is NULL in createRefMotionElement.",
         L"The name or id is NULL"},
        {L"Create Motion Element error:(File,x) element can't create(get the node is null).",
         L"element can't create(get the node is null)"},
        {L"Create Motion Element error:Fil element name is undefined.(Component,c) cann't create "
         L"child element(Fil)",
         L"element name is undefined"},
        {L"Create Motion Element error:FilRef element undefined.", L"element undefined"},
        {L"(File,x) has a illegal child element(File)", L"has a illegal child element"},
        {L"(File,x) can't get child element name.", L"can't get child element name"},
        {L"(Component,c) cann't create child element(File)", L"cann't create child element"},
        {L"(File,x) cant get the require explicit Name attribute.",
         L"cant get the require explicit"},
        {L"(File,x) can't get Path attribute from  parent element.",
         L"attribute from  parent element"},
        {L"(File,x) can't get parent node when get the Path attribute.", L"can't get parent node"},
        {L"Create Element error:x(File,x) can't create parent element when get the Path attribute.",
         L"can't create parent element"},
        {L"(File,x) getAttributesText params error.", L"getAttributesText params error"},
        {L"(File,x) can't get Source attribute.", L" attribute."},
        {L"Can't obtain the name of the element", L"Can't obtain the name of the element"},
        {L"Create Element error:The parameter node is NULL.", L"The parameter node is NULL"},
        {L"Create Element error:Fail to get element name.", L"Fail to get element name"},
        {L"Failed to create install element.", L"Failed to create install element"},
        {L"Failed to create element (File,x)", L"Failed to create element"},
        {L"Failed to create element(File) in Feature", L"Failed to create element"},
        {L"Create element error:File element is not InstallExecuteSequence",
         L"Create element error"},
        {L"Create Element error:", L"Create Element error"},
        {L"Create Motion Element error:", L"Create Motion Element error"},
        // Directories and variables.
        {L"can't get the X directory", L"can't get the "},
        {L"Get directory error:can't get the X directory", L"can't get the "},
        {L"Get directory error:", L"Get directory error"},
        {L"(Directory,x) element can't get Path attribute.", L"element can't get"},
        {L"(Condition,x) element can't get the Expression", L"element can't get"},
        {L"(Variable,x) can't get value attribute.", L"can't get value attribute"},
        {L"X variable is no exist.", L"variable is no exist"},
        {L"(Variable,x) is not int variable.", L"is not int variable"},
        // Loading.
        {L"It have already loaded.", L"It have already loaded"},
        {L"Can't get OS Version.", L"Can't get OS Version"},
        {L"There is no root element.", L"There is no root element"},
        {L"There is no Product element.", L"There is no Product element"},
        {L"Insufficient memory.", L"Insufficient memory"},
        // Expressions.
        {L"\"( 1\" expression error: '(' didn't math ')'.", L"'(' didn't math ')'"},
        {L"\"1 )\" expression error: '(' didn't math ')' int precede.", L"'(' didn't math ')'"},
        {L"\"x\" expression error:It can't new x operation", L"It can't new "},
        {L"\"x\" expression error:Operations stack is empty!", L"Operations stack is empty"},
        {L"\"x\" expression error:x can't be in front of '('.", L"can't be in front of"},
        {L"\"x\" expression error:x can't be in front of ')'.", L"can't be in front of"},
        {L"\"x\" expression error:x can't be in front of binary operation.",
         L"can't be in front of"},
        {L"\"x\" expression error:x can't be in front of unary operation.",
         L"can't be in front of"},
        {L"\"x\" expression error:x can't be in front of operand.", L"can't be in front of"},
        {L"\"x\" expression error:x can't be in front of end.", L"can't be in front of"},
        {L"\"x\" expression error:x operand naming is legal.", L"operand naming is legal"},
        {L"\"x\" expression error:Reference undefined variable:x", L"Reference undefined variable"},
        {L"\"x\" expression error:Didn't recognize x variable type", L"variable type"},
        {L"It can't compare between different type variables.", L"different type"},
        {L"It can't assign value between different type operands.", L"different type"},
        {L"It can't assign value between operands with different type.", L"different type"},
        {L"It can't assign value to a const variable.", L"const variable"},
        {L"It can't be assignment in const operand.", L"const operand"},
        {L"It doesn't support 'Equal' comparison.", L"It doesn't support"},
        {L"It doesn't support 'LessThan' comparison.", L"It doesn't support"},
        {L"It doesn't support 'getBoolean' method.", L"It doesn't support"},
        {L"It doesn't support getInt method.", L"It doesn't support"},
        {L"It doesn't support getString method.", L"It doesn't support"},
        {L"variable obj is NULL in CIntOperand.", L"variable obj is NULL"},
        {L"variable obj is NULL in CStringOperand.", L"variable obj is NULL"},
        {L"failed to update attribute when assignment.", L"failed to update attribute"},
        // Actions.
        {L"HKLM is unknown Registry KEY in the (RegistryKey,x)", L"is unknown Registry KEY"},
        {L"REG_X is unknown Registry TYPE in the (RegistryValue,x)", L"is unknown Registry TYPE"},
        {L"make is unknown Action in the (RegistryKey,x)", L"is unknown Action"},
        {L"x isn't DWORD text in the (RegistryValue,x)", L"isn't DWORD text"},
        {L"Failed to load library(x.dll).", L"Failed to load library"},
        {L"Failed to get Address(run).", L"Failed to get Address"},
        {L"Can't get application directory.", L"Can't get application directory"},
    };
    std::set<std::wstring> used;
    for (const auto& [message, part] : messages) {
        EXPECT_EQ(partFor(message), part) << message;
        used.insert(part);
    }
    for (const Message& message : messagesOfProgram)
        used.insert(message.part);
    // And no part stands there that no message has.
    for (const MessageRow& row : explainedMessages())
        EXPECT_TRUE(used.contains(row.part)) << row.part;
}

TEST(ExplainTest, KnowsTheMessagesOfTheProgram) {
    for (const auto& [message, part] : messagesOfProgram)
        EXPECT_EQ(partFor(message), part) << message;
}

// Whatever call has failed, and by whatever code.
TEST(ExplainTest, KnowsEachReasonThatAFailureIsGiven) {
    constexpr uint32_t lastCode = 2000;
    constexpr Witnesses nothingInTheWay{
        [](const std::wstring&) { return std::vector<std::wstring>(); }, [] { return true; },
        [](const std::wstring&) -> unsigned long { return FILE_ATTRIBUTE_NORMAL; },
        [](const std::wstring&) { return std::wstring(); }};
    const struct {
        uint32_t action;
        const wchar_t* call;
        const wchar_t* message;
    } attempts[] = {
        {TEMZ_ACTION_COPY_FILE, L"CopyFileW", L""},
        {TEMZ_ACTION_SHELL_EXCUTE, L"ShellExecuteExW", L""},
        {TEMZ_ACTION_START_SERVICE, L"StartServiceW", L""},
        {TEMZ_ERROR_MESSAGE, L"LoadLibraryW", L"Failed to load library(a.dll)."},
        {TEMZ_ERROR_MESSAGE, L"GetProcAddress", L"Failed to get Address(run)."},
    };
    for (const auto& [code, name, message] : attempts)
        for (uint32_t systemError = 1; systemError <= lastCode; ++systemError) {
            Action action;
            action.code = code;
            action.calls = {{L"", name, {L"a", L"b"}, L"0", true, systemError}};
            temz_error error{};
            error.code = code;
            std::wcscpy(error.message, message);
            const std::wstring why = diagnose(action, error, nothingInTheWay).why;
            EXPECT_TRUE(why == systemText(systemError) || !explain(why).empty())
                << name << L" " << systemError << L": " << why;
        }
}

TEST(ExplainTest, TellsCauseAndNextStepOnALineEach) {
    EXPECT_EQ(explain(L"(File,x) is not int variable."),
              L"The Value of an int variable is no number.\n"
              L"Write decimal digits, with or without a minus sign.\n");
}

TEST(ExplainTest, KnowsEachExitCode) {
    for (const ExitCode& row : exitCodes()) {
        const std::wstring next = *row.nextStep ? row.nextStep + std::wstring(L"\n") : L"";
        const std::wstring text = explain(std::to_wstring(row.code));
        const std::wstring own = row.meaning + (L"\n" + next);
        EXPECT_TRUE(text.starts_with(own)) << row.code << text;
        EXPECT_EQ(text.substr(own.size()).starts_with(L"Windows: "), row.ownMeaning) << row.code;
    }
}

TEST(ExplainTest, KnowsEachKindOfFinding) {
    forEachFindingKind([](const temz_finding_kind& kind) {
        EXPECT_EQ(explain(kind.code), std::wstring(kind.meaning) + L"\n" + kind.remedy + L"\n");
    });
}

TEST(ExplainTest, FindsTheCodeOfAFindingInAText) {
    const std::wstring text = explain(L"TZ522");
    ASSERT_NE(text, L"");
    for (const wchar_t* subject :
         {L"tz522", L" Tz522 ", L"TZ522:", L"a.xml:31:17: error TZ522: It can't be written.",
          L"TZ522 TZ203", L"tzone TZ522"})
        EXPECT_EQ(explain(subject), text) << subject;
}

TEST(ExplainTest, TakesNoLongerWordForTheCodeOfAFinding) {
    for (const wchar_t* subject : {L"tz5220", L"atz522", L"TZ52", L"TZ52a", L"T522", L"TZ 522"})
        EXPECT_EQ(explain(subject), L"") << subject;
    EXPECT_NE(explain(L"TZ000: can't be kept to"), L"");
}

TEST(ExplainTest, KnowsTheSystemsCodesInDecimalAndHexadecimal) {
    const std::wstring sharing =
        L"Windows: " + systemText(32) + L"\n" + std::wstring(adviceOn(32)) + L"\n";
    EXPECT_EQ(explain(L"32"), sharing);
    EXPECT_EQ(explain(L"0x20"), sharing);
    EXPECT_EQ(explain(L"1450"), L"Windows: " + systemText(1450) + L"\n");
}

TEST(ExplainTest, KnowsHowAProcessIsEndedAsAnyShellShowsIt) {
    const std::wstring tooLong = explain(L"0xC0000417");
    EXPECT_TRUE(tooLong.starts_with(L"A text or a path of the script is longer"));
    EXPECT_EQ(explain(L"-1073740777"), tooLong);
    EXPECT_EQ(explain(L"3221226519"), tooLong);
    EXPECT_TRUE(explain(L"0xC000013A").starts_with(L"Ctrl+C has ended"));
    EXPECT_TRUE(explain(L"-1073741819").starts_with(L"The process has crashed."));
}

TEST(ExplainTest, KnowsAMessageByAPartThatNoOtherHas) {
    EXPECT_NE(explain(L"file is in use"), L"");
    EXPECT_EQ(explain(L"file is in use"), explain(L"the file is in use by sync.exe (4312)"));
    EXPECT_EQ(explain(L"in use"), L"");
    EXPECT_EQ(explain(L"isn't there"), L"");
}

TEST(ExplainTest, SaysNothingOfWhatItDoesNotKnow) {
    for (const wchar_t* subject : {L"", L" ", L"123456", L"x", L"99999999999999999999", L"16x"})
        EXPECT_EQ(explain(subject), L"") << subject;
}

TEST(ExitCodeTableTest, HasEachCodeWithItsMeaningAndNextStep) {
    const std::wstring table = exitCodeTable();

    EXPECT_TRUE(table.starts_with(L"   0  All was done.\n3010  All was done, and"));
    for (const ExitCode& row : exitCodes()) {
        const std::wstring line = std::to_wstring(row.code) + L"  " + row.meaning + L"\n";
        EXPECT_NE(table.find(line), std::wstring::npos) << row.code;
        EXPECT_NE(table.find(row.nextStep), std::wstring::npos) << row.code;
    }
}

}  // namespace
