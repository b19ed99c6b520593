#pragma once

#include "motion/CMotionElement.h"

/// The script element `Feature`: groups components. It only holds children, and takes part in
/// every run mode: it has no attributes.
class CFeatureMtElement final : public CMotionElement {
public:
    CFeatureMtElement(const XmlHandle& node, CContext& context);
    CFeatureMtElement(const wchar_t* elementName, const wchar_t* id, CContext& context);
};
