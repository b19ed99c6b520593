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

std::vector<std::wstring> Tracer::entryArguments(CustomActionEntry entry,
                                                 const CustomActionParams* params,
                                                 const wchar_t* message, uint32_t capacity) const {
    return {handles.find(reinterpret_cast<const void*>(entry)),
            textOf(params->applicationRootDirectory), filledText(message, capacity)};
}
