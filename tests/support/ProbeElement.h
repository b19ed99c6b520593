#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "elements/CElement.h"

/// An element whose class is made up by the test.
class ProbeElement final : public CElement {
public:
    ProbeElement(const XmlHandle& node, CContext& context) : CElement(node, context, made) {}
    ProbeElement(const wchar_t* elementName, const wchar_t* elementId, CContext& context)
        : CElement(elementName, elementId, context, made) {}

    std::map<std::wstring, std::wstring> defaults;
    std::wstring cumulative;  ///< the one attribute that is joined with the parent's
    bool expandable = true;

    bool isExpandable() const override { return expandable; }
    bool isCumulativeAttribute(const wchar_t* name) const override { return name == cumulative; }
    /// Says that it failed, as nobody is to care.
    bool combineWithParent(const std::wstring& above, std::wstring& value) const override {
        value = above + L"+" + value;
        return false;
    }
    bool getDefaultAttribute(AttributeRecord& record, const wchar_t* name) const override {
        const auto found = defaults.find(name);
        if (found != defaults.end())
            fillAttributeRecord(record, name, found->second.c_str());
        return found != defaults.end();
    }

    /// The resolved attributes, in their order.
    std::vector<std::pair<std::wstring, std::wstring>> resolved() const {
        std::vector<std::pair<std::wstring, std::wstring>> list;
        for (const AttributeRecord& record : attributes)
            list.emplace_back(record.name, record.value);
        return list;
    }

    /// Adds a resolved attribute that no pass has read.
    void hold(const wchar_t* name, const wchar_t* value) {
        fillAttributeRecord(attributes.emplace_back(), name, value);
    }

    /// Takes the element out of its document.
    void detach() { node = {}; }

    /// What it reads from its own XML, and what it takes from its parent.
    void declare(std::vector<AttributeDeclaration> list) {
        declared = std::move(list);
        made.declared = declared;
    }
    void derive(std::vector<AttributeDeclaration> list) {
        derived = std::move(list);
        made.derived = derived;
    }

private:
    std::vector<AttributeDeclaration> declared;
    std::vector<AttributeDeclaration> derived;
    ElementKind made = noKind;
};
