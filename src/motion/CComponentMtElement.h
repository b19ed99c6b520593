#pragma once

#include "motion/CMotionElement.h"

/// The script element `Component`: carries the things to install under one target directory. It
/// does nothing itself; it limits its children to a run mode by `On` and hands `Path`, which is the
/// enclosing directory's, and `SupportDelayInstall` down to them.
class CComponentMtElement final : public CMotionElement {
public:
    CComponentMtElement(const XmlHandle& node, CContext& context);
    CComponentMtElement(const wchar_t* elementName, const wchar_t* id, CContext& context);
};
