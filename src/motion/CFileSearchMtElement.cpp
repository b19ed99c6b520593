#include "motion/CFileSearchMtElement.h"

#include "engine/CContext.h"
#include "logging/Log.h"
#include "motion/WalkCalls.h"
#include "system/FileOperations.h"
#include "system/FileVersion.h"
#include "system/PathText.h"

static_assert(sizeof(CFileSearchMtElement) == sizeof(CMotionElement));

namespace {

bool satisfiesVersion(const wchar_t* file, const std::wstring& minVersion) {
    if (minVersion.empty())
        return true;
    uint64_t version = 0;
    const bool satisfied =
        getFileVersionOrThrow(file, version) && version >= parseVersionText(minVersion.c_str());
    writeLog(INFO,
             satisfied ? "Satisfy min version required." : "Can't satisfy min version required.");
    return satisfied;
}

}  // namespace

CFileSearchMtElement::CFileSearchMtElement(const XmlHandle& node, CContext& context)
    : CMotionElement(node, context, fileSearchKind) {
    requireActionKind();
}

int32_t CFileSearchMtElement::execute(CContext& context) {
    std::wstring name;
    std::wstring path;
    std::wstring expression;
    std::wstring minVersion;
    if (!getAttributesText({&name, &path, &expression, &minVersion}, fileSearchKind.fetched,
                           context))
        return -1;
    const WideText file = joinPath(path.c_str(), name.c_str());
    if (!file)
        return failExhausted(context);
    if (!fileExists(file.get()) || !satisfiesVersion(file.get(), minVersion))
        return 0;
    try {
        walkCalls.Evaluate(expression.c_str(), context);
    } catch (const std::wstring& message) {
        return fail(message, context);
    }
    return 0;
}
