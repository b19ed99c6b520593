#pragma once

#include <string>

class CContext;

/// Replaces the references in an attribute text by their values: `[id]` by the path of a directory,
/// `#name` by the text of a string variable; `##`, `#[` and `#]` stand for "#", "[" and "]". A
/// `#name` ends at the next "#" or "[", or at the end of the text. Values aren't scanned again.
/// False, with the message and an unchanged text, when a reference can't be resolved,
/// or is one too many for the element that is being made.
bool expandText(std::wstring& text, CContext& context, std::wstring& message);
