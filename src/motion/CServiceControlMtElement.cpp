#include "motion/CServiceControlMtElement.h"

#include "engine/CContext.h"
#include "logging/CSubject.h"
#include "logging/Log.h"
#include "system/ServiceOperations.h"

static_assert(sizeof(CServiceControlMtElement) == sizeof(CMotionElement));

namespace {

// Limits of the wait for a service, in milliseconds: with `Wait` and without.
constexpr uint32_t longLimit = 15000;
constexpr uint32_t shortLimit = 1000;

bool carryOut(ActionCode action, const wchar_t* service, uint32_t limit) {
    switch (action) {
        case ACTION_STOP_SERVICE:
            return stopServiceAndWait(service, limit);
        case ACTION_START_SERVICE:
            return startServiceAndWait(service, limit);
        case ACTION_REMOVE_SERVICE:
            return deleteServiceByName(service);
        default:  // A keyword without an operation here does nothing, and its element fails.
            return false;
    }
}

}  // namespace

CServiceControlMtElement::CServiceControlMtElement(const XmlHandle& node, CContext& context)
    : CMotionElement(node, context, serviceControlKind) {
    requireActionKind();
}

int32_t CServiceControlMtElement::execute(CContext& context) {
    std::wstring service;
    std::wstring action;
    std::wstring wait;
    if (!getAttributesText({&service, &action, &wait}, serviceControlKind.fetched, context))
        return -1;
    const ActionKeyword* keyword = findKeyword(serviceActionKeywords(), action);
    if (keyword == nullptr) {
        writeLog(WARNNING, describe(), " action is unknown.");
        return 0;
    }
    announce(keyword->action, service, L"", context);
    if (carryOut(keyword->action, service.c_str(), wait == yesKeyword ? longLimit : shortLimit))
        return 0;
    context.subject().setErrorInfo(keyword->action, service, 0);
    return -1;
}
