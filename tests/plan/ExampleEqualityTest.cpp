// The scripts that users start from, in dry runs and in real ones.

#include <gmock/gmock.h>

#include <filesystem>

#include "engine/IterfaceContext.h"
#include "logging/IterfaceObserver.h"
#include "plan/LeftServiceHandles.h"
#include "plan/RecordedRun.h"
#include "support/LogFile.h"
#include "support/Picture.h"
#include "support/Requirements.h"
#include "support/Sleeper.h"
#include "support/TestFolder.h"
#include "support/Text.h"
#include "system/ClockCalls.h"
#include "system/ShellCalls.h"

namespace fs = std::filesystem;

namespace {

constexpr wchar_t companyFolder[] = L"C:\\Program Files\\Example Works";
constexpr wchar_t menuFolder[] =
    L"C:\\ProgramData\\Microsoft\\Windows\\Start Menu\\Programs\\Example Works";
constexpr wchar_t companyKey[] = L"Software\\Example Works";
constexpr wchar_t listKey[] =
    L"Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Example Works Listed";
constexpr wchar_t greeterService[] = L"TemzExampleGreeter";

/// A service of that name for the life of the object, unless somebody removes it.
class InstalledService {
public:
    InstalledService(const wchar_t* name, const std::wstring& program) : name(name) {
        const SC_HANDLE manager = OpenSCManagerW(nullptr, nullptr, SC_MANAGER_ALL_ACCESS);
        const SC_HANDLE service = CreateServiceW(
            manager, name, nullptr, SERVICE_ALL_ACCESS, SERVICE_WIN32_OWN_PROCESS,
            SERVICE_DEMAND_START, SERVICE_ERROR_IGNORE, (L"\"" + program + L"\"").c_str(), nullptr,
            nullptr, nullptr, nullptr, nullptr);
        EXPECT_NE(service, nullptr);
        CloseServiceHandle(service);
        CloseServiceHandle(manager);
    }
    InstalledService(const InstalledService&) = delete;
    InstalledService& operator=(const InstalledService&) = delete;
    ~InstalledService() {
        const SC_HANDLE manager = OpenSCManagerW(nullptr, nullptr, SC_MANAGER_ALL_ACCESS);
        const SC_HANDLE service = OpenServiceW(manager, name, SERVICE_ALL_ACCESS);
        SERVICE_STATUS status{};
        ControlService(service, SERVICE_CONTROL_STOP, &status);
        DeleteService(service);
        CloseServiceHandle(service);
        CloseServiceHandle(manager);
    }

private:
    const wchar_t* const name;
};

class ExampleEqualityTest : public testing::Test {
protected:
    ExampleEqualityTest() { clear(); }
    ~ExampleEqualityTest() override {
        clear();
        // The key is the company's: the example product leaves it to others.
        if (keyWasThere) {
            HKEY key = nullptr;
            RegCreateKeyW(HKEY_LOCAL_MACHINE, companyKey, &key);
            RegCloseKey(key);
        }
    }
    void SetUp() override { REQUIRES_WINE("installs the examples in the machine"); }

    static void clear() {
        std::error_code failure;
        for (int looks = 0; looks < 100 && fs::remove_all(companyFolder, failure) ==
                                               static_cast<std::uintmax_t>(-1);
             ++looks)
            Sleep(20);
        fs::remove_all(menuFolder, failure);
        if (RegDeleteTreeW(HKEY_LOCAL_MACHINE, companyKey) == ERROR_SUCCESS && !cleared)
            keyWasThere = true;
        cleared = true;
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, listKey);
    }

    static inline bool cleared = false;
    static inline bool keyWasThere = false;

    static std::wstring beside(const wchar_t* name) {
        return testProgramDirectory() + L"\\" + name;
    }

    static Picture picture() {
        Picture all;
        for (const wchar_t* folder : {companyFolder, menuFolder})
            if (exists(folder))
                addFolder(folder, all);
        for (const wchar_t* key : {companyKey, listKey})
            addKey(HKEY_LOCAL_MACHINE, key, all);
        addService(greeterService, all);
        addTraces(all);
        return all;
    }

    /// Runs a script dry, then really, and compares.
    void compare(const std::wstring& script, int32_t mode) {
        SCOPED_TRACE(narrow(script) + " in mode " + std::to_string(mode));
        const std::deque<int32_t> ignoreAll(100, ANSWER_IGNORE);
        const Picture before = picture();
        PlannedChanges planned;

        const RecordedRun dry = rehearseScript(script, mode, planned, ignoreAll);
        const Picture after = picture();
        const RecordedRun real = runScript(script, mode, ignoreAll);
        left.close();

        EXPECT_EQ(after, before);
        EXPECT_EQ(narrow(linesOf(dry)), narrow(linesOf(real)));
        EXPECT_FALSE(real.calls.empty());
    }

    const LogFile log;
    LeftServiceHandles left;
    const FakeCall<clockCalls, &ClockCalls::Sleep> sleep{[](DWORD) { Sleep(200); }};
    // What a started program does isn't foreseen.
    const FakeCall<shellCalls, &ShellCalls::ShellExecuteExW> start{[](SHELLEXECUTEINFOW* info) {
        return BOOL{GetFileAttributesW(info->lpFile) != INVALID_FILE_ATTRIBUTES};
    }};
};

/// The payload of a version of the example product beside the test program.
class ExamplePayload {
public:
    explicit ExamplePayload(const wchar_t* version) {
        const std::wstring product = testProgramDirectory() + L"\\examples\\product\\";
        fs::create_directory(folder);
        for (const std::wstring& part : {std::wstring(), version + std::wstring(L"\\")})
            for (const auto& file : fs::directory_iterator(product + part + L"payload"))
                take(file.path());
        for (const wchar_t* name : {L"greeter-action.dll", L"greeter-service.exe"})
            take(fs::path(testProgramDirectory()) / name);
    }
    ExamplePayload(const ExamplePayload&) = delete;
    ExamplePayload& operator=(const ExamplePayload&) = delete;
    ~ExamplePayload() { fs::remove_all(folder); }

private:
    void take(const fs::path& file) const {
        EXPECT_TRUE(CopyFileW(file.c_str(), (folder / file.filename()).c_str(), FALSE));
    }

    const fs::path folder = testProgramDirectory() + L"\\payload";
};

TEST_F(ExampleEqualityTest, OfTheProductWhoseServiceIsThere) {
    const std::wstring script = beside(L"examples\\product\\install.xml");
    const InstalledService service(greeterService,
                                   std::wstring(companyFolder) + L"\\Greeter\\greeter-service.exe");
    const ExamplePayload first(L"v1");
    compare(script, RUNMODE_INSTALL);
    compare(script, RUNMODE_INSTALL);
    const ExamplePayload second(L"v2");
    compare(script, RUNMODE_UPGRADE);
    compare(script, RUNMODE_UNINSTALL);
}

TEST_F(ExampleEqualityTest, OfTheProductOnAFreshMachine) {
    const std::wstring script = beside(L"examples\\product\\install.xml");
    const ExamplePayload payload(L"v1");
    compare(script, RUNMODE_UNINSTALL);
    compare(script, RUNMODE_INSTALL);
    compare(script, RUNMODE_UPGRADE);
    compare(script, RUNMODE_UNINSTALL);
}

TEST_F(ExampleEqualityTest, OfTheHowTos) {
    const wchar_t* const sources[] = {L"program.txt", L"settings.ini",     L"temz.exe",
                                      L"TEMZC.dll",   L"program-list.xml", L"uninstall.xml",
                                      L"service.exe"};
    for (const wchar_t* source : sources)
        writeFile(beside(source), "content");
    placeSleeper(beside(L"temz.exe"));
    for (const wchar_t* name : {L"folder", L"program-list", L"service", L"settings", L"uninstall"})
        for (const int32_t mode : {RUNMODE_INSTALL, RUNMODE_UPGRADE, RUNMODE_UNINSTALL})
            compare(beside(L"examples\\how-to\\") + name + L".xml", mode);
    for (const wchar_t* source : sources)
        fs::remove(beside(source));
}

}  // namespace
