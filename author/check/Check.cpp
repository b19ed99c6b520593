#include <tinyxml.h>

#include "author/check/Report.h"
#include "author/check/ScriptText.h"
#include "author/check/XmlChecks.h"

CheckEnd checkScript(const CheckRequest& request, const std::function<void(const Finding&)>& tell) {
    const std::optional<ScriptText> text = ScriptText::read(request.script);
    if (!text)
        return CheckEnd::notReadable;
    Report report(*text, request.script);
    TiXmlDocument document;
    parseScript(*text, document, report);
    report.handOut(tell);
    return CheckEnd::done;
}
