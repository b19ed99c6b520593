#pragma once

#include <set>
#include <string>
#include <vector>

struct ElementKind;
struct ReferenceKind;

/// What an element may be in one kind of place, worked out from the engine's tables. The same
/// element can have several shapes: a `Component` outside every directory holds no files, and a
/// `RegistryKey` needs its own `Root` only where none is around it.
struct ElementShape {
    /// A child, and the shape that it has there. One that must be there is there once.
    struct Child {
        std::wstring name;
        std::wstring shape;
        bool once;
    };
    struct Attribute {
        std::wstring name;
        bool required;
    };

    std::wstring name;     ///< of the shape
    std::wstring element;  ///< whose shape it is
    std::vector<Attribute> attributes;
    std::vector<Child> children;
};

/// The name that the schema knows the root element by.
inline constexpr wchar_t rootElement[] = L"Script";

/// All shapes, the root's first, each before those that only it leads to.
std::vector<ElementShape> scriptShapes();
