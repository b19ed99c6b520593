// What the function of a custom action is given.

#include <gmock/gmock.h>

#include <array>
#include <bit>

#include "support/ChildProcess.h"
#include "support/CustomActionScriptTest.h"
#include "support/FakeCall.h"
#include "support/LogFile.h"
#include "system/SystemCalls.h"

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;

namespace {

using CustomActionRecordTest = CustomActionScriptTest;

TEST_F(CustomActionRecordTest, GivesTheRecordByteByByte) {
    FakeCall<systemCalls, &SystemCalls::GetVersionExW> ask([](OSVERSIONINFOW* version) {
        version->dwMajorVersion = 0x01020304;
        version->dwMinorVersion = 0x05060708;
        return TRUE;
    });
    ASSERT_TRUE(loadFragment(action("answer", "Return='check'")));

    EXPECT_EQ(run(), 0);

    std::vector<unsigned char> expected = {4, 3, 2, 1, 8, 7, 6, 5, 1, 0, 0, 0};
    for (const auto byte : std::bit_cast<std::array<unsigned char, 8>>(&call))
        expected.push_back(byte);
    EXPECT_STREQ(reinterpret_cast<const char*>(call.params), "C:\\app\\");
    EXPECT_THAT(std::vector(call.params + 260, call.params + 280), ElementsAreArray(expected));
}

TEST_F(CustomActionRecordTest, TellsOnlyASixtyFourBitSystemFromOthers) {
    for (const bool tells64Bit : {true, false}) {
        FakeCall<systemCalls, &SystemCalls::GetProcAddress> find(
            [&](auto... arguments) { return tells64Bit ? find.real(arguments...) : nullptr; });
        context.unload();
        ASSERT_TRUE(loadFragment(action("answer", "Return='check'")));

        EXPECT_EQ(run(), 0);

        EXPECT_THAT(std::vector(call.params + 268, call.params + 272),
                    ElementsAre(tells64Bit ? 1 : 0, 0, 0, 0));
    }
}

TEST_F(CustomActionRecordTest, GivesAnEmptyBufferOf1024Characters) {
    answerWith(0, std::wstring(1023, L'x'));
    ASSERT_TRUE(
        loadFragment(action("answer", "Return='check'") + action("answer", "Return='check'")));

    EXPECT_EQ(run(), 0);

    EXPECT_EQ(call.calls, 2u);
    EXPECT_EQ(call.capacity, 1024u);
    EXPECT_THAT(call.message, Each(L'\0'));
}

TEST_F(CustomActionRecordTest, CallsOnTheThreadOfTheRun) {
    ASSERT_TRUE(loadFragment(action("answer", "Return='check'")));

    EXPECT_EQ(run(), 0);

    EXPECT_EQ(call.thread, GetCurrentThreadId());
}

TEST_F(CustomActionRecordTest, RootDirectoryEndsInOneSeparatorOfEitherKind) {
    const std::pair<std::string, std::string> rows[] = {{"C:\\app", "C:\\app\\"},
                                                        {"C:\\app\\", "C:\\app\\"},
                                                        {"C:\\app/", "C:\\app/"},
                                                        {"C:/a b/c", "C:/a b/c\\"},
                                                        {"/", "/"}};
    for (const auto& [path, expected] : rows) {
        SCOPED_TRACE(path);
        context.unload();
        ASSERT_TRUE(loadFragment(action("answer", "Return='check'"),
                                 "<Directory Id='APPLICATIONROOTDIRECTORY' Path='" + path + "'/>"));
        const LogFile log;

        EXPECT_EQ(run(), 0);

        EXPECT_EQ(reinterpret_cast<const char*>(call.params), expected);
        EXPECT_THAT(log.lines(), Contains("[INFO] " + expected));
    }
}

TEST_F(CustomActionRecordTest, RootDirectoryFillsItsFieldUpToTheTerminator) {
    const std::string path(258, 'd');
    ASSERT_TRUE(loadFragment(action("answer", "Return='check'"),
                             "<Directory Id='APPLICATIONROOTDIRECTORY' Path='" + path + "'/>"));

    EXPECT_EQ(run(), 0);

    EXPECT_EQ(reinterpret_cast<const char*>(call.params), path + "\\");
}

TEST_F(CustomActionRecordTest, RootDirectoryOf260BytesEndsTheProcess) {
    const std::string path(259, 'd');
    for (const std::string& element :
         {action("answer", "Return='check'"),
          std::string("<CustomAction DllFile='absent' DllEntry='answer' Return='check'/>")}) {
        context.unload();
        ASSERT_TRUE(loadFragment(element,
                                 "<Directory Id='APPLICATIONROOTDIRECTORY' Path='" + path + "'/>"));

        EXPECT_EXIT(run(), endedByInvalidParameter(), "");
    }
}

}  // namespace
