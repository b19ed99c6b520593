#pragma once

#include <string>

/// Where a program writes to, and where it is answered from.
enum class Stream { output, error };

bool isTerminal(Stream stream);

/// Whether somebody can answer: the input is a terminal, and a question on the error stream comes
/// to one that somebody sees.
bool canAsk();

/// Writes a text: to a terminal as it is, to anything else as UTF-8.
void write(Stream stream, const std::wstring& text);

/// Reads one line from the terminal. False when there is none any more.
bool readLine(std::wstring& line);

/// Columns of the terminal that the output goes to.
size_t terminalWidth();
