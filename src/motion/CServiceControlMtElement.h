#pragma once

#include "motion/CMotionElement.h"

/// The script element `ServiceControl`: starts, stops or removes a service.
class CServiceControlMtElement final : public CMotionElement {
public:
    CServiceControlMtElement(const XmlHandle& node, CContext& context);

    /// An unknown action is no failure; only the log tells of it.
    int32_t execute(CContext& context) override;
};
