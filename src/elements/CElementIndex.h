#pragma once

#include <string>
#include <unordered_map>

#include "elements/raw_installerXML.h"

/// Answers, for one start node, what findElementRecursive answers for the attribute `Id`, without
/// searching the document again each time: the table of all elements that have one is built at the
/// first question. Valid as long as the document's elements and their ids stay as they are.
class CElementIndex {
public:
    /// The first element below `start`, in document order, with this name and `Id`; null if none.
    /// `start` is the same node at every call until clear. Exhausted memory leaves as
    /// std::bad_alloc.
    XmlHandlePtr find(const wchar_t* elementName, const wchar_t* id, const XmlHandle* start);

    void clear();

private:
    void build(XmlHandle start);
    /// Name and id in one, until the next is asked for.
    const std::wstring& keyOf(const wchar_t* elementName, const wchar_t* id);

    bool complete = false;
    std::unordered_map<std::wstring, XmlHandle> elements;
    std::wstring key;
};
