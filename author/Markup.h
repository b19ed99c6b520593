#pragma once

#include <string>

/// A text as it stands in XML or HTML: between tags, or in an attribute between double quotes.
/// Control characters, for which there is no place, become blanks.
inline std::wstring escapedForMarkup(const std::wstring& text) {
    std::wstring markup;
    for (const wchar_t unit : text)
        switch (unit) {
            case L'&':
                markup += L"&amp;";
                break;
            case L'<':
                markup += L"&lt;";
                break;
            case L'>':
                markup += L"&gt;";
                break;
            case L'"':
                markup += L"&quot;";
                break;
            default:
                markup += unit < L' ' ? L' ' : unit;
        }
    return markup;
}
