#include "elements/CElementIndex.h"

#include "elements/Vocabulary.h"

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
    if (!complete && !build(*start))
        return nullptr;
    const auto found = elements.find(keyOf(elementName, id));
    return found == elements.end() ? nullptr : copyHandle(found->second);
}

// Gives the storage back too: nothing releases it once the host has freed the context.
void CElementIndex::clear() {
    *this = {};
}

// In the order of the search, of equals the first stays. A name that can't be had is memory that
// is exhausted: an incomplete table would hide its elements from every later question.
bool CElementIndex::build(const XmlHandle& start) {
    complete = visitElements(start, [this](const XmlHandle& element) {
        const WideText name = getElementName(&element);
        std::wstring id;
        if (name && getAttributeText(&element, idAttribute, id))
            elements.try_emplace(keyOf(name.get(), id.c_str()), element);
        return name != nullptr;
    });
    return complete;
}
