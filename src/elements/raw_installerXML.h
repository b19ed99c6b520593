#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "system/TextConversion.h"

// The layer over the XML parser. Names and values are wide on this side; on the parser's side they
// are the bytes of the file, taken as text in the active code page whatever the document declares.
// Nothing here reports why it failed: a null or false result is all.

class TiXmlNode;
struct XmlDocument;

struct XmlDocumentDeleter {
    void operator()(XmlDocument* document) const;
};
/// A parsed document. Its end makes every handle into it invalid.
using XmlDocumentPtr = std::unique_ptr<XmlDocument, XmlDocumentDeleter>;

/// Stands for one node of a document, which owns the node.
struct XmlHandle {
    TiXmlNode* node = nullptr;

    explicit operator bool() const { return node != nullptr; }
};
/// Each operation that yields a node yields a handle of its own; null when there is no such node
/// and when memory is exhausted.
using XmlHandlePtr = std::unique_ptr<XmlHandle>;

/// The deepest nesting of elements that a script may have. The parser and the walk recurse with the
/// script, on the host's stack: a deeper document is refused like one with a syntax error.
inline constexpr size_t maxElementDepth = 256;

/// The most attributes that an element of a script may have, a dozen of which mean anything. The
/// parser compares each with all before it: a document with more is refused in the same way.
inline constexpr size_t maxElementAttributes = 256;

/// Reads a script. Null when the name can't be converted, and when the file can't be opened, isn't
/// well-formed, is nested too deeply, or has an element of too many attributes.
XmlDocumentPtr openDocument(const wchar_t* fileName);

/// Reads a file, or a text, in place of what the document holds. After a failure the document holds
/// nothing, a part, or, when there was nothing to read, what it held before.
bool loadDocument(XmlDocument& document, const wchar_t* fileName);
bool parseDocument(XmlDocument& document, const wchar_t* text);

/// Writes the document to a file, with a byte order mark if it was read with one.
bool saveDocument(const XmlDocument& document, const wchar_t* fileName);

/// A document without content.
XmlDocumentPtr makeDocument();

/// A new handle to the same node.
XmlHandlePtr copyHandle(const XmlHandle& handle);

// Navigation. Only elements count: comments, texts and declarations are passed over.
XmlHandlePtr getRootElement(const XmlDocument& document);
XmlHandlePtr getFirstChildElement(const XmlHandle* handle);
XmlHandlePtr getFirstChildElementNamed(const XmlHandle* handle, const wchar_t* name);
XmlHandlePtr getNextSiblingElement(const XmlHandle* handle);
XmlHandlePtr getNextSiblingElementNamed(const XmlHandle* handle, const wchar_t* name);
size_t countChildElements(const XmlHandle* handle);

/// The parent, whatever its kind: above the root element it is the document itself.
XmlHandlePtr getParentNode(const XmlHandle* handle);

/// A handle to the same node if that is an element.
XmlHandlePtr asElement(const XmlHandle* handle);

/// The name of an element; null for every other node.
WideText getElementName(const XmlHandle* handle);

/// The line of the script, from 1, on which an element begins; 0 for every other node and for what
/// was read from no script.
uint32_t getElementLine(const XmlHandle* handle);

/// Assigns the name, or content, of any node; `name` stays as it is when it can't be converted.
void getNodeName(const XmlHandle* handle, std::wstring& name);

/// Reads an attribute. False, with an empty `value`, when the node is no element or has no such
/// attribute. A value that can't be converted reads as empty.
bool getAttributeText(const XmlHandle* handle, const wchar_t* attributeName, std::wstring& value);

/// The value of an attribute; null when the node is no element or has no such attribute.
WideText getAttributeCopy(const wchar_t* attributeName, const XmlHandle* handle);

/// Sets an attribute, which is made if it isn't there. False when the node is no element.
bool setAttributeText(const XmlHandle* handle, const wchar_t* attributeName, const wchar_t* value);

/// The first element below `start`, in document order and at any depth, that has this name and this
/// attribute value. An element is tested before its descendants; `start` itself isn't tested.
XmlHandlePtr findElementRecursive(const wchar_t* elementName, const wchar_t* attributeName,
                                  const wchar_t* attributeValue, const XmlHandle* start);

/// Shows `visit` each element below `start`, in document order.
void visitElements(XmlHandle start, const std::function<void(XmlHandle)>& visit);

/// As findElementRecursive, among the direct children alone.
XmlHandlePtr findChildByAttribute(const wchar_t* elementName, const wchar_t* attributeName,
                                  const wchar_t* attributeValue, const XmlHandle* parent);

// The engine's own way through a document. Handles are values, without a node where there is none,
// and only texts take memory: exhausted, it leaves as std::bad_alloc, so that what can't be had is
// never taken for what isn't there.
XmlHandle rootElementOf(const XmlDocument& document);
XmlHandle firstChildOf(XmlHandle handle);
/// `name` is ASCII.
XmlHandle firstChildOf(XmlHandle handle, const wchar_t* name);
XmlHandle nextSiblingOf(XmlHandle handle);
XmlHandle parentOf(XmlHandle handle);

/// The bytes of an element's name and of an attribute's value, which stay the document's; null
/// where there are none. The attribute's name is ASCII, so it has the same bytes in each active
/// code page.
const char* elementNameOf(XmlHandle handle);
const char* attributeOf(XmlHandle handle, const wchar_t* attributeName);
