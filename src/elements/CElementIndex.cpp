#include "elements/CElementIndex.h"

namespace {

/// Name and id in one key. No text of a script holds a NUL, so no two pairs share a key.
std::wstring keyOf(const wchar_t* elementName, const wchar_t* id) {
    std::wstring key = elementName;
    key += L'\0';
    key += id;
    return key;
}

}  // namespace

XmlHandlePtr CElementIndex::find(const wchar_t* elementName, const wchar_t* id,
                                 const XmlHandle* start) {
    if (!elementName || !id || !start)
        return nullptr;
    if (!built) {
        add(start);
        built = true;
    }
    const auto found = elements.find(keyOf(elementName, id));
    return found == elements.end() ? nullptr : copyHandle(found->second);
}

// Gives the storage back too: nothing releases it once the host has freed the context.
void CElementIndex::clear() {
    *this = {};
}

// In the order of the search: each element before its descendants, and of equals the first stays.
void CElementIndex::add(const XmlHandle* parent) {
    for (XmlHandlePtr child = getFirstChildElement(parent); child;
         child = getNextSiblingElement(child.get())) {
        const WideText name = getElementName(child.get());
        std::wstring id;
        if (name && getAttributeText(child.get(), L"Id", id))
            elements.try_emplace(keyOf(name.get(), id.c_str()), *child);
        add(child.get());
    }
}
