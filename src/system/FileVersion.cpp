#include "system/FileVersion.h"

#include <memory>
#include <new>
#include <string_view>

#include "logging/Log.h"
#include "system/TextParsing.h"
#include "system/VersionCalls.h"

bool getFileVersionOrThrow(const wchar_t* path, uint64_t& version) {
    DWORD ignored = 0;
    const DWORD size = versionCalls.GetFileVersionInfoSizeW(path, &ignored);
    if (size == 0) {
        writeLog(WARNNING, "Failed to GetFileVersionInfoSize");
        return false;
    }
    // A block that turns out to be unreadable is left alone and not given back.
    std::unique_ptr<std::byte[]> block(new std::byte[size]);
    if (!versionCalls.GetFileVersionInfoW(path, 0, size, block.get())) {
        writeLog(WARNNING, "Failed to GetFileVersionInfo");
        static_cast<void>(block.release());
        return false;
    }
    void* root = nullptr;
    UINT length = 0;
    if (!versionCalls.VerQueryValueW(block.get(), L"\\", &root, &length)) {
        writeLog(WARNNING, "Failed to VerQueryValue");
        static_cast<void>(block.release());
        return false;
    }
    const auto& fixed = *static_cast<const VS_FIXEDFILEINFO*>(root);
    writeLog(INFO, "File Version MS:", fixed.dwFileVersionMS, " LS:", fixed.dwFileVersionLS);
    version = uint64_t{fixed.dwFileVersionMS} << 32 | fixed.dwFileVersionLS;
    return true;
}

bool getFileVersion(const wchar_t* path, uint64_t& version) {
    try {
        return getFileVersionOrThrow(path, version);
    } catch (const std::bad_alloc&) {
        writeLog(WARNNING, "Failed to GetFileVersionInfo");
        return false;
    }
}

uint64_t parseVersionText(const wchar_t* text) {
    constexpr int fieldBits = 16;
    uint64_t version = 0;
    std::wstring_view rest = text;
    for (int shift = 3 * fieldBits; shift >= 0; shift -= fieldBits) {
        const size_t dot = rest.find(L'.');
        int32_t field = 0;
        if (!parseIntText(std::wstring(rest.substr(0, dot)).c_str(), field))
            break;
        version |= static_cast<uint64_t>(int64_t{field}) << shift;
        if (dot == std::wstring_view::npos)
            break;
        rest.remove_prefix(dot + 1);
    }
    return version;
}
