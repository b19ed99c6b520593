#pragma once

#include <windows.h>

#include <string>

#include "HostProgram.h"

/// A desktop that nobody sees, of which there is one at a time: programs can have windows there
/// also where no screen is.
class PrivateDesktop {
public:
    PrivateDesktop();
    PrivateDesktop(const PrivateDesktop&) = delete;
    PrivateDesktop& operator=(const PrivateDesktop&) = delete;
    ~PrivateDesktop();

    HandlePtr start(const std::wstring& commandLine, const std::wstring& directory,
                    const Streams& streams) const;

    /// The window of this class; null when there is none.
    HWND findWindow(const std::wstring& windowClass) const;

private:
    HWINSTA station;
    HDESK desktop = nullptr;
};
