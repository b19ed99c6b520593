// The scripts of docs/how-to.md, each through the life of the product that it installs.

#include <gtest/gtest.h>
#include <windows.h>

#include "HostProgram.h"
#include "SetupTest.h"
#include "support/Requirements.h"

namespace fs = std::filesystem;

namespace {

std::wstring beside(const std::wstring& name) {
    return testProgramDirectory() + L"\\" + name;
}

/// A value below HKEY_LOCAL_MACHINE, read as programs read one; empty when there is none.
std::wstring textValue(const std::wstring& key, const wchar_t* name) {
    wchar_t text[1024] = {};
    DWORD size = sizeof text;
    RegGetValueW(HKEY_LOCAL_MACHINE, key.c_str(), name, RRF_RT_REG_SZ, nullptr, text, &size);
    return text;
}

DWORD numberValue(const std::wstring& key, const wchar_t* name) {
    DWORD number = 0;
    DWORD size = sizeof number;
    RegGetValueW(HKEY_LOCAL_MACHINE, key.c_str(), name, RRF_RT_REG_DWORD, nullptr, &number, &size);
    return number;
}

bool keyExists(const std::wstring& key) {
    HKEY opened = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, key.c_str(), 0, KEY_READ, &opened) != ERROR_SUCCESS)
        return false;
    RegCloseKey(opened);
    return true;
}

/// A setup that holds temz.exe and all the scripts.
class HowToTest : public SetupTest {
protected:
    void SetUp() override {
        REQUIRES_WINE("installs products and services, and starts programs elevated");
        // The example product, which other tests install in the same place, leaves its user's
        // notes.
        fs::remove_all(company);
        for (const auto& script : fs::directory_iterator(beside(L"how-to")))
            fs::copy_file(script.path(), setup(script.path().filename().wstring()));
    }
    void TearDown() override {
        if (IsSkipped())
            return;
        std::error_code ignored;
        fs::remove_all(company, ignored);
    }

    void succeed(const std::wstring& arguments) const {
        const ProgramRun run = temz(arguments);
        EXPECT_EQ(run.exitCode, 0u) << utf8(arguments);
        EXPECT_EQ(run.error, "");
    }

    /// Runs a command line of the registry.
    void follow(const std::wstring& commandLine) const {
        const HandlePtr process = startProgram(commandLine, folder.path(), {});
        EXPECT_EQ(waitForProgram(process.get()), 0u);
    }

    std::wstring installed(const std::wstring& name) const { return company + L"\\" + name; }

    const std::wstring company = L"C:\\Program Files\\Example Works";
};

TEST(HowToDocumentTest, ShowsTheScriptsAsTheyAreAndNoOthers) {
    const std::string document = readFile(beside(L"how-to.md"));
    const std::string blockStart = "```xml\n";
    int scripts = 0;
    for (const auto& script : fs::directory_iterator(beside(L"how-to"))) {
        const std::string block = blockStart + readFile(script.path().wstring()) + "```\n";
        EXPECT_NE(document.find(block), std::string::npos) << script.path();
        ++scripts;
    }

    int blocks = 0;
    for (size_t found = document.find(blockStart); found != std::string::npos;
         found = document.find(blockStart, found + 1))
        ++blocks;
    EXPECT_EQ(blocks, scripts);
}

TEST_F(HowToTest, KeepsSettingsUntilTheProductIsRemoved) {
    const std::wstring settings = installed(L"Settings\\settings.ini");
    ship(L"program.txt", "1");
    ship(L"settings.ini", "shipped");
    succeed(L"install settings.xml");
    EXPECT_EQ(readFile(settings), "shipped");

    writeFile(settings, "the user's");
    ship(L"program.txt", "2");
    for (const wchar_t* mode : {L"upgrade", L"install"}) {
        succeed(mode + std::wstring(L" settings.xml"));
        EXPECT_EQ(readFile(settings), "the user's");
        EXPECT_EQ(readFile(installed(L"Settings\\program.txt")), "2");
    }

    succeed(L"uninstall settings.xml");
    EXPECT_FALSE(exists(installed(L"Settings")));
}

/// The service of service.xml, as the system knows it.
struct ExampleService {
    static constexpr wchar_t name[] = L"ExampleService";
    static constexpr DWORD gone = 0;

    struct Closer {
        void operator()(SC_HANDLE handle) const { CloseServiceHandle(handle); }
    };
    using Handle = std::unique_ptr<std::remove_pointer_t<SC_HANDLE>, Closer>;

    ExampleService() {
        EXPECT_TRUE(manager) << GetLastError();
        EXPECT_EQ(state(), gone) << "left behind by another test";
    }
    ExampleService(const ExampleService&) = delete;
    ExampleService& operator=(const ExampleService&) = delete;
    ~ExampleService() {
        if (const Handle service = open()) {
            SERVICE_STATUS status;
            ControlService(service.get(), SERVICE_CONTROL_STOP, &status);
            DeleteService(service.get());
        }
    }

    Handle open() const { return Handle(OpenServiceW(manager.get(), name, SERVICE_ALL_ACCESS)); }

    DWORD state() const {
        SERVICE_STATUS status{};
        status.dwCurrentState = gone;
        if (const Handle service = open())
            QueryServiceStatus(service.get(), &status);
        return status.dwCurrentState;
    }

    const Handle manager{OpenSCManagerW(nullptr, nullptr, SC_MANAGER_ALL_ACCESS)};
};

// Wine's sc.exe knows `create`, but not the `config` that the document names for a change.
TEST_F(HowToTest, CreatesAServiceWithQuotationMarksAroundItsPath) {
    const ExampleService service;
    const std::wstring program = installed(L"Service\\service.exe");
    const std::wstring key = L"System\\CurrentControlSet\\Services\\ExampleService";
    fs::copy_file(beside(L"greeter-service.exe"), setup(L"service.exe"));

    for (const wchar_t* mode : {L"install", L"upgrade"}) {
        succeed(mode + std::wstring(L" service.xml"));
        EXPECT_EQ(service.state(), SERVICE_RUNNING);
        EXPECT_EQ(textValue(key, L"ImagePath"), L"\"" + program + L"\"");
        EXPECT_EQ(numberValue(key, L"Start"), SERVICE_AUTO_START);
    }

    succeed(L"uninstall service.xml");
    EXPECT_TRUE(waitUntil([&] { return service.state() == ExampleService::gone; }));
    EXPECT_TRUE(waitUntil([&] { return !exists(installed(L"Service")); }));
}

/// A product that stands in the list of installed programs.
class ProgramListTest : public HowToTest {
protected:
    void SetUp() override {
        HowToTest::SetUp();
        if (IsSkipped())
            return;
        EXPECT_FALSE(keyExists(entry)) << "left behind by another test";
        ship(L"program.txt", "1");
        succeed(L"install program-list.xml");
    }
    void TearDown() override {
        if (!IsSkipped())
            RegDeleteTreeW(HKEY_LOCAL_MACHINE, entry.c_str());
        HowToTest::TearDown();
    }

    void expectNothingLeft() const {
        EXPECT_TRUE(waitUntil([this] { return !keyExists(entry); }));
        EXPECT_TRUE(waitUntil([this] { return !exists(installed(L"Listed")); }));
    }

    const std::wstring entry =
        L"Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Example Works Listed";
};

TEST_F(ProgramListTest, DescribesTheProduct) {
    EXPECT_EQ(textValue(entry, L"DisplayName"), L"Listed");
    EXPECT_EQ(textValue(entry, L"DisplayVersion"), L"1.0");
    EXPECT_EQ(textValue(entry, L"Publisher"), L"Example Works");
    EXPECT_EQ(textValue(entry, L"InstallLocation"), installed(L"Listed\\"));
    EXPECT_GT(numberValue(entry, L"EstimatedSize"), 0u);
    EXPECT_EQ(numberValue(entry, L"NoModify"), 1u);
    EXPECT_EQ(numberValue(entry, L"NoRepair"), 1u);
}

TEST_F(ProgramListTest, RemovesTheProductWithTheProgramThatDoesSo) {
    follow(textValue(entry, L"UninstallString"));

    expectNothingLeft();
}

TEST_F(ProgramListTest, RemovesTheProductQuietly) {
    follow(textValue(entry, L"QuietUninstallString"));

    expectNothingLeft();
}

TEST_F(ProgramListTest, TriesAgainToRemoveWhatIsStillInUse) {
    // The last of its folder, before which the others are removed.
    const std::wstring held = installed(L"Listed\\setup\\uninstall.xml");
    const std::wstring other = installed(L"Listed\\setup\\TEMZC.dll");
    HandlePtr holder = openInput(held);

    follow(textValue(entry, L"QuietUninstallString"));

    for (int tries = 0; tries < 2; ++tries) {
        EXPECT_TRUE(waitUntil([&] { return !exists(other); }));
        EXPECT_TRUE(exists(held));
        writeFile(other, "there again");
    }
    holder.reset();
    expectNothingLeft();
}

TEST_F(ProgramListTest, IsUpgraded) {
    ship(L"program.txt", "2");

    succeed(L"upgrade program-list.xml");

    EXPECT_EQ(readFile(installed(L"Listed\\program.txt")), "2");
    EXPECT_TRUE(keyExists(entry));
}

TEST_F(HowToTest, MakesAnEmptyFolderAndRemovesWhatTheUserPutThere) {
    succeed(L"install folder.xml");
    EXPECT_TRUE(fs::is_empty(installed(L"Folder\\data")));

    writeFile(installed(L"Folder\\data\\own.txt"), "the user's");
    succeed(L"upgrade folder.xml");
    EXPECT_EQ(readFile(installed(L"Folder\\data\\own.txt")), "the user's");

    succeed(L"uninstall folder.xml");
    EXPECT_FALSE(exists(installed(L"Folder")));
}

TEST_F(HowToTest, KeepsTheProductsFolderWhenSomethingElseIsInIt) {
    succeed(L"install folder.xml");
    writeFile(installed(L"Folder\\own.txt"), "the user's");

    succeed(L"uninstall folder.xml");

    EXPECT_FALSE(exists(installed(L"Folder\\data")));
    EXPECT_EQ(readFile(installed(L"Folder\\own.txt")), "the user's");
}

}  // namespace
