// Windows has pseudo consoles since 10, and the project asks for what 7 has.
#undef _WIN32_WINNT
#define _WIN32_WINNT 0x0A00
#define NTDDI_VERSION 0x0A000006

#include "PseudoConsole.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

PseudoConsole::PseudoConsole() {
    const HandlePtr shown = openOutput(L"NUL");
    EXPECT_EQ(CreatePseudoConsole({80, 50}, typed.reader.get(), shown.get(), 0, &console), S_OK);
}

PseudoConsole::~PseudoConsole() {
    ClosePseudoConsole(console);
}

HandlePtr PseudoConsole::start(const std::wstring& commandLine,
                               const std::wstring& directory) const {
    SIZE_T size = 0;
    InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
    std::vector<std::byte> attributes(size);
    STARTUPINFOEXW startup{};
    startup.StartupInfo.cb = sizeof startup;
    startup.lpAttributeList = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(attributes.data());
    InitializeProcThreadAttributeList(startup.lpAttributeList, 1, 0, &size);
    EXPECT_TRUE(UpdateProcThreadAttribute(startup.lpAttributeList, 0,
                                          PROC_THREAD_ATTRIBUTE_PSEUDOCONSOLE, console,
                                          sizeof console, nullptr, nullptr));
    HandlePtr program =
        startProgram(commandLine, directory, {}, EXTENDED_STARTUPINFO_PRESENT, startup.StartupInfo);
    DeleteProcThreadAttributeList(startup.lpAttributeList);
    return program;
}
