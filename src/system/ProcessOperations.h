#pragma once

#include <cstdint>
#include <string>

/// Finds a running process by the full path of its executable, without regard to case and without
/// normalising either path; the first in snapshot order. True, with `processId` set, when there is
/// one. A base name of 260 characters or more ends the process.
bool findProcessByPath(uint32_t& processId, const wchar_t* path);

/// Reads the path of a process's executable into a buffer of 260 characters; `capacity` is
/// ignored. False when the process can't be inspected.
bool getProcessImagePath(wchar_t* buffer, uint32_t capacity, uint32_t processId);

/// Ends a process with exit code 0. The second argument is ignored. True when the system accepted
/// it; the process may take a moment more to vanish.
bool killProcessById(uint32_t processId, uint32_t ignored);

/// Assigns the system's text for an error code, in the user's language and with the line end that
/// the system puts behind it. Without such a text `message` stays as it is.
void getSystemMessage(uint32_t code, std::wstring& message);
void getSystemMessageNarrow(uint32_t code, std::string& message);
