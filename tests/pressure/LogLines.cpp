// Writes lines to the engine's log from several threads, as fast as it can. Its argument is its
// name.

#include <cstdlib>
#include <thread>
#include <vector>

#include "logging/Log.h"
#include "pressure/LogText.h"

int wmain(int count, wchar_t** arguments) {
    if (count != 2)
        return EXIT_FAILURE;
    const std::wstring wideName = arguments[1];
    const std::string name(wideName.begin(), wideName.end());
    std::vector<std::thread> threads;
    for (int thread = 0; thread < writingThreads; ++thread)
        threads.emplace_back([&name, thread] {
            for (int line = 0; line < linesOfThread; ++line)
                writeLog(INFO, logText(name, thread, line).c_str());
        });
    for (std::thread& thread : threads)
        thread.join();
    return EXIT_SUCCESS;
}
