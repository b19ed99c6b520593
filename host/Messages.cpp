#include "Messages.h"

#include <windows.h>

#include <algorithm>
#include <iterator>

namespace {

struct ActionName {
    uint32_t code;
    const wchar_t* text;
};

constexpr ActionName actionNames[] = {
    {ACTION_CONDITION, L"Checking"},
    {ACTION_COPY_FILE, L"Copying"},
    {ACTION_DELETE_FILE, L"Deleting"},
    {ACTION_STOP_SERVICE, L"Stopping service"},
    {ACTION_START_SERVICE, L"Starting service"},
    {ACTION_REMOVE_SERVICE, L"Removing service"},
    {ACTION_SHORTCUT, L"Shortcut"},
    {ERROR_CODE_REMOVE_SHORTCUT, L"Removing shortcut"},
    {ACTION_CUSTOM_ACTION, L"Custom action"},
    {ACTION_SHELL_EXCUTE, L"Starting"},
    {ACTION_CREATE_REGISTRY_KEY, L"Creating registry key"},
    {ACTION_REMOVE_REGISTRY_KEY, L"Removing registry key"},
    {ACTION_REGISTRY_VALUE, L"Writing registry value"},
    {ACTION_REMOVE_DIRECTORY, L"Removing directory"},
    {ACTION_CAUTION, L"Caution:"},
};

std::wstring withoutLineEnd(std::wstring text) {
    text.erase(text.find_last_not_of(L"\r\n ") + 1);
    return text;
}

std::wstring errorNumber(uint32_t code) {
    return L"(error " + std::to_wstring(code) + L")";
}

}  // namespace

std::wstring describeAction(uint32_t code, const wchar_t* text1, const wchar_t* text2) {
    const auto* named = std::find_if(std::begin(actionNames), std::end(actionNames),
                                     [code](const ActionName& name) { return name.code == code; });
    std::wstring action =
        named == std::end(actionNames) ? L"Action " + std::to_wstring(code) : named->text;
    for (const wchar_t* text : {text1, text2})
        if (*text)
            action += std::wstring(L" ") + text;
    return action;
}

std::wstring describeFailure(const ErrorInfo& error) {
    std::wstring reason = withoutLineEnd(error.message);
    if (error.code == ERROR_CODE_MESSAGE)
        return reason;
    std::wstring failure = describeAction(error.code, error.text1, error.text2) + L" failed";
    if (!reason.empty())
        failure += L": " + reason;
    if (error.systemError != 0 && error.systemError != UINT32_MAX)
        failure += L" " + errorNumber(error.systemError);
    return failure;
}

std::wstring describeSystemError(uint32_t code) {
    wchar_t text[512];
    const DWORD length =
        FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0,
                       text, static_cast<DWORD>(std::size(text)), nullptr);
    const std::wstring message = withoutLineEnd(std::wstring(text, length));
    return message.empty() ? errorNumber(code) : message + L" " + errorNumber(code);
}
