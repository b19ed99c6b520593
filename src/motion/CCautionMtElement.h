#pragma once

#include "motion/CMotionElement.h"

/// The script element `Caution`: passes a text to the host, and does nothing else.
class CCautionMtElement final : public CMotionElement {
public:
    CCautionMtElement(const XmlHandle& node, CContext& context);

    int32_t execute(CContext& context) override;
};
