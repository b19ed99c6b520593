#include <gmock/gmock.h>
#include <windows.h>

#include <array>
#include <bit>

#include "support/ActionCall.h"
#include "support/ChildProcess.h"
#include "support/HostTest.h"
#include "support/LogFile.h"
#include "support/Requirements.h"

using testing::ElementsAre;
using testing::ElementsAreArray;

namespace {

/// A product with custom actions, which report to `call`.
class CustomActionTest : public HostTest {
protected:
    CustomActionTest() {
        call.text = text.c_str();
        call.textLength = text.size();
    }

    /// Loads a script with one custom action, with further attributes.
    bool loadAction(const std::string& attributes) { return loadAction(attributes, app()); }

    bool loadAction(const std::string& attributes, const std::wstring& rootDirectory) {
        const bool loaded =
            load("<Script><Product><Directory Id='APPLICATIONROOTDIRECTORY' Path='" +
                 narrow(rootDirectory) +
                 "'/><InstallExecuteSequence><Fragment><CustomAction DllFile='" + narrow(library) +
                 "' " + attributes + "/></Fragment></InstallExecuteSequence></Product></Script>");
        product().observerData = &call;
        return loaded;
    }

    const std::wstring library = testProgramDirectory() + L"\\temz_test_actions.dll";
    const std::wstring text = L"It went wrong.";
    ActionCall call{};
};

/// The bytes of a number, in memory's order.
template <class Number>
std::array<unsigned char, sizeof(Number)> bytesOf(Number number) {
    return std::bit_cast<std::array<unsigned char, sizeof(Number)>>(number);
}

TEST_F(CustomActionTest, IsGivenTheRecordOfTheRun) {
    OSVERSIONINFOW version{};
    version.dwOSVersionInfoSize = sizeof version;
    ASSERT_TRUE(GetVersionExW(&version));
    ASSERT_TRUE(loadAction("DllEntry='answer' Return='check'"));

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);

    ASSERT_EQ(call.calls, 1u);
    EXPECT_EQ(reinterpret_cast<const char*>(call.params), narrow(app() + L"\\"));
    const auto bytesAt = [&](size_t from, size_t size) {
        return std::vector(call.params + from, call.params + from + size);
    };
    EXPECT_THAT(bytesAt(260, 4), ElementsAreArray(bytesOf(version.dwMajorVersion)));
    EXPECT_THAT(bytesAt(264, 4), ElementsAreArray(bytesOf(version.dwMinorVersion)));
    EXPECT_THAT(bytesAt(268, 4), ElementsAre(1, 0, 0, 0));
    EXPECT_THAT(bytesAt(272, 8), ElementsAreArray(bytesOf(&call)));
    EXPECT_EQ(call.capacity, 1024u);
    EXPECT_THAT(call.message, testing::Each(L'\0'));
}

/// A directory whose name is not ASCII and has so many bytes in the active code page.
std::wstring directoryOfBytes(size_t size) {
    const wchar_t* const letter = GetACP() == 936 ? L"程" : L"é";
    std::wstring directory = L"C:\\";
    while (narrow(directory + letter).size() < size)
        directory += letter;
    return directory.append(size - narrow(directory).size(), L'x');
}

TEST_F(CustomActionTest, IsGivenTheDirectoryInTheCodePage) {
    const std::wstring directory = directoryOfBytes(258);
    ASSERT_TRUE(loadAction("DllEntry='answer' Return='check'", directory));

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);

    EXPECT_EQ(reinterpret_cast<const char*>(call.params), narrow(directory + L"\\"));
}

TEST_F(CustomActionTest, CannotBeGivenADirectoryOf260BytesInTheCodePage) {
    ASSERT_TRUE(loadAction("DllEntry='answer' Return='check'", directoryOfBytes(259)));

    EXPECT_EXIT(run(RUNMODE_INSTALL), endedByInvalidParameter(), "");
}

TEST_F(CustomActionTest, TellsTheHostWhatWentWrong) {
    const LogFile log;
    call.result = 1234;
    ASSERT_TRUE(loadAction("DllEntry='answer' Return='check' Title='A title' Vital='no'"));

    EXPECT_EQ(run(RUNMODE_INSTALL), 1234);

    ASSERT_EQ(observer.failures.size(), 1u);
    const ErrorInfo& error = observer.failures.front();
    EXPECT_EQ(error.code, 10u);
    EXPECT_STREQ(error.text1, L"answer");
    EXPECT_STREQ(error.text2, L"A title");
    EXPECT_EQ(error.systemError, 1234u);
    EXPECT_EQ(error.message, text);
    EXPECT_THAT(log.lines(), ElementsAre("[INFO] callDllEntry:" + narrow(library) + ";answer",
                                         "[INFO] " + narrow(app() + L"\\")));
}

TEST_F(CustomActionTest, CanFailWithoutMattering) {
    call.result = 1234;
    ASSERT_TRUE(loadAction("DllEntry='answer' Return='ignore'"));

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);

    EXPECT_EQ(call.calls, 1u);
    EXPECT_TRUE(observer.failures.empty());
}

TEST_F(CustomActionTest, IsLoadedAnewForARetry) {
    ASSERT_TRUE(loadAction("DllEntry='countCalls' Return='check'"));
    observer.answers = {ANSWER_RETRY, ANSWER_RETRY};

    EXPECT_EQ(run(RUNMODE_INSTALL), 1);

    EXPECT_EQ(observer.failures.size(), 3u);
    EXPECT_EQ(observer.failures.back().systemError, 1u);
    EXPECT_EQ(GetModuleHandleW(library.c_str()), nullptr);
}

TEST_F(CustomActionTest, MustBeThere) {
    ASSERT_TRUE(loadAction("DllEntry='absent' Return='ignore'"));

    EXPECT_EQ(run(RUNMODE_INSTALL), -1);

    EXPECT_STREQ(product().errorInfo.message, L"Failed to get Address(absent).");
}

TEST_F(CustomActionTest, IsSoughtByItsNameInTheActiveCodePage) {
    REQUIRES_CODE_PAGE(1252, 932, 936, 65001);
    const std::wstring entry = L"\u00D7";
    const LogFile log;
    ASSERT_TRUE(loadAction("DllEntry='" + narrow(entry) + "' Return='check'"));

    EXPECT_EQ(run(RUNMODE_INSTALL), -1);

    EXPECT_EQ(product().errorInfo.message, L"Failed to get Address(" + entry + L").");
    EXPECT_EQ(log.lines().back(), "[ERROR] GetProcAddress " + narrow(entry) + " failed.");
}

}  // namespace
