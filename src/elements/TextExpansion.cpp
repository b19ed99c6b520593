#include "elements/TextExpansion.h"

#include <utility>

#include "elements/MakingScope.h"
#include "engine/CContext.h"

namespace {

constexpr size_t none = std::wstring::npos;

/// The opener or closer at a place, where the end of the text counts as NUL.
wchar_t markAt(const std::wstring& text, size_t index) {
    return index < text.size() ? text[index] : L'\0';
}

/// Resolves the reference from `start` to the mark at `end`. `start` becomes the start of the next
/// reference when the closing mark opens one, otherwise none.
bool resolveReference(const std::wstring& text, size_t& start, size_t end, CContext& context,
                      std::wstring& value) {
    const wchar_t opener = text[start];
    const wchar_t closer = markAt(text, end);
    const std::wstring name = text.substr(start + 1, end - start - 1);
    start = none;

    if (name.empty()) {
        value = closer;
        return opener == L'#' && closer != L'\0';
    }
    if ((opener == L'[') != (closer == L']'))
        return false;
    if (opener == L'#' && closer != L'\0')
        start = end;
    const bool found = opener == L'[' ? context.getDirectory(value, name.c_str())
                                      : context.getVariable(value, name.c_str());
    return found && MakingScope::countReference(value.size());
}

}  // namespace

bool expandText(std::wstring& text, CContext& context, std::wstring& message) {
    if (text.find_first_of(L"#[]") == none)
        return true;
    std::wstring result;
    size_t start = none;
    for (size_t i = 0; i <= text.size(); ++i) {
        const wchar_t mark = markAt(text, i);
        const bool atEnd = i == text.size();
        const bool isMark = atEnd || mark == L'#' || mark == L'[' || mark == L']';

        if (start != none && isMark) {
            const size_t opened = start;
            std::wstring value;
            if (!resolveReference(text, start, i, context, value)) {
                message.assign(text, opened, i - opened + 1) += L" mismatch.";
                return false;
            }
            message.clear();
            if (result.empty())
                result = std::move(value);
            else
                result += value;
        } else if (mark == L']') {
            message = L"] can't be the first";
            return false;
        } else if (start == none && isMark && !atEnd) {
            start = i;
        } else if (start == none && !atEnd) {
            result += mark;
        }
    }
    text = std::move(result);
    return true;
}
