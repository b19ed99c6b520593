#pragma once

#include "motion/CMotionElement.h"

/// The script element `ShellExcute`: starts a file through the system's shell, and waits for it if
/// told so. What becomes of it plays no part.
class CShellExcuteMtElement final : public CMotionElement {
public:
    CShellExcuteMtElement(const XmlHandle& node, CContext& context);

    int32_t execute(CContext& context) override;
};
