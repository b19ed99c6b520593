#include "motion/CCustomActionMtElement.h"

#include <cwchar>

#include "engine/CContext.h"
#include "logging/CSubject.h"
#include "logging/Log.h"
#include "motion/ActionCalls.h"
#include "motion/CustomAction.h"
#include "system/LibraryCalls.h"
#include "system/PathText.h"
#include "system/TextFields.h"
#include "system/UniqueHandle.h"

static_assert(sizeof(CCustomActionMtElement) == sizeof(CMotionElement));

namespace {

struct LibraryTraits {
    using Handle = HMODULE;
    static Handle invalid() { return nullptr; }
    static void close(Handle library) { libraryCalls.FreeLibrary(library); }
};
using Library = UniqueHandle<LibraryTraits>;

uint32_t osFact(const wchar_t* variable, const CContext& context) {
    return static_cast<uint32_t>(context.findVariable(variable)->getInt());
}

CustomActionParams makeParams(const std::wstring& rootDirectory, CContext& context) {
    CustomActionParams params{};
    copyBounded(params.applicationRootDirectory, toNarrowTextOrThrow(rootDirectory.c_str()).get());
    params.osMajorVersion = osFact(osMajorVersionVariable, context);
    params.osMinorVersion = osFact(osMinorVersionVariable, context);
    params.observerData = reinterpret_cast<uintptr_t>(context.subject().observerData);
    params.is64Bit = osFact(osBitVariable, context) == 64 ? 1 : 0;
    return params;
}

CustomActionEntry findEntry(const Library& library, const char* entryName) {
    const auto address = libraryCalls.GetProcAddress(library.get(), entryName);
    return reinterpret_cast<CustomActionEntry>(reinterpret_cast<void*>(address));
}

/// Calls the function of a library that is loaded for this call alone. Empty when it was called;
/// otherwise the text tells why it wasn't.
std::wstring callInLibrary(const std::wstring& dllFile, const char* entryName,
                           CustomActionParams& params, uint32_t& result, std::wstring& message) {
    const Library library(libraryCalls.LoadLibraryW(dllFile.c_str()));
    if (!library)
        return L"Failed to load library(" + dllFile + L").";
    const CustomActionEntry entry = findEntry(library, entryName);
    if (entry == nullptr) {
        writeLog(ERROR, "GetProcAddress ", entryName, " failed.");
        std::wstring wideName;
        assignText(wideName, toWideTextOrThrow(entryName).get());
        return L"Failed to get Address(" + wideName + L").";
    }
    wchar_t entryMessage[CUSTOM_ACTION_MESSAGE_LENGTH] = {};
    result = actionCalls.CallEntry(entry, &params, entryMessage, CUSTOM_ACTION_MESSAGE_LENGTH);
    message.assign(entryMessage, wcsnlen(entryMessage, CUSTOM_ACTION_MESSAGE_LENGTH));
    return {};
}

}  // namespace

CCustomActionMtElement::CCustomActionMtElement(const XmlHandle& node, CContext& context)
    : CMotionElement(node, context, customActionKind) {
    requireActionKind();
}

int32_t CCustomActionMtElement::execute(CContext& context) {
    std::wstring dllFile;
    std::wstring dllEntry;
    std::wstring returnKeyword;
    std::wstring title;
    if (!getAttributesText({&dllFile, &dllEntry, &returnKeyword, &title}, customActionKind.fetched,
                           context))
        return -1;
    const NarrowText entryName = toNarrowTextOrThrow(dllEntry.c_str());
    if (!entryName)
        return 0;
    announce(ACTION_CUSTOM_ACTION, dllEntry, title, context);
    uint32_t result = 0;
    std::wstring message;
    if (!callDllEntry(dllFile, entryName.get(), context, result, message))
        return -1;
    if (result == 0 || returnKeyword != checkKeyword)
        return 0;
    context.subject().setErrorInfo(ACTION_CUSTOM_ACTION, dllEntry, result, title.c_str(),
                                   message.c_str());
    return static_cast<int32_t>(result);
}

bool CCustomActionMtElement::callDllEntry(const std::wstring& dllFile, const char* entryName,
                                          CContext& context, uint32_t& result,
                                          std::wstring& message) const {
    writeLog(INFO, "callDllEntry:", dllFile, ";", entryName);
    std::wstring rootDirectory;
    if (!context.getDirectory(rootDirectory, L"APPLICATIONROOTDIRECTORY") ||
        rootDirectory.empty()) {
        context.subject().setErrorText(L"Can't get application directory.");
        return false;
    }
    rootDirectory = withSeparator(rootDirectory);
    writeLog(INFO, rootDirectory);
    CustomActionParams params = makeParams(rootDirectory, context);
    const std::wstring failure = callInLibrary(dllFile, entryName, params, result, message);
    if (failure.empty())
        return true;
    context.subject().setErrorText(failure);
    return false;
}
