#pragma once

class Report;
class ScriptText;
class TiXmlDocument;

/// Parses a script as the engine does. False, with what is wrong told, when the engine wouldn't
/// load it for its XML.
bool parseScript(const ScriptText& script, TiXmlDocument& document, Report& report);
