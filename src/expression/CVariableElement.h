#pragma once

#include "elements/CElement.h"

/// The script elements `Variable` and `VariableConst`. The value of a variable lives here, as the
/// text of the attribute `Value`; an assignment rewrites that text in memory alone.
class CVariableElement final : public CElement {
public:
    CVariableElement(const XmlHandle& node, CContext& context);

    /// Texts of a variable stay literal.
    bool isExpandable() const override { return false; }

    VariableType getVariableType() const;
    /// Throws a message when the element has no `Value`.
    std::wstring getValueText() const;
    /// Does nothing when the element has no `Value`. Throws a message when it can't be replaced.
    void setValueText(const std::wstring& text);
    /// Exchanges the value for another, also that of a const variable, and needs no memory for it.
    void exchangeValueText(std::wstring& text) noexcept;
};
