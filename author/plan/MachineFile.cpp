#include "plan/MachineFile.h"

#include <algorithm>
#include <cwchar>
#include <vector>

#include "SizeText.h"
#include "plan/OpenedFile.h"

namespace {

/// Fills the buffer as far as the file goes, and cuts it there.
bool readOn(const OpenedFile& file, std::vector<char>& buffer) {
    DWORD read = 0;
    if (!ReadFile(file.get(), buffer.data(), static_cast<DWORD>(buffer.size()), &read, nullptr))
        return false;
    buffer.resize(read);
    return true;
}

std::wstring timeText(const FILETIME& time) {
    SYSTEMTIME universal{};
    SYSTEMTIME local{};
    if (!FileTimeToSystemTime(&time, &universal) ||
        !SystemTimeToTzSpecificLocalTime(nullptr, &universal, &local))
        return {};
    wchar_t text[32];
    std::swprintf(text, std::size(text), L"%04d-%02d-%02d %02d:%02d", local.wYear, local.wMonth,
                  local.wDay, local.wHour, local.wMinute);
    return text;
}

std::wstring versionText(uint64_t version) {
    std::wstring text;
    for (int shift = 48; shift >= 0; shift -= 16)
        text += std::to_wstring(version >> shift & 0xFFFF) + (shift > 0 ? L"." : L"");
    return text;
}

}  // namespace

DWORD tryToOpen(const std::wstring& path, DWORD access, DWORD flags) {
    return openFile(path.c_str(), access, flags) ? ERROR_SUCCESS : GetLastError();
}

bool haveSameContent(const std::wstring& left, const std::wstring& right) {
    constexpr size_t pieceSize = size_t{1} << 16;
    const OpenedFile one = openFile(left.c_str(), GENERIC_READ, FILE_FLAG_SEQUENTIAL_SCAN);
    const OpenedFile other = openFile(right.c_str(), GENERIC_READ, FILE_FLAG_SEQUENTIAL_SCAN);
    if (!one || !other)
        return false;
    std::vector<char> piece(pieceSize);
    std::vector<char> otherPiece(pieceSize);
    do {
        piece.resize(pieceSize);
        otherPiece.resize(pieceSize);
        if (!readOn(one, piece) || !readOn(other, otherPiece) || piece != otherPiece)
            return false;
    } while (!piece.empty());
    return true;
}

bool isProgramFile(const std::wstring& path) {
    const OpenedFile file = openFile(path.c_str(), GENERIC_READ, 0);
    std::vector<char> start(2);
    return file && readOn(file, start) && start == std::vector<char>{'M', 'Z'};
}

std::optional<uint64_t> freeBytes(const std::wstring& directory) {
    ULARGE_INTEGER available{};
    if (!GetDiskFreeSpaceExW(directory.c_str(), &available, nullptr, nullptr))
        return std::nullopt;
    return available.QuadPart;
}

std::wstring fileText(const std::optional<uint64_t>& version, uint64_t size,
                      const FILETIME& written) {
    std::wstring text = version ? versionText(*version) + L", " : L"";
    text += sizeText(size);
    if (const std::wstring time = timeText(written); !time.empty())
        text += L", " + time;
    return text;
}
