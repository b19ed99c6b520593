#pragma once

#include "motion/CMotionElement.h"

/// The script element `Condition`: its children are visited when its expression is true. To
/// questions about attributes it is transparent: its children find what stands above it.
class CConditionMtElement final : public CMotionElement {
public:
    CConditionMtElement(const XmlHandle& node, CContext& context);

    /// Evaluates the expression. One that fails ends the run: -1, with its message in errorInfo.
    int32_t prepare(bool& descend, CContext& context) override;
};
