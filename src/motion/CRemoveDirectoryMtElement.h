#pragma once

#include "motion/CMotionElement.h"

/// The script element `RemoveDirectory`: removes a directory with all that it holds.
class CRemoveDirectoryMtElement final : public CMotionElement {
public:
    CRemoveDirectoryMtElement(const XmlHandle& node, CContext& context);

    int32_t execute(CContext& context) override;
};
