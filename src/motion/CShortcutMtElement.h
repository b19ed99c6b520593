#pragma once

#include "motion/CMotionElement.h"

/// The script element `Shortcut`: makes a shell link at install and upgrade, deletes it at
/// uninstall.
class CShortcutMtElement final : public CMotionElement {
public:
    CShortcutMtElement(const XmlHandle& node, CContext& context);

    int32_t execute(CContext& context) override;

private:
    struct Texts;
    int32_t create(const Texts& texts, const std::wstring& link, CContext& context) const;
    int32_t remove(const Texts& texts, const std::wstring& link, CContext& context) const;
};
