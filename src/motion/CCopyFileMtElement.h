#pragma once

#include "motion/CMotionElement.h"

/// The script element `CopyFile`: its attributes are checked, and nothing is done. Scripts may
/// carry it; `File` is what copies.
class CCopyFileMtElement final : public CMotionElement {
public:
    CCopyFileMtElement(const XmlHandle& node, CContext& context);

    int32_t execute(CContext& context) override;
};
