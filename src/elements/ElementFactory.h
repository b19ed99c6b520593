#pragma once

#include <string>

#include "elements/CElement.h"
#include "motion/CMotionElement.h"

/// Makes the element of a node, of any kind. Null, with the reason in lastCreateError, when the
/// element is unknown or can't be built. No message is thrown out of a factory.
ElementPtr CreateElement(const XmlHandle* node, CContext& context);

/// Makes the executable element of a node. `parent`, which may be null, becomes its parent, but not
/// that of an element reached through a reference: its parent is where the definition stands.
MotionElementPtr CreateMotionElement(const XmlHandle* node, CContext& context, CElement* parent);

/// The text of the last failure of a factory in this process. A success doesn't clear it, so it
/// tells something only right after a null result.
std::wstring getLastCreateError();
/// Whether that failure was one of memory. As with the text, right after a null result.
bool lastCreateRanShort();

/// Makes the element that a reference stands for. Throws a message when it can't.
MotionElementPtr createRefMotionElement(const wchar_t* elementName, const wchar_t* id,
                                        CContext& context);

/// Makes the directory that a `DirectoryRef` stands for; null, with the reason in lastCreateError,
/// when there is no such directory. Null without a reason for any other name and without an id.
ElementPtr createDirectoryRefElement(const wchar_t* elementName, const wchar_t* id,
                                     CContext& context);

/// Settles the attributes of a new element. When that fails the element is destroyed and the
/// message thrown. A null pointer or element does nothing.
void finishElement(ElementPtr* element, CContext& context);
void finishElement(MotionElementPtr* element, CContext& context);
