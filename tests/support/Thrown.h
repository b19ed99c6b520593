#pragma once

#include <string>

/// The message that an operation throws; "<nothing>" when it throws none.
template <class Operation>
std::wstring thrownBy(Operation operation) {
    try {
        operation();
    } catch (const std::wstring& message) {
        return message;
    }
    return L"<nothing>";
}
