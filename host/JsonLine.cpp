#include "JsonLine.h"

#include "Console.h"

namespace {

template <class Item, class Text>
std::wstring listOf(const std::vector<Item>& items, const Text& textOf) {
    std::wstring list;
    for (const Item& item : items)
        list += (list.empty() ? L"" : L",") + textOf(item);
    return L"[" + list + L"]";
}

}  // namespace

std::wstring jsonText(const std::wstring& text) {
    constexpr wchar_t digits[] = L"0123456789abcdef";
    std::wstring json = L"\"";
    for (const wchar_t unit : text) {
        if (unit == L'"' || unit == L'\\') {
            json += L'\\';
            json += unit;
        } else if (unit < L' ') {
            json += L"\\u00";
            json += digits[unit >> 4];
            json += digits[unit & 15];
        } else {
            json += unit;
        }
    }
    return json + L"\"";
}

JsonObject& JsonObject::add(const wchar_t* name, const std::vector<std::wstring>& texts) {
    return put(name, listOf(texts, jsonText));
}

JsonObject& JsonObject::add(const wchar_t* name, const std::vector<uint64_t>& numbers) {
    return put(name, listOf(numbers, [](uint64_t number) { return std::to_wstring(number); }));
}

JsonObject& JsonObject::add(const wchar_t* name, const std::vector<JsonObject>& objects) {
    return put(name, listOf(objects, [](const JsonObject& object) { return object.text(); }));
}

JsonObject& JsonObject::put(const wchar_t* name, const std::wstring& json) {
    members += (members.empty() ? L"" : L",") + jsonText(name) + L":" + json;
    return *this;
}

JsonObject jsonEvent(const wchar_t* name) {
    return JsonObject().add(L"event", name);
}

void writeJsonLine(const JsonObject& object) {
    write(Stream::output, object.text() + L"\n");
}
