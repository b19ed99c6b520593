#pragma once

#include "motion/CMotionElement.h"

/// The script element `Component`: carries the things to install under one target directory. It
/// does nothing itself; it limits its children to a run mode by `On` and hands `Path`, which is the
/// enclosing directory's, and `SupportDelayInstall` down to them.
class CComponentMtElement final : public CMotionElement {
public:
    using CMotionElement::CMotionElement;

    void getAttributes(std::vector<AttributeDeclaration>& list) const override;
    void getDerivedAttributes(std::vector<AttributeDeclaration>& list) const override;
    bool isChildAllowed(const wchar_t* childName) const override;
};
