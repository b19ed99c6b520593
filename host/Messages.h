#pragma once

#include <temz/IterfaceProduct.h>

#include <string>

/// The action with its texts: "Copying app.exe".
std::wstring describeAction(uint32_t code, const wchar_t* text1, const wchar_t* text2);

/// What failed, on which object, and why: "Copying app.exe failed: Access denied. (error 5)".
std::wstring describeFailure(const ErrorInfo& error);

/// The system's message for an error code, with the code: "Access denied. (error 5)".
std::wstring describeSystemError(uint32_t code);
