#pragma once

#include "motion/CMotionElement.h"

/// The script element `InstallExecuteSequence`: the entry of a run. It only holds children.
class CInstallMtElement final : public CMotionElement {
public:
    CInstallMtElement(const XmlHandle& node, CContext& context);

    bool isChildAllowed(const wchar_t* childName) const override;
};
