#pragma once

#include <span>
#include <string>

/// A message of the engine's, or a part of it that no other has, with its cause and what to do.
struct MessageRow {
    const wchar_t* part;
    const wchar_t* cause;
    const wchar_t* nextStep;
};
std::span<const MessageRow> explainedMessages();

/// What `temz explain` says of a code or a text; empty when nothing is known of it.
std::wstring explain(const std::wstring& subject);

/// The table of exit codes as `temz help codes` shows it.
std::wstring exitCodeTable();
