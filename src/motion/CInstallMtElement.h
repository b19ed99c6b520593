#pragma once

#include "motion/CMotionElement.h"

/// The script element `InstallExecuteSequence`: the entry of a run. It only holds children.
class CInstallMtElement final : public CMotionElement {
public:
    CInstallMtElement(const XmlHandle& node, CContext& context);
};
