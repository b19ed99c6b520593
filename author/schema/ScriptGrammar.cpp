#include "author/schema/ScriptGrammar.h"

#include <algorithm>

#include "elements/Vocabulary.h"

namespace {

/// The attributes that an element can take from the one around it.
using Surroundings = std::set<std::wstring>;

bool declares(const ElementKind& kind, const std::wstring& attribute) {
    return std::any_of(kind.declared.begin(), kind.declared.end(),
                       [&](const auto& declaration) { return attribute == declaration.name; });
}

/// What a kind can't be without and may take from around it.
Surroundings needs(const ElementKind& kind) {
    Surroundings names;
    for (const AttributeDeclaration& derived : kind.derived)
        if (derived.required)
            names.insert(derived.name);
    return names;
}

/// A directory that has neither a path nor one around it can be a folder of the system.
bool hasDefaults(const ElementKind& kind) {
    return &kind == &directoryKind;
}

/// Whether an element can be made in these surroundings, with all attributes that it may have.
bool canStand(const ElementKind& kind, const Surroundings& around) {
    const Surroundings needed = needs(kind);
    return std::all_of(needed.begin(), needed.end(), [&](const std::wstring& name) {
        return around.contains(name) || declares(kind, name);
    });
}

/// What the children of an element find around them: what it has or has taken over, of that which
/// any element asks for.
Surroundings offers(const ElementKind& kind, const Surroundings& around) {
    if (kind.isTransparent)
        return around;
    Surroundings offered = needs(kind);
    for (const AttributeDeclaration& derived : kind.derived)
        if (around.contains(derived.name))
            offered.insert(derived.name);
    for (const ElementKind* other : motionKinds())
        for (const std::wstring& name : needs(*other))
            if (declares(kind, name))
                offered.insert(name);
    return offered;
}

/// What of the surroundings makes a difference to an element.
Surroundings relevant(const ElementKind& kind, const Surroundings& around) {
    if (kind.isTransparent)
        return around;
    Surroundings names;
    if (hasDefaults(kind))
        return names;
    for (const AttributeDeclaration& derived : kind.derived)
        if (around.contains(derived.name) &&
            (!kind.children.empty() || declares(kind, derived.name)))
            names.insert(derived.name);
    return names;
}

const ElementKind* findKind(const std::wstring& name) {
    for (const auto kinds : {motionKinds(), lookedUpKinds()})
        for (const ElementKind* kind : kinds)
            if (name == kind->name)
                return kind;
    return nullptr;
}

const ReferenceKind* findReference(const std::wstring& name) {
    for (const ReferenceKind& reference : motionReferences())
        if (name == reference.name)
            return &reference;
    return name == directoryReference.name ? &directoryReference : nullptr;
}

/// The elements that are defined outside the sequence, and those that hold them.
std::vector<std::wstring> definitions() {
    std::vector<std::wstring> names{directoryKind.name, directoryReference.name};
    for (const ReferenceKind& reference : motionReferences())
        names.emplace_back(reference.target->name);
    return names;
}

/// Goes from the root through all that can stand in it.
class Shaper {
public:
    std::vector<ElementShape> shapeAll() {
        ElementShape root{rootElement, rootElement, {}, {}};
        for (const ElementKind* kind : {&variableKind, &variableConstKind, &productKind})
            root.children.push_back({kind->name, kind->name, kind == &productKind});
        shapes.push_back(root);
        for (const ElementShape::Child& child : root.children)
            shapeKind(*findKind(child.name), {});
        return shapes;
    }

private:
    /// Makes the shape of an element, and of all that can stand in it, and gives its name.
    std::wstring shapeElement(const std::wstring& element, const Surroundings& around) {
        const ReferenceKind* reference = findReference(element);
        if (reference == nullptr)
            return shapeKind(*findKind(element), around);
        if (begin(element, element)) {
            const size_t index = shapes.size() - 1;
            shapes[index].attributes.push_back({idAttribute, true});
            if (reference == &directoryReference)
                addDefinitions(index, offers(directoryKind, around));
        }
        return element;
    }

    std::wstring shapeKind(const ElementKind& kind, const Surroundings& around) {
        const Surroundings matters = relevant(kind, around);
        std::wstring name = kind.name;
        for (const std::wstring& attribute : matters)
            name += L"." + attribute;
        if (!begin(name, kind.name))
            return name;
        const size_t index = shapes.size() - 1;
        addAttributes(index, kind, around);
        const Surroundings offered = offers(kind, matters);
        for (const wchar_t* child : kind.children) {
            const ElementKind* childKind = findKind(child);
            if (childKind == nullptr || canStand(*childKind, offered))
                addChild(index, child, offered, false);
        }
        if (&kind == &directoryKind || &kind == &productKind)
            addDefinitions(index, offered);
        if (&kind == &productKind)
            addChild(index, installKind.name, offered, true);
        return name;
    }

    bool begin(const std::wstring& name, const std::wstring& element) {
        const bool known =
            std::any_of(shapes.begin(), shapes.end(),
                        [&](const ElementShape& shape) { return shape.name == name; });
        if (!known)
            shapes.push_back({name, element, {}, {}});
        return !known;
    }

    void addAttributes(size_t index, const ElementKind& kind, const Surroundings& around) {
        const bool isVariable = &kind == &variableKind || &kind == &variableConstKind;
        shapes[index].attributes.push_back({idAttribute, isVariable});
        const Surroundings needed = needs(kind);
        for (const AttributeDeclaration& declared : kind.declared) {
            const bool underived = needed.contains(declared.name) &&
                                   !around.contains(declared.name) && !hasDefaults(kind);
            shapes[index].attributes.push_back({declared.name, declared.required || underived});
        }
    }

    void addDefinitions(size_t index, const Surroundings& offered) {
        for (const std::wstring& name : definitions())
            addChild(index, name, offered, false);
    }

    /// Shapes are only added at the end, so an index stays right where a reference wouldn't.
    void addChild(size_t index, const std::wstring& child, const Surroundings& offered, bool once) {
        const std::wstring shape = shapeElement(child, offered);
        shapes[index].children.push_back({child, shape, once});
    }

    std::vector<ElementShape> shapes;
};

}  // namespace

std::vector<ElementShape> scriptShapes() {
    return Shaper().shapeAll();
}
