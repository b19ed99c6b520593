#include "host/Messages.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <cwchar>

#include "SetupTest.h"

namespace {

ErrorInfo failure(uint32_t code, const wchar_t* text1, const wchar_t* text2, uint32_t systemError,
                  const wchar_t* message) {
    ErrorInfo error{};
    error.code = code;
    error.systemError = systemError;
    std::wcscpy(error.text1, text1);
    std::wcscpy(error.text2, text2);
    std::wcscpy(error.message, message);
    return error;
}

TEST(DescribeActionTest, HasAnOpeningForEachKindOfAction) {
    const struct {
        uint32_t code;
        const wchar_t* description;
    } actions[] = {
        {2, L"Checking x"},
        {3, L"Copying x"},
        {4, L"Deleting x"},
        {5, L"Stopping service x"},
        {6, L"Starting service x"},
        {7, L"Removing service x"},
        {8, L"Shortcut x"},
        {9, L"Removing shortcut x"},
        {10, L"Custom action x"},
        {11, L"Starting x"},
        {12, L"Creating registry key x"},
        {13, L"Removing registry key x"},
        {14, L"Writing registry value x"},
        {15, L"Removing directory x"},
        {16, L"Caution: x"},
        {17, L"Action 17 x"},
    };
    for (const auto& [code, description] : actions)
        EXPECT_EQ(describeAction(code, L"x", L""), description);
}

TEST(DescribeActionTest, JoinsTheTextsThatThereAre) {
    EXPECT_EQ(describeAction(ACTION_REMOVE_DIRECTORY, L"C:\\app", L"the program"),
              L"Removing directory C:\\app the program");
    EXPECT_EQ(describeAction(ACTION_CAUTION, L"", L"Read me"), L"Caution: Read me");
    EXPECT_EQ(describeAction(ACTION_CUSTOM_ACTION, L"", L""), L"Custom action");
}

TEST(DescribeFailureTest, TellsObjectMessageAndErrorCode) {
    EXPECT_EQ(describeFailure(failure(3, L"a.txt", L"", 5, L"Access denied.\r\n")),
              L"Copying a.txt failed: Access denied. (error 5)");
}

TEST(DescribeFailureTest, LeavesOutWhatTheEngineDoesNotTell) {
    const struct {
        uint32_t systemError;
        const wchar_t* message;
        const wchar_t* description;
    } failures[] = {
        {0, L"", L"Custom action call title failed"},
        {0xFFFFFFFF, L"", L"Custom action call title failed"},
        {7, L"", L"Custom action call title failed (error 7)"},
        {0xFFFFFFFF, L"No licence", L"Custom action call title failed: No licence"},
    };
    for (const auto& [systemError, message, description] : failures)
        EXPECT_EQ(describeFailure(failure(10, L"call", L"title", systemError, message)),
                  description);
}

TEST(DescribeFailureTest, IsTheMessageAloneWhenNoActionFailed) {
    EXPECT_EQ(describeFailure(failure(ERROR_CODE_MESSAGE, L"", L"", 0, L"It is wrong.\n")),
              L"It is wrong.");
}

TEST(DescribeSystemErrorTest, TellsTheSystemsMessageAndTheCode) {
    EXPECT_EQ(describeSystemError(ERROR_ACCESS_DENIED),
              systemMessage(ERROR_ACCESS_DENIED) + L" (error 5)");
}

TEST(DescribeSystemErrorTest, TellsTheCodeWhenTheSystemHasNoMessage) {
    EXPECT_EQ(describeSystemError(123456), L"(error 123456)");
}

}  // namespace
