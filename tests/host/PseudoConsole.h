#pragma once

#include <string>

#include "HostProgram.h"

/// A console of 80 columns as terminals and remote shells make one for those who work at them. It
/// has no window that anybody sees; here nobody looks at what it would show either.
class PseudoConsole {
public:
    PseudoConsole();
    PseudoConsole(const PseudoConsole&) = delete;
    PseudoConsole& operator=(const PseudoConsole&) = delete;
    ~PseudoConsole();

    /// Starts a program at this console, without standard streams.
    HandlePtr start(const std::wstring& commandLine, const std::wstring& directory) const;

private:
    const Pipe typed;
    void* console = nullptr;
};
