#pragma once

#include "elements/CElement.h"
#include "logging/CSubject.h"

/// The script element `Product`: where every search by id begins, and, as the subject that the host
/// drives, the driver of a run. It has no attributes of its own.
class CProductElement final : public CElement, public CSubject {
public:
    CProductElement(const XmlHandle& node, CContext& context);

    int32_t run(IterfaceContext* context) override;
    bool getDirectory(std::wstring& path, const wchar_t* directoryId,
                      IterfaceContext* context) override;

private:
    bool findDirectory(std::wstring& path, const wchar_t* directoryId, CContext& context);
    bool failToGet(const std::wstring& reason);
};
