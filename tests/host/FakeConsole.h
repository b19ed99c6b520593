#pragma once

#include <cstddef>
#include <deque>
#include <string>

/// What stands in for the console in these tests, new for each test that makes one.
class FakeConsole {
public:
    FakeConsole();
    FakeConsole(const FakeConsole&) = delete;
    FakeConsole& operator=(const FakeConsole&) = delete;
    ~FakeConsole();

    bool terminal = true;
    bool someoneAnswers = true;
    size_t width = 60;
    unsigned long outputError = 0;     ///< with which something couldn't be written
    int droppings = 0;                 ///< of what was typed ahead
    std::deque<std::wstring> answers;  ///< lines that the user types, then the input ends

    std::wstring output;
    std::wstring error;
    std::wstring shown;  ///< both, in the order of writing
};
