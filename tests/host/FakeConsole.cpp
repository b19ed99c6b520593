#include "FakeConsole.h"

#include "host/Console.h"

namespace {

FakeConsole* console = nullptr;

}  // namespace

FakeConsole::FakeConsole() {
    console = this;
}

FakeConsole::~FakeConsole() {
    console = nullptr;
}

bool isTerminal(Stream) {
    return console->terminal;
}

bool canShowColours() {
    return console->terminal;
}

bool canAsk() {
    return console->someoneAnswers;
}

void write(Stream stream, const std::wstring& text) {
    (stream == Stream::output ? console->output : console->error) += text;
    console->shown += text;
}

unsigned long outputError() {
    return console->outputError;
}

void writeWithoutMemory(Stream stream, const wchar_t* text) {
    write(stream, text);
}

bool readLine(std::wstring& line) {
    if (console->answers.empty())
        return false;
    line = console->answers.front();
    console->answers.pop_front();
    return true;
}

size_t terminalWidth() {
    return console->width;
}

void dropTypedAhead() {
    ++console->droppings;
}

QuickEditOff::QuickEditOff() = default;

QuickEditOff::~QuickEditOff() = default;

void restoreConsole() {}
