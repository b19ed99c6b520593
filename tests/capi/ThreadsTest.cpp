// Threads that don't wait for each other: the library sees to it that nothing is lost.

#include <gmock/gmock.h>
#include <windows.h>

#include <functional>
#include <string>
#include <vector>

#include "CHostTest.h"
#include "FailingMalloc.h"

namespace {

/// A thread that does something over and over.
class Worker {
public:
    /// `work` gives whether all was as it should be.
    Worker(int rounds, std::function<bool()> work) : rounds(rounds), work(std::move(work)) {}

    void start() {
        thread = CreateThread(
            nullptr, 0,
            [](void* argument) -> DWORD {
                auto& self = *static_cast<Worker*>(argument);
                for (int round = 0; round < self.rounds; ++round)
                    self.strange += !self.work();
                return 0;
            },
            this, 0, nullptr);
    }
    bool hasEndedWithin(DWORD milliseconds) const {
        return WaitForSingleObject(thread, milliseconds) == WAIT_OBJECT_0;
    }
    void wait() {
        constexpr DWORD patience = 60'000;
        EXPECT_TRUE(hasEndedWithin(patience));
        CloseHandle(thread);
        EXPECT_EQ(strange, 0) << "of " << rounds << " rounds";
    }

private:
    const int rounds;
    const std::function<bool()> work;
    int strange = 0;
    HANDLE thread = nullptr;
};

void workAtOnce(std::vector<Worker> workers) {
    for (Worker& worker : workers)
        worker.start();
    for (Worker& worker : workers)
        worker.wait();
}

/// The status of a call, once no other thread's run turns it away.
template <class Call>
temz_status whenDue(Call call) {
    temz_status status = call();
    for (; status == TEMZ_BUSY; status = call())
        SwitchToThread();
    return status;
}

constexpr int threads = 4;

TEST(ThreadsTest, CallWaitsForThatOfAnotherThread) {
    constexpr DWORD aWhile = 200;  // milliseconds
    temz_context* context = nullptr;
    temz_context* another = nullptr;
    ASSERT_EQ(temz_create(&context), TEMZ_OK);
    const PausedMalloc paused;
    Worker making(1, [&] {
        paused.holdThisThread();
        return temz_create(&another) == TEMZ_OK;
    });
    Worker unloading(1, [&] { return temz_unload(context) == TEMZ_OK; });

    making.start();
    EXPECT_TRUE(paused.waitForThread());
    unloading.start();
    EXPECT_FALSE(unloading.hasEndedWithin(aWhile));

    paused.letGo();
    making.wait();
    unloading.wait();
    EXPECT_EQ(temz_free(another), TEMZ_OK);
    EXPECT_EQ(temz_free(context), TEMZ_OK);
}

// The list of all contexts is one for all threads, and so is the text of an element's failure.
TEST(ThreadsTest, MakeAndAskWithoutDisturbingEachOther) {
    const TestFolder folder;
    const std::wstring script =
        folder.write(L"script.xml",
                     "<S><Variable Id='V' Type='string' Value='v'/><Product><Directory Id='D'/>"
                     "</Product></S>");
    const auto work = [&] {
        constexpr int questions = 50;
        temz_context* context = nullptr;
        wchar_t text[TEMZ_TEXT_LENGTH] = L"";
        bool good =
            temz_create(&context) == TEMZ_OK && temz_load(context, script.c_str()) == TEMZ_OK;
        for (int i = 0; i < questions; ++i) {
            temz_context* another = nullptr;
            good &= temz_create(&another) == TEMZ_OK;
            good &= temz_get_directory(context, L"D", text, TEMZ_TEXT_LENGTH, nullptr) ==
                    TEMZ_NOT_FOUND;
            good &= temz_get_variable(context, L"V", text, TEMZ_TEXT_LENGTH, nullptr) == TEMZ_OK;
            good &= temz_free(another) == TEMZ_OK;
        }
        return temz_free(context) == TEMZ_OK && good;
    };

    workAtOnce(std::vector<Worker>(threads, Worker(100, work)));
}

TEST(ThreadsTest, RunOneAfterTheOther) {
    const TestFolder folder;
    const PayloadFolder payload;
    const std::string source = narrow(payload.write(L"a.txt", "new"));
    std::vector<Worker> workers;
    for (int i = 0; i < threads; ++i) {
        const std::wstring app = folder.path(L"app" + std::to_wstring(i));
        const std::wstring script =
            folder.write(std::to_wstring(i) + L".xml",
                         "<S><Product><Directory Path='" + narrow(app) +
                             "'><Component Id='C'><File Name='a.txt' Source='" + source +
                             "'/></Component></Directory><InstallExecuteSequence><Feature>"
                             "<ComponentRef Id='C'/></Feature></InstallExecuteSequence></Product>"
                             "</S>");
        workers.emplace_back(30, [=] {
            temz_context* context = nullptr;
            const std::wstring file = app + L"\\a.txt";
            const auto run = [&](temz_mode mode) {
                return whenDue([&] { return temz_run(context, mode, nullptr); }) == TEMZ_OK;
            };
            return whenDue([&] { return temz_create(&context); }) == TEMZ_OK &&
                   whenDue([&] { return temz_load(context, script.c_str()); }) == TEMZ_OK &&
                   run(TEMZ_INSTALL) && readFile(file) == "new" && run(TEMZ_UNINSTALL) &&
                   !exists(file) && whenDue([&] { return temz_free(context); }) == TEMZ_OK;
        });
    }

    workAtOnce(std::move(workers));
}

}  // namespace
