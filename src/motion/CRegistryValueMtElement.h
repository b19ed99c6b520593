#pragma once

#include "motion/CMotionElement.h"

/// The script element `RegistryValue`: writes a value into the key of the `RegistryKey` around it.
class CRegistryValueMtElement final : public CMotionElement {
public:
    CRegistryValueMtElement(const XmlHandle& node, CContext& context);

    int32_t execute(CContext& context) override;
};
