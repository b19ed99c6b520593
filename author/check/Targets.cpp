#include "author/check/Targets.h"

#include <algorithm>
#include <cwctype>

namespace {

KnownText joined(const KnownText& directory, const KnownText& name) {
    KnownText path = directory;
    path.addSeparator();
    path.append(name);
    return path;
}

}  // namespace

KnownText targetOf(const Action& action) {
    KnownText path = joined(*action.text(pathAttribute), *action.text(L"Name"));
    if (action.is(shortcutKind))
        path.append(L".lnk");
    return path;
}

KnownText keyPathOf(const Action& action) {
    return joined(*action.text(L"Root"), *action.text(L"Key"));
}

bool holdsWholePath(const Action& action, const wchar_t* attribute, const KnownText& text) {
    if (text.opaqueEnd > 0 || text.text.starts_with(L"\\\\"))
        return true;
    const std::vector<TextPiece> pieces = piecesOf(action.node.find(attribute)->value);
    const bool hasDirectory = std::any_of(pieces.begin(), pieces.end(), [](const TextPiece& piece) {
        return piece.meaning == TextPiece::directory;
    });
    return (text.exact || hasDirectory) && text.text.find(L':') != std::wstring::npos;
}

std::wstring normalized(std::wstring_view path) {
    std::wstring result;
    for (const wchar_t letter : path) {
        const bool isSeparator = letter == L'\\' || letter == L'/';
        if (isSeparator && !result.empty() && result.back() == L'\\' && result.size() > 1)
            continue;
        result += isSeparator ? L'\\' : letter;
    }
    while (!result.empty() && result.back() == L'\\')
        result.pop_back();
    return result;
}

std::wstring lowered(std::wstring_view text) {
    std::wstring result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](wchar_t letter) { return static_cast<wchar_t>(std::towlower(letter)); });
    return result;
}

std::wstring_view above(std::wstring_view path) {
    const size_t separator = path.rfind(L'\\');
    return separator == std::wstring_view::npos ? std::wstring_view() : path.substr(0, separator);
}

size_t partsOf(std::wstring_view path) {
    return path.empty() ? 0 : 1 + static_cast<size_t>(std::count(path.begin(), path.end(), L'\\'));
}
