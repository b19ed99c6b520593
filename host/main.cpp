// Runs an install script from the command line, and shows how a host uses the engine.

#include <windows.h>

#include <temz/IterfaceContext.h>
#include <temz/IterfaceProduct.h>

#include <memory>
#include <string>

#include "CommandLine.h"
#include "Console.h"
#include "ConsoleObserver.h"
#include "Messages.h"
#include "SafeStart.h"
#include "ScriptFile.h"

namespace {

// The codes that deployment systems know from winerror.h.
enum ExitCode : int {
    EXIT_DONE = ERROR_SUCCESS,                            // 0
    EXIT_RESTART_NEEDED = ERROR_SUCCESS_REBOOT_REQUIRED,  // 3010
    EXIT_USER_ABORT = ERROR_INSTALL_USEREXIT,             // 1602
    EXIT_RUN_FAILED = ERROR_INSTALL_FAILURE,              // 1603
    EXIT_NOT_OPENED = ERROR_INSTALL_PACKAGE_OPEN_FAILED,  // 1619
    EXIT_NOT_LOADED = ERROR_INSTALL_PACKAGE_INVALID,      // 1620
    EXIT_BAD_COMMAND = ERROR_INVALID_COMMAND_LINE,        // 1639
};

/// The engine frees only its own memory, so the script is unloaded first.
struct ContextDeleter {
    void operator()(IterfaceContext* context) const {
        context->unload();
        FreeContextObject(context);
    }
};
using ContextPtr = std::unique_ptr<IterfaceContext, ContextDeleter>;

void reportError(const std::wstring& text) {
    write(Stream::error, L"temz: " + text + L"\n");
}

int runScript(IterfaceContext& context, const CommandLine& command) {
    IterfaceProduct* product = context.getProduct();
    ConsoleObserver observer(command.onError);
    product->observer = &observer;
    const int32_t result = product->run(&context);
    product->observer = nullptr;
    observer.finish(result == 0);

    if (result != 0) {
        if (!observer.failureReported())
            reportError(describeFailure(product->errorInfo));
        return observer.abortedByUser() ? EXIT_USER_ABORT : EXIT_RUN_FAILED;
    }
    if (product->rebootRequired) {
        write(Stream::output, L"Restart the machine to finish.\n");
        return EXIT_RESTART_NEEDED;
    }
    return EXIT_DONE;
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
    const SafeStart safeStart;
    if (asksForHelp(count, arguments)) {
        write(Stream::output, usage);
        return EXIT_DONE;
    }
    std::wstring problem;
    const auto command = readCommandLine(count, arguments, problem);
    if (!command) {
        reportError(problem);
        write(Stream::error, usage);
        return EXIT_BAD_COMMAND;
    }
    problem = findOpenProblem(command->script);
    if (!problem.empty()) {
        reportError(command->script + L" can't be opened: " + problem);
        return EXIT_NOT_OPENED;
    }
    problem = findReadingProblem(command->script);
    if (!problem.empty())
        reportError(command->script + L" may be misread: " + problem);
    const ContextPtr context(CreateContextObject());
    if (!context) {
        reportError(L"There isn't enough memory.");
        return EXIT_RUN_FAILED;
    }
    context->runMode = command->mode;
    if (!context->load(command->script.c_str())) {
        const std::wstring reason = context->getLastError();
        reportError(command->script + L" can't be loaded: " +
                    (reason.empty() ? L"It is no XML that the engine can read." : reason));
        return EXIT_NOT_LOADED;
    }
    return runScript(*context, *command);
}
