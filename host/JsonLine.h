#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <vector>

/// A text as JSON has it.
std::wstring quotedForJson(const std::wstring& text);

/// One object on one line of the standard output, written when its life ends.
class JsonLine {
public:
    explicit JsonLine(const wchar_t* event) { add(L"event", std::wstring(event)); }
    JsonLine(const JsonLine&) = delete;
    JsonLine& operator=(const JsonLine&) = delete;
    ~JsonLine();

    JsonLine& add(const wchar_t* name, const std::wstring& text) {
        return put(name, quotedForJson(text));
    }
    JsonLine& add(const wchar_t* name, std::integral auto number) {
        return put(name, std::to_wstring(number));
    }
    JsonLine& add(const wchar_t* name, bool value) { return put(name, value ? L"true" : L"false"); }
    JsonLine& add(const wchar_t* name, const std::vector<uint64_t>& numbers) {
        std::wstring list;
        for (const uint64_t number : numbers)
            list += (list.empty() ? L"" : L",") + std::to_wstring(number);
        return put(name, L"[" + list + L"]");
    }
    JsonLine& add(const wchar_t* name, const std::vector<std::wstring>& texts) {
        std::wstring list;
        for (const std::wstring& text : texts)
            list += (list.empty() ? L"" : L",") + quotedForJson(text);
        return put(name, L"[" + list + L"]");
    }

private:
    JsonLine& put(const wchar_t* name, const std::wstring& json) {
        members += (members.empty() ? L"" : L",") + quotedForJson(name) + L":" + json;
        return *this;
    }

    std::wstring members;
};
