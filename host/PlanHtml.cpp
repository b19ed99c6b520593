#include "PlanHtml.h"

#include <array>

#include "PlanTree.h"
#include "PlanWords.h"
#include "author/Markup.h"

namespace {

/// What the lines can be chosen by, in the order of the page.
struct Filter {
    const wchar_t* area;
    const wchar_t* label;
};
constexpr Filter filters[] = {
    {L"file", L"Files"},        {L"registry", L"Registry"}, {L"service", L"Services"},
    {L"program", L"Programs"},  {L"failure", L"Failures"},  {L"condition", L"Conditions"},
    {L"left-out", L"Left out"}, {L"caution", L"Cautions"},  {L"idle", L"Nothing to do"},
};

constexpr wchar_t style[] =
    LR"css(
:root { color-scheme: light dark; --line: #8884; --add: #16794c; --change: #8a5a00; --remove: #b3261e;
        --wait: #8b2fa0; --run: #0b6b8a; --soft: #6b7280; }
@media (prefers-color-scheme: dark) { :root { --add: #5fd39a; --change: #f0b94d; --remove: #ff8a80;
        --wait: #e39bf5; --run: #6fd3f2; --soft: #9aa3af; } }
* { box-sizing: border-box; }
body { font: 15px/1.5 system-ui, "Segoe UI", sans-serif; margin: 0 auto; max-width: 76rem; padding: 1.2rem; }
h1 { font-size: 1.3rem; margin: 0 0 .3rem; overflow-wrap: anywhere; }
.summary { margin: 0 0 .4rem; font-weight: 600; }
.facts { color: var(--soft); font-size: .85rem; margin: 0 0 1rem; overflow-wrap: anywhere; }
form { position: sticky; top: 0; background: Canvas; border-bottom: 1px solid var(--line);
       padding: .6rem 0; display: flex; flex-wrap: wrap; gap: .4rem .9rem; align-items: center; }
fieldset { border: 0; margin: 0; padding: 0; display: flex; flex-wrap: wrap; gap: .2rem .8rem; }
legend { position: absolute; clip-path: inset(50%); }
input[type=search] { font: inherit; padding: .3rem .5rem; flex: 1 1 14rem; min-width: 0; }
#shown { color: var(--soft); font-size: .85rem; }
ol { list-style: none; margin: .8rem 0; padding: 0; }
li { display: grid; grid-template-columns: 1.4rem minmax(0, 3fr) minmax(0, 2fr); gap: 0 .8rem;
     padding: .15rem .3rem .15rem calc(.3rem + var(--depth) * 1.1rem); border-bottom: 1px solid var(--line); }
li[hidden] { display: none; }
li > span { overflow-wrap: anywhere; }
.symbol { font-weight: 700; font-family: ui-monospace, Consolas, monospace; }
.group .object { font-weight: 600; }
.effect, .place { color: var(--soft); }
.place { font-size: .75rem; margin-left: .5rem; white-space: nowrap; }
.add .symbol { color: var(--add); } .change .symbol { color: var(--change); }
.remove .symbol { color: var(--remove); } .wait .symbol { color: var(--wait); }
.run .symbol, .unknown .symbol { color: var(--run); }
.failure .object, .failure .symbol { color: var(--remove); font-weight: 600; }
:focus-visible { outline: 2px solid Highlight; outline-offset: 2px; }
@media (max-width: 40rem) {
  body { padding: .8rem; }
  li { grid-template-columns: 1.2rem minmax(0, 1fr); padding-left: calc(.2rem + var(--depth) * .6rem); }
  .effect { grid-column: 2; font-size: .85rem; }
}
@media print { form { display: none; } }
)css";

constexpr wchar_t script[] =
    LR"js(
(function () {
  const form = document.querySelector("form");
  const search = document.getElementById("search");
  const boxes = Array.from(form.querySelectorAll("input[type=checkbox]"));
  const lines = Array.from(document.querySelectorAll("li"));
  const depths = lines.map(line => Number(line.dataset.depth));
  function apply() {
    const areas = new Set(boxes.filter(box => box.checked).map(box => box.value));
    const words = search.value.toLowerCase().split(/\s+/).filter(word => word);
    const hits = lines.map(line => {
      const area = line.dataset.area;
      if (area !== "group" && !areas.has(area)) return false;
      if (area === "group" && words.length === 0) return false;
      const text = line.textContent.toLowerCase();
      return words.every(word => text.includes(word));
    });
    // What stands around a line that is shown is shown, too.
    const shown = hits.slice();
    let depth = -1;
    for (let i = lines.length - 1; i >= 0; --i) {
      if (hits[i]) {
        depth = depth < 0 ? depths[i] : Math.min(depth, depths[i]);
      } else if (depth > depths[i] && lines[i].hasAttribute("data-holds")) {
        shown[i] = true;
      }
      if (shown[i]) depth = depths[i];
    }
    lines.forEach((line, i) => { line.hidden = !shown[i]; });
    const count = hits.filter(hit => hit).length;
    document.getElementById("shown").textContent = count + (count === 1 ? " line" : " lines");
  }
  form.hidden = false;
  form.addEventListener("input", apply);
  form.addEventListener("submit", event => event.preventDefault());
  if (location.hash.length > 1) {
    const wanted = new URLSearchParams(location.hash.slice(1));
    if (wanted.has("search")) search.value = wanted.get("search");
    if (wanted.has("show")) {
      const areas = wanted.get("show").split(",");
      boxes.forEach(box => { box.checked = areas.includes(box.value); });
    }
  }
  apply();
})();
)js";

std::wstring span(const wchar_t* name, const std::wstring& content) {
    return std::wstring(L"<span class=\"") + name + L"\">" + content + L"</span>";
}

std::wstring classesOf(const PlanLine& line) {
    const SignWords* sign = findSign(line.symbol);
    return sign ? std::wstring(line.area) + L" " + sign->pageClass : line.area;
}

bool holdsOthers(const PlanLine& line) {
    const std::wstring area = line.area;
    return area == L"group" || area == L"condition";
}

std::wstring lineHtml(const PlanLine& line) {
    const std::wstring depth = std::to_wstring(line.depth);
    const std::wstring place =
        line.scriptLine == 0 ? L"" : span(L"place", L"line " + std::to_wstring(line.scriptLine));
    return L"<li class=\"" + classesOf(line) + L"\" data-area=\"" + line.area +
           L"\" data-depth=\"" + depth + L"\" style=\"--depth: " + depth + L"\"" +
           (holdsOthers(line) ? L" data-holds" : L"") + L">" +
           span(L"symbol", escapedForMarkup(std::wstring(1, line.symbol))) +
           span(L"object", escapedForMarkup(line.object) + place) +
           span(L"effect", escapedForMarkup(line.effect)) + L"</li>\n";
}

/// One box for each kind of line that there is.
std::wstring formHtml(const std::vector<PlanLine>& lines) {
    std::wstring boxes;
    for (const Filter& filter : filters) {
        size_t count = 0;
        for (const PlanLine& line : lines)
            count += std::wstring(filter.area) == line.area;
        if (count > 0)
            boxes += std::wstring(L"<label><input type=\"checkbox\" value=\"") + filter.area +
                     L"\" checked> " + filter.label + L" (" + std::to_wstring(count) +
                     L")</label>\n";
    }
    return L"<form hidden role=\"search\"><input type=\"search\" id=\"search\" "
           L"aria-label=\"Search the plan\" placeholder=\"Search\">\n"
           L"<fieldset><legend>Show</legend>\n" +
           boxes + L"</fieldset><output id=\"shown\"></output></form>\n";
}

}  // namespace

std::wstring planHtml(const Plan& plan) {
    const PlanHeader& header = plan.header;
    const std::vector<PlanLine> lines = linesOf(plan);
    const std::wstring headline = escapedForMarkup(headlineOf(header));
    std::wstring html =
        L"<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        L"<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
        L"<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
        L"style-src 'unsafe-inline'; script-src 'unsafe-inline'\">\n<title>Plan: " +
        headline + L"</title>\n<style>" + style + L"</style>\n</head>\n<body>\n<main>\n<h1>" +
        headline + L"</h1>\n<p class=\"summary\">" +
        escapedForMarkup(summaryTextOf(summaryOf(plan))) + L"</p>\n<p class=\"facts\">" +
        escapedForMarkup(header.script) + L"<br>SHA-256 " + escapedForMarkup(header.scriptHash) +
        L"<br>temz " + escapedForMarkup(header.version) + L"</p>\n" + formHtml(lines) + L"<ol>\n";
    for (const PlanLine& line : lines)
        html += lineHtml(line);
    return html + L"</ol>\n</main>\n<script>" + script + L"</script>\n</body>\n</html>\n";
}
