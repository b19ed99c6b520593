#pragma once

#include "motion/CMotionElement.h"

/// The script element `RegistryKey`: makes or removes a key, ahead of its children. Nested ones add
/// their `Key` to that of the key around them.
class CRegistryKeyMtElement final : public CMotionElement {
public:
    CRegistryKeyMtElement(const XmlHandle& node, CContext& context);

    bool isCumulativeAttribute(const wchar_t* attributeName) const override;
    bool combineWithParent(const std::wstring& parentValue, std::wstring& value) const override;
    /// Does the key's work, so a failure ends the run: the host isn't asked, and `Vital` plays no
    /// part.
    int32_t prepare(bool& descend, CContext& context) override;
};
