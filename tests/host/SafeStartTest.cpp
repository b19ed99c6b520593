#include "host/SafeStart.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

#include "support/FakeCall.h"

using testing::ElementsAre;

namespace {

/// A Windows that lists in their order the calls of a safe start.
class SafeStartTest : public testing::Test {
protected:
    SafeStartTest() { windows = this; }

    static inline SafeStartTest* windows;

    std::vector<std::string> calls;
    bool hasDirectories = true;
    BOOL directoriesSet = TRUE;
    bool hasPolicies = true;
    BOOL policySet = TRUE;
    HRESULT comStarted = S_OK;

private:
    static BOOL WINAPI setDefaultDllDirectories(DWORD flags) {
        windows->calls.push_back("SetDefaultDllDirectories " + std::to_string(flags));
        return windows->directoriesSet;
    }

    static BOOL WINAPI setProcessMitigationPolicy(int policy, const DWORD* flags, SIZE_T size) {
        windows->calls.push_back("SetProcessMitigationPolicy " + std::to_string(policy) + " " +
                                 std::to_string(*flags) + " of " + std::to_string(size));
        return windows->policySet;
    }

    template <class Function>
    static FARPROC addressOf(Function* function) {
        return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(function));
    }

    FARPROC find(const std::string& name) const {
        if (hasDirectories && name == "SetDefaultDllDirectories")
            return addressOf(&setDefaultDllDirectories);
        if (hasPolicies && name == "SetProcessMitigationPolicy")
            return addressOf(&setProcessMitigationPolicy);
        return nullptr;
    }

    const HMODULE kernel = reinterpret_cast<HMODULE>(0x12);

    const FakeCall<startCalls, &StartCalls::SetErrorMode> hearErrorMode{[this](UINT mode) {
        calls.push_back("SetErrorMode " + std::to_string(mode));
        return UINT{0};
    }};
    const FakeCall<startCalls, &StartCalls::GetModuleHandleW> findModule{
        [this](const wchar_t* name) {
            EXPECT_STREQ(name, L"kernel32.dll");
            return kernel;
        }};
    const FakeCall<startCalls, &StartCalls::GetProcAddress> findAddress{
        [this](HMODULE module, const char* name) {
            EXPECT_EQ(module, kernel);
            return find(name);
        }};
    const FakeCall<startCalls, &StartCalls::SetDllDirectoryW> hearDirectory{
        [this](const wchar_t* path) {
            EXPECT_STREQ(path, L"");
            calls.push_back("SetDllDirectoryW");
            return TRUE;
        }};
    const FakeCall<startCalls, &StartCalls::CoInitializeEx> startCom{
        [this](void* reserved, DWORD kind) {
            EXPECT_EQ(reserved, nullptr);
            calls.push_back("CoInitializeEx " + std::to_string(kind));
            return comStarted;
        }};
    const FakeCall<startCalls, &StartCalls::CoUninitialize> endCom{
        [this] { calls.push_back("CoUninitialize"); }};
};

constexpr auto errorMode = "SetErrorMode 32771";
constexpr auto directories = "SetDefaultDllDirectories 2048";
constexpr auto policy = "SetProcessMitigationPolicy 16 1 of 4";
constexpr auto com = "CoInitializeEx 6";

TEST_F(SafeStartTest, BeginsWithTheBoxesAndEndsWithCom) {
    {
        const SafeStart start;
        EXPECT_THAT(calls, ElementsAre(errorMode, directories, policy, com));
    }
    EXPECT_THAT(calls, ElementsAre(errorMode, directories, policy, com, "CoUninitialize"));
}

TEST_F(SafeStartTest, LeavesOutAtLeastTheCurrentDirectory) {
    for (const bool there : {false, true}) {
        hasDirectories = there;
        directoriesSet = FALSE;
        calls.clear();

        const SafeStart start;

        std::erase(calls, directories);
        EXPECT_THAT(calls, ElementsAre(errorMode, "SetDllDirectoryW", policy, com));
    }
}

TEST_F(SafeStartTest, GoesOnWhereJunctionsCannotBeDistrusted) {
    for (const bool there : {false, true}) {
        hasPolicies = there;
        policySet = FALSE;
        calls.clear();

        const SafeStart start;

        std::erase(calls, policy);
        EXPECT_THAT(calls, ElementsAre(errorMode, directories, com));
    }
}

TEST_F(SafeStartTest, TakesBackItsOwnInitialisationOnly) {
    const struct {
        HRESULT started;
        int ended;
    } results[] = {{S_OK, 1}, {S_FALSE, 1}, {RPC_E_CHANGED_MODE, 0}, {E_OUTOFMEMORY, 0}};
    for (const auto& [started, ended] : results) {
        comStarted = started;
        calls.clear();

        { const SafeStart start; }

        EXPECT_EQ(std::count(calls.begin(), calls.end(), "CoUninitialize"), ended) << started;
    }
}

}  // namespace
