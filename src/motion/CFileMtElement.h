#pragma once

#include "motion/CMotionElement.h"

/// The script element `File`: copies one file from the host program's directory to its place, or,
/// in the mode uninstall, deletes it there. It can end the program that runs from the target, and
/// can leave the replacement of a target in use to the next restart.
class CFileMtElement final : public CMotionElement {
public:
    CFileMtElement(const XmlHandle& node, CContext& context);

    /// 0, -1, or the system's error code for a copy that failed.
    int32_t execute(CContext& context) override;

private:
    struct Texts;
    int32_t install(const Texts& texts, const wchar_t* target, CContext& context) const;
    int32_t uninstall(const Texts& texts, const wchar_t* target, CContext& context) const;
};
