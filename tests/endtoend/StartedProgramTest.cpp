#include <gmock/gmock.h>
#include <windows.h>

#include <shellapi.h>

#include "support/ChildProcess.h"
#include "support/HostTest.h"
#include "support/ReportedWindows.h"
#include "support/Requirements.h"

using testing::IsEmpty;

namespace {

/// A product whose script starts programs.
class StartedProgramTest : public HostTest {
protected:
    bool loadShellExcute(const std::string& attributes) {
        return load("<Script><Product><InstallExecuteSequence><Fragment><ShellExcute " +
                    attributes + "/></Fragment></InstallExecuteSequence></Product></Script>");
    }
};

constexpr char commandShell[] = "C:\\windows\\system32\\cmd.exe";

TEST_F(StartedProgramTest, IsWaitedForAndMayFail) {
    REQUIRES_WINE("asks for elevation");
    const std::wstring trace = folder.path(L"trace");
    ASSERT_TRUE(loadShellExcute("File='" + std::string(commandShell) +
                                "' Return='sync' Title='A title' ExeCommand='/c \"echo done>" +
                                narrow(trace) + "&amp; exit 7\"'"));

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);

    EXPECT_EQ(readFile(trace), "done\r\n");
    EXPECT_EQ(observer.updates.front().code, 11u);
    EXPECT_EQ(observer.updates.front().text2, L"A title");
    EXPECT_THAT(observer.failures, IsEmpty());
}

TEST_F(StartedProgramTest, MustBeThere) {
    ASSERT_TRUE(loadShellExcute("File='" + narrow(folder.path(L"absent.exe")) +
                                "' Return='sync' Title='A title'"));

    EXPECT_EQ(run(RUNMODE_INSTALL), -1);

    ASSERT_EQ(observer.failures.size(), 1u);
    EXPECT_EQ(observer.failures.front().code, 11u);
    EXPECT_EQ(observer.failures.front().text1, folder.path(L"absent.exe"));
    EXPECT_STREQ(observer.failures.front().text2, L"A title");
    EXPECT_EQ(observer.failures.front().systemError, 0xFFFFFFFFu);
    EXPECT_STREQ(observer.failures.front().message, L"");
}

/// A kind of document that is opened by noting the verb in a file beside it.
class VerbDocument {
public:
    VerbDocument() {
        extension.set(nullptr, nullptr, L"temz.verb");
        for (const std::wstring verb : {L"open", L"runas"})
            type.set((L"shell\\" + verb + L"\\command").c_str(), nullptr,
                     L"C:\\windows\\system32\\cmd.exe /c \"echo " + verb + L">%1.trace\"");
    }

private:
    const TemporaryKey extension{HKEY_CLASSES_ROOT, L".temz-verb"};
    const TemporaryKey type{HKEY_CLASSES_ROOT, L"temz.verb"};
};

std::wstring programName() {
    wchar_t program[MAX_PATH];
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    return std::filesystem::path(program).filename().wstring();
}

DWORD majorVersion() {
    OSVERSIONINFOW version{};
    version.dwOSVersionInfoSize = sizeof version;
    EXPECT_TRUE(GetVersionExW(&version));
    return version.dwMajorVersion;
}

/// The verb with which a script starts a document under a version of Windows.
class VerbTest : public StartedProgramTest {
protected:
    void SetUp() override {
        REQUIRES_WINE("reports other versions of Windows, adds a kind of file");
    }

    void expectVerb(const std::wstring& windows, DWORD major, const std::string& verb) {
        const VerbDocument documents;
        const ReportedWindows version(programName(), windows);
        inFreshProcess([&] {
            EXPECT_EQ(majorVersion(), major);
            const std::wstring document = folder.write(L"a.temz-verb", "");
            EXPECT_TRUE(loadShellExcute("File='" + narrow(document) + "' Return='sync'"));

            EXPECT_EQ(run(RUNMODE_INSTALL), 0);

            EXPECT_EQ(readFile(document + L".trace"), verb + "\r\n");
        });
    }
};

TEST_F(VerbTest, IsOpenBeforeWindowsVista) {
    expectVerb(L"winxp64", 5, "open");
}

TEST_F(VerbTest, AsksForElevationFromWindowsVistaOn) {
    expectVerb(L"vista", 6, "runas");
}

TEST_F(VerbTest, AsksForElevationUnderWindows7) {
    expectVerb(L"win7", 6, "runas");
}

}  // namespace
