#include "author/check/ScriptText.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
constexpr size_t longestLine = 1000;

std::string asParsed(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size());
    for (size_t i = 0; i < bytes.size() && bytes[i] != '\0'; ++i) {
        const bool isReturn = bytes[i] == '\r';
        text += isReturn ? '\n' : bytes[i];
        if (isReturn && i + 1 < bytes.size() && bytes[i + 1] == '\n')
            ++i;
    }
    return text;
}

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

bool isWellFormedUtf8(const std::string& text) {
    const auto size = static_cast<int>(text.size());
    return size == 0 ||
           MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), size, nullptr, 0) != 0;
}

}  // namespace

size_t utf8Length(char first) {
    const auto byte = static_cast<unsigned char>(first);
    if (byte < 0xC2 || byte > 0xF4)
        return 1;
    return byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
}

std::optional<ScriptText> ScriptText::read(const std::wstring& file) {
    std::ifstream stream(std::filesystem::path(file), std::ios::binary);
    if (!stream)
        return {};
    const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
    if (stream.bad())
        return {};
    return ScriptText(bytes);
}

ScriptText::ScriptText(std::string_view bytes) : text(asParsed(bytes)) {
    lineStarts.push_back(text.starts_with(byteOrderMark) ? byteOrderMark.size() : 0);
    for (size_t i = 0; i < text.size(); ++i)
        if (text[i] == '\n')
            lineStarts.push_back(i + 1);
    ascii = std::all_of(text.begin() + static_cast<ptrdiff_t>(lineStarts.front()), text.end(),
                        [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
    utf8 = isWellFormedUtf8(text);
    cutShort = bytes.find('\0') != std::string_view::npos;
}

size_t ScriptText::lineOf(size_t offset) const {
    const auto behind = std::upper_bound(lineStarts.begin() + 1, lineStarts.end(), offset);
    return static_cast<size_t>(behind - lineStarts.begin()) - 1;
}

std::string_view ScriptText::lineBytes(size_t index) const {
    const size_t start = lineStarts[index];
    const size_t end = index + 1 < lineStarts.size() ? lineStarts[index + 1] - 1 : text.size();
    return std::string_view(text).substr(start, end - start);
}

std::wstring ScriptText::wide(std::string_view part) const {
    const UINT codePage = utf8 ? CP_UTF8 : CP_ACP;
    const auto size = static_cast<int>(part.size());
    const int length =
        size == 0 ? 0 : MultiByteToWideChar(codePage, 0, part.data(), size, nullptr, 0);
    std::wstring result(static_cast<size_t>(length), L'\0');
    if (length > 0)
        MultiByteToWideChar(codePage, 0, part.data(), size, result.data(), length);
    return result;
}

uint32_t ScriptText::lineNumberOf(Span span) const {
    return static_cast<uint32_t>(lineOf(span.offset) + 1);
}

std::wstring ScriptText::line(uint32_t number) const {
    const std::string_view bytes = lineBytes(number - 1);
    return bytes.size() > longestLine ? L"" : wide(bytes);
}

Place ScriptText::Places::next(Span span) {
    const size_t index = script.lineOf(span.offset);
    const size_t lineStart = script.lineStarts[index];
    const std::string_view line = script.lineBytes(index);
    if (reached < lineStart) {
        reached = lineStart;
        unitsBefore = 0;
    }
    const size_t start = std::clamp(span.offset, lineStart, lineStart + line.size());
    unitsBefore += script.wide(line.substr(reached - lineStart, start - reached)).size();
    reached = start;
    return {static_cast<uint32_t>(index + 1), static_cast<uint32_t>(unitsBefore + 1),
            static_cast<uint32_t>(script.wide(line.substr(start - lineStart, span.length)).size())};
}

Span ScriptText::spanAt(size_t line, size_t column, bool utf8Columns) const {
    const size_t index = std::clamp<size_t>(line, 1, lineStarts.size()) - 1;
    const std::string_view bytes = lineBytes(index);
    size_t offset = 0;
    for (size_t left = column; left > 1 && offset < bytes.size(); --left) {
        ++offset;
        while (utf8Columns && offset < bytes.size() && isContinuation(bytes[offset]))
            ++offset;
    }
    return {lineStarts[index] + offset, offset < bytes.size() ? 1U : 0U};
}
