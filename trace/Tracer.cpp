#include "trace/Tracer.h"

#include "logging/CLogWriter.h"

void Tracer::tellLine(const CLogLine& line) {
    const LastErrorScope scope;
    try {
        TracedCall call;
        call.group = textOf(LogCalls::group);
        call.name = textOf(levelName(line.openedAt()));
        call.arguments = {textOf(line.composed().c_str())};
        tellListener(call);
    } catch (const std::exception&) {
        // Left out.
    }
}

std::vector<std::wstring> Tracer::valueArguments(HKEY key, const wchar_t* name, DWORD reserved,
                                                 DWORD type, const BYTE* data, DWORD size) const {
    return {handles.find(key),
            textOf(name),
            std::to_wstring(reserved),
            std::to_wstring(type),
            textOfRegistryData(type, data, size),
            std::to_wstring(size)};
}

std::vector<std::wstring> Tracer::noticeArguments(LONG event, UINT flags, const void* one,
                                                  const void* other) {
    const auto textOfItem = [flags](const void* item) {
        return (flags & SHCNF_TYPE) == SHCNF_PATHW ? textOf(static_cast<const wchar_t*>(item))
                                                   : textOfObject(item);
    };
    return {std::to_wstring(event), std::to_wstring(flags), textOfItem(one), textOfItem(other)};
}

std::vector<std::wstring> Tracer::entryArguments(CustomActionEntry entry,
                                                 const CustomActionParams* params,
                                                 const wchar_t* message, uint32_t capacity) const {
    return {handles.find(reinterpret_cast<const void*>(entry)),
            textOf(params->applicationRootDirectory), filledText(message, capacity)};
}
