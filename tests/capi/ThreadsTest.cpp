// Threads that don't wait for each other: the library sees to it that nothing is lost.

#include <gmock/gmock.h>
#include <windows.h>

#include <vector>

#include "CHostTest.h"

namespace {

/// A thread with a context and a folder of its own, that does all there is to do, over and over.
class Worker {
public:
    static constexpr int rounds = 40;

    explicit Worker(std::wstring script, std::wstring file)
        : script(std::move(script)), file(std::move(file)) {}

    void start() { thread = CreateThread(nullptr, 0, &Worker::work, this, 0, nullptr); }
    void wait() {
        EXPECT_EQ(WaitForSingleObject(thread, 60'000), WAIT_OBJECT_0);
        CloseHandle(thread);
    }

    int strange = 0;  ///< answers that are none of those told, or that aren't true
    int busy = 0;

private:
    static DWORD WINAPI work(void* argument) {
        auto& self = *static_cast<Worker*>(argument);
        for (int round = 0; round < rounds; ++round)
            self.doRound();
        return 0;
    }

    void doRound() {
        temz_context* context = nullptr;
        until(TEMZ_OK, [&] { return temz_create(&context); });
        until(TEMZ_OK, [&] { return temz_load(context, script.c_str()); });
        wchar_t text[TEMZ_TEXT_LENGTH] = L"";
        until(TEMZ_OK,
              [&] { return temz_get_variable(context, L"V", text, TEMZ_TEXT_LENGTH, nullptr); });
        until(TEMZ_OK, [&] { return temz_run(context, TEMZ_INSTALL, nullptr); });
        strange += readFile(file) != "new";
        until(TEMZ_OK, [&] { return temz_run(context, TEMZ_UNINSTALL, nullptr); });
        strange += exists(file);
        until(TEMZ_OK, [&] { return temz_free(context); });
    }

    /// While another thread runs something, all else is turned away.
    template <class Call>
    void until(temz_status wanted, Call call) {
        temz_status status = call();
        for (; status == TEMZ_BUSY; status = call()) {
            ++busy;
            SwitchToThread();
        }
        strange += status != wanted;
    }

    const std::wstring script;
    const std::wstring file;
    HANDLE thread = nullptr;
};

TEST(ThreadsTest, WithContextsOfTheirOwnDoNotDisturbEachOther) {
    const TestFolder folder;
    const PayloadFolder payload;
    const std::string source = narrow(payload.write(L"a.txt", "new"));
    std::vector<Worker> workers;
    for (const wchar_t* name : {L"1", L"2", L"3", L"4"}) {
        const std::wstring app = folder.path(name);
        const std::wstring script = folder.write(
            std::wstring(name) + L".xml",
            "<S><Variable Id='V' Type='string' Value='v'/><Product><Directory Path='" +
                narrow(app) + "'><Component Id='C'><File Name='a.txt' Source='" + source +
                "'/></Component></Directory><InstallExecuteSequence><Feature>"
                "<ComponentRef Id='C'/></Feature></InstallExecuteSequence></Product>"
                "</S>");
        workers.emplace_back(script, app + L"\\a.txt");
    }
    for (Worker& worker : workers)
        worker.start();
    for (Worker& worker : workers)
        worker.wait();

    for (const Worker& worker : workers)
        EXPECT_EQ(worker.strange, 0);
}

}  // namespace
