#pragma once

class Report;
class ScriptText;
class TiXmlDocument;

/// How a script is mended of which a NUL has left nothing to read.
inline constexpr wchar_t cutShortHelp[] =
    L"save the script as UTF-8: it is read up to its first NUL, and UTF-16 is full of them.";

/// Parses a script as the engine does. False, with what is wrong told, when the engine wouldn't
/// load it for its XML.
bool parseScript(const ScriptText& script, TiXmlDocument& document, Report& report);
