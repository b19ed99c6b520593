#pragma once

#include "motion/CMotionElement.h"

/// The script element `FileSearch`: looks for a file, whose version may have to be high enough, and
/// evaluates an expression when it is there. Its assignments are what the search leaves behind.
class CFileSearchMtElement final : public CMotionElement {
public:
    CFileSearchMtElement(const XmlHandle& node, CContext& context);

    /// 0, also when nothing is found; -1 when the expression fails, with its message in errorInfo.
    int32_t execute(CContext& context) override;
};
