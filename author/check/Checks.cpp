#include "author/check/Checks.h"

Span Action::placeOf(std::wstring_view attribute) const {
    const AttributeNode* own = node.find(attribute);
    return own ? own->valuePlace : node.place;
}

void Action::tellFailure(Fault fault, Span place, const std::wstring& what, std::wstring help,
                         Modes modes, bool always) const {
    if ((visit.possible & modes) == 0)
        return;
    const KnownText* vital = text(L"Vital");
    if (vital && vital->exact && vital->text != yesKeyword) {
        checked.report.tellOf(Fault::hiddenFailure, place,
                              what + L" This fails each time, and Vital hides it.",
                              std::move(help));
        return;
    }
    const bool surely = always && (visit.sure & modes) != 0 && (!vital || vital->exact);
    checked.report.tell(fault, place, surely, what, std::move(help));
}

void Action::tellLength(Fault fault, Fault likely, Span place, const KnownText& text, size_t limit,
                        Modes modes) const {
    if ((visit.possible & modes) == 0 || text.longest < limit)
        return;
    const bool always = text.shortest >= limit;
    const std::wstring room =
        L" characters; there is room for " + std::to_wstring(limit - 1) + L".";
    if (always)
        checked.report.tell(fault, place, (visit.sure & modes) != 0,
                            L"The text has at least " + std::to_wstring(text.shortest) + room +
                                L" The process would end.");
    else
        checked.report.tellOf(likely, place,
                              L"The text may have " + std::to_wstring(text.longest) + room);
}

ActionCode actionOf(const MadeElement& element, std::span<const ActionKeyword> keywords) {
    const KnownText* text = element.find(L"Action");
    const ActionKeyword* keyword =
        text && text->exact ? findKeyword(keywords, text->text) : nullptr;
    return keyword ? keyword->action : ActionCode{};
}
