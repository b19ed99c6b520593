#include <tinyxml.h>

#include <memory>

#include "author/check/Checks.h"
#include "author/check/XmlChecks.h"

namespace {

/// A script that has been read and walked, with all that this needs.
class CheckedScript {
public:
    CheckedScript(const ScriptText& text, const TiXmlDocument& document, Report& report)
        : model(text, document),
          variables(model),
          maker(model, variables, nearMiss),
          walk(model, variables, maker, nearMiss, report),
          checked{model, variables, maker, walk, nearMiss, report} {
        walk.run();
    }
    CheckedScript(const CheckedScript&) = delete;
    CheckedScript& operator=(const CheckedScript&) = delete;

    const Checked& get() const { return checked; }

private:
    NearMiss nearMiss;
    ScriptModel model;
    ScriptVariables variables;
    ElementMaker maker;
    ScriptWalk walk;
    Checked checked;
};

/// The previous version is only compared with: what is wrong with it isn't told.
CheckEnd compareWith(const std::wstring& previous, const Checked& checked) {
    const std::optional<ScriptText> text = ScriptText::read(previous);
    if (!text)
        return CheckEnd::notReadable;
    Report ignored(*text, previous);
    TiXmlDocument document;
    if (!parseScript(*text, document, ignored))
        return CheckEnd::notReadable;
    const CheckedScript script(*text, document, ignored);
    checkUpgrade(checked, script.get());
    return CheckEnd::done;
}

CheckEnd checkParsed(const CheckRequest& request, const ScriptText& text,
                     const TiXmlDocument& document, Report& report) {
    const CheckedScript script(text, document, report);
    const Checked& checked = script.get();
    checkEncoding(checked);
    checkStructure(checked);
    checkAttributes(checked);
    checkKeywords(checked);
    checkTexts(checked);
    checkRegistry(checked);
    checkFiles(checked);
    // What follows asks what a run doesn't do, and so whether what it does could all be seen.
    checkVariables(checked);
    checkBalance(checked);
    checkDirectories(checked);
    checkDangers(checked);
    checkOrder(checked);
    if (!request.payload.empty() && !checkPayload(checked, request))
        return CheckEnd::notReadable;
    return request.previous.empty() ? CheckEnd::done : compareWith(request.previous, checked);
}

}  // namespace

CheckEnd checkScript(const CheckRequest& request, const std::function<void(const Finding&)>& tell) {
    const std::optional<ScriptText> text = ScriptText::read(request.script);
    if (!text)
        return CheckEnd::notReadable;
    Report report(*text, request.script);
    TiXmlDocument document;
    CheckEnd end = CheckEnd::done;
    if (parseScript(*text, document, report))
        end = checkParsed(request, *text, document, report);
    if (end == CheckEnd::done)
        report.handOut(tell);
    return end;
}
