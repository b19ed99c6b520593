#pragma once

#include "motion/CMotionElement.h"

/// The script element `Fragment`: groups actions that belong to no component. It only holds
/// children, and can be limited to a run mode by `On`.
class CFragmentMtElement final : public CMotionElement {
public:
    CFragmentMtElement(const XmlHandle& node, CContext& context);
    CFragmentMtElement(const wchar_t* elementName, const wchar_t* id, CContext& context);
};
