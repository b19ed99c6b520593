#pragma once

#include "motion/CMotionElement.h"

/// The script element `CustomAction`: calls a function of a native library; see CustomAction.h.
class CCustomActionMtElement final : public CMotionElement {
public:
    CCustomActionMtElement(const XmlHandle& node, CContext& context);

    /// The function's number, if it counts and isn't 0, is the result.
    int32_t execute(CContext& context) override;

    /// Calls the function `entryName` of a library that is loaded for this call alone. True when it
    /// was called; `result` and `message` then hold what it gave back. Otherwise errorInfo tells
    /// why not.
    bool callDllEntry(const std::wstring& dllFile, const char* entryName, CContext& context,
                      uint32_t& result, std::wstring& message) const;
};
