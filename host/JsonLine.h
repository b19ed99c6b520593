#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <vector>

/// A text as JSON writes it, with its quotation marks.
std::wstring jsonText(const std::wstring& text);

/// An object of JSON that grows member by member.
class JsonObject {
public:
    JsonObject& add(const wchar_t* name, const std::wstring& text) {
        return put(name, jsonText(text));
    }
    JsonObject& add(const wchar_t* name, const wchar_t* text) { return put(name, jsonText(text)); }
    JsonObject& add(const wchar_t* name, std::integral auto number) {
        return put(name, std::to_wstring(number));
    }
    JsonObject& add(const wchar_t* name, bool value) {
        return put(name, value ? L"true" : L"false");
    }
    JsonObject& add(const wchar_t* name, const JsonObject& object) {
        return put(name, object.text());
    }
    JsonObject& add(const wchar_t* name, const std::vector<std::wstring>& texts);
    JsonObject& add(const wchar_t* name, const std::vector<uint64_t>& numbers);
    JsonObject& add(const wchar_t* name, const std::vector<JsonObject>& objects);

    std::wstring text() const { return L"{" + members + L"}"; }

private:
    JsonObject& put(const wchar_t* name, const std::wstring& json);

    std::wstring members;
};

/// What the output tells of an event, to which more can be added.
JsonObject jsonEvent(const wchar_t* name);

/// Writes an object on a line of the output.
void writeJsonLine(const JsonObject& object);
