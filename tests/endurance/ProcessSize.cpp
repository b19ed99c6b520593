#include "endurance/ProcessSize.h"

#include <windows.h>

#include <winternl.h>

#include <algorithm>
#include <vector>

namespace {

// What the system tells of all handles, which its headers keep to themselves.
constexpr auto extendedHandleInformation = static_cast<SYSTEM_INFORMATION_CLASS>(64);
constexpr auto tooShort = static_cast<NTSTATUS>(0xC0000004);
struct HeldHandle {
    void* object;
    ULONG_PTR process;
    ULONG_PTR handle;
    ULONG access;
    USHORT trace;
    USHORT type;
    ULONG attributes;
    ULONG reserved;
};

/// Those of this process. GetProcessHandleCount is none of Wine's talents.
int64_t countHandles() {
    std::vector<ULONG_PTR> room(1 << 16);
    ULONG length = 0;
    while (NtQuerySystemInformation(extendedHandleInformation, room.data(),
                                    static_cast<ULONG>(room.size() * sizeof room[0]),
                                    &length) == tooShort)
        room.resize(room.size() * 2);
    // The number of all, a reserved one, and the handles.
    const auto* const first = reinterpret_cast<const HeldHandle*>(&room[2]);
    return std::count_if(first, first + room[0], [](const HeldHandle& held) {
        return held.process == GetCurrentProcessId();
    });
}

}  // namespace

ProcessSize::ProcessSize() : handles(countHandles()) {
    HANDLE heaps[64];
    const DWORD count = GetProcessHeaps(std::size(heaps), heaps);
    for (DWORD i = 0; i < count; ++i) {
        HeapLock(heaps[i]);
        PROCESS_HEAP_ENTRY entry{};
        while (HeapWalk(heaps[i], &entry))
            if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) {
                ++blocks;
                bytes += entry.cbData;
            }
        HeapUnlock(heaps[i]);
    }
}

std::map<std::string, int64_t> ProcessSize::operator-(const ProcessSize& earlier) const {
    std::map<std::string, int64_t> growth{{"block", blocks - earlier.blocks},
                                          {"byte", bytes - earlier.bytes},
                                          {"handle", handles - earlier.handles}};
    std::erase_if(growth, [](const auto& holding) { return holding.second == 0; });
    return growth;
}
