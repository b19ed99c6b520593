#pragma once

#include <string>

/// Where a program writes to, and where it is answered from.
enum class Stream { output, error };

bool isTerminal(Stream stream);

/// Whether somebody can answer: the input is a terminal, and a question on the error stream comes
/// to one that somebody sees.
bool canAsk();

/// Writes a text: to a terminal as it is, to anything else as UTF-8 with the line ends of Windows.
/// What is for a stream that the program hasn't got is for nobody.
void write(Stream stream, const std::wstring& text);

/// The same of a text in ASCII, for those who have no memory left.
void writeWithoutMemory(Stream stream, const wchar_t* text);

/// The system's error code of the first text that couldn't be written to the output; 0 while all
/// has been.
unsigned long outputError();

/// Reads one line from the terminal. False when there is none any more, or Ctrl+Z in it.
bool readLine(std::wstring& line);

/// Whether the output goes to a terminal that understands control sequences for colours; has it do
/// so.
bool canShowColours();

/// Columns of the terminal that the output goes to.
size_t terminalWidth();

/// Forgets what has been typed so far, lest it answer a question that comes later.
void dropTypedAhead();

/// For its life, a click into the console's window marks no text, which would halt whoever writes.
/// There is one object of this class at a time.
class QuickEditOff {
public:
    QuickEditOff();
    QuickEditOff(const QuickEditOff&) = delete;
    QuickEditOff& operator=(const QuickEditOff&) = delete;
    ~QuickEditOff();
};

/// What the end of a QuickEditOff does; for a process that ends without one. On any thread.
void restoreConsole();
