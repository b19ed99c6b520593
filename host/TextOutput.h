#pragma once

#include <string>

#include "CommandLine.h"
#include "ExitCodes.h"

/// Tells what is wrong, and gives the ending.
Ending endWith(Ending ending, const std::wstring& problem);

/// Writes a text to a file, which is made or replaced, as UTF-8 with the line ends of Windows.
/// Gives why it can't be written; empty when it is.
std::wstring writeTextFile(const std::wstring& path, const std::wstring& text);

/// Gives out what the program was asked for: into a new file, or without one to the standard
/// output. An author may have worked on a file that is there, so it isn't replaced; that it is
/// there, or can't be written, is told.
Ending giveText(const std::wstring& text, const std::wstring& file);

/// How a command ends that would end so, now that it has told what it had to: a command that only
/// tells something isn't carried out where the output couldn't be written, which is told.
Ending endOfTelling(Verb verb, Ending ending);
