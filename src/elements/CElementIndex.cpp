#include "elements/CElementIndex.h"

#include <utility>

#include "elements/Vocabulary.h"

XmlHandlePtr CElementIndex::find(const wchar_t* elementName, const wchar_t* id,
                                 const XmlHandle* start) {
    if (!elementName || !id || !start)
        return nullptr;
    if (!complete)
        build(*start);
    const auto found = elements.find(keyOf(elementName, id));
    return found == elements.end() ? nullptr : std::make_unique<XmlHandle>(found->second);
}

// Gives the storage back too, which an assignment alone would keep: nothing releases it once the
// host has freed the context.
void CElementIndex::clear() {
    std::exchange(*this, {});
}

// In the order of the search, of equals the first stays. A table without some elements would hide
// them from every later question.
void CElementIndex::build(XmlHandle start) {
    elements.clear();
    visitElements(start, [this](XmlHandle element) {
        const PassingText name(elementNameOf(element));
        const PassingText id(attributeOf(element, idAttribute));
        if (name && id)
            elements.try_emplace(keyOf(name.get(), id.get()), element);
    });
    complete = true;
}

// No text of a script holds a NUL, so no two pairs share a key.
const std::wstring& CElementIndex::keyOf(const wchar_t* elementName, const wchar_t* id) {
    key.assign(elementName).append(1, L'\0').append(id);
    return key;
}
