#include "plan/LibraryFile.h"

#include <windows.h>

#include <algorithm>
#include <cstring>

#include "plan/OpenedFile.h"

namespace {

struct MappingTraits {
    using Handle = HANDLE;
    static Handle invalid() { return nullptr; }
    static void close(Handle handle) { CloseHandle(handle); }
};
struct ViewTraits {
    using Handle = const char*;
    static Handle invalid() { return nullptr; }
    static void close(Handle handle) { UnmapViewOfFile(handle); }
};

/// A file in memory, as it lies on the disk. Nothing behind its end is read.
class FileView {
public:
    explicit FileView(const std::wstring& path) : file(openFile(path.c_str(), GENERIC_READ)) {
        LARGE_INTEGER length{};
        if (!file || !GetFileSizeEx(file.get(), &length) || length.QuadPart == 0)
            return;
        mapping.reset(CreateFileMappingW(file.get(), nullptr, PAGE_READONLY, 0, 0, nullptr));
        view.reset(static_cast<const char*>(MapViewOfFile(mapping.get(), FILE_MAP_READ, 0, 0, 0)));
        size = view ? static_cast<size_t>(length.QuadPart) : 0;
    }

    template <class Record>
    bool read(size_t offset, Record& record) const {
        if (offset > size || size - offset < sizeof record)
            return false;
        std::memcpy(&record, view.get() + offset, sizeof record);
        return true;
    }

    bool readText(size_t offset, std::string& text) const {
        if (offset >= size)
            return false;
        text.assign(view.get() + offset, strnlen(view.get() + offset, size - offset));
        return true;
    }

private:
    OpenedFile file;
    UniqueHandle<MappingTraits> mapping;
    UniqueHandle<ViewTraits> view;
    size_t size = 0;
};

/// A library's headers, and where in the file its addresses lie.
class Image {
public:
    explicit Image(const FileView& file) : file(file) {
        IMAGE_DOS_HEADER start{};
        if (!file.read(0, start) || start.e_magic != IMAGE_DOS_SIGNATURE || start.e_lfanew < 0)
            return;
        const auto at = static_cast<size_t>(start.e_lfanew);
        sections = at + offsetof(IMAGE_NT_HEADERS64, OptionalHeader);
        valid = file.read(at, headers) && headers.Signature == IMAGE_NT_SIGNATURE &&
                headers.FileHeader.Machine == IMAGE_FILE_MACHINE_AMD64 &&
                headers.OptionalHeader.Magic == IMAGE_NT_OPTIONAL_HDR64_MAGIC;
        sections += headers.FileHeader.SizeOfOptionalHeader;
    }

    bool isLibrary() const { return valid; }

    IMAGE_DATA_DIRECTORY exports() const {
        return headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT];
    }

    /// Behind every end for an address that isn't in the file.
    size_t offsetOf(uint64_t address) const {
        for (size_t i = 0; i < headers.FileHeader.NumberOfSections; ++i) {
            IMAGE_SECTION_HEADER section{};
            if (!file.read(sections + i * sizeof section, section))
                break;
            if (address >= section.VirtualAddress &&
                address - section.VirtualAddress < section.SizeOfRawData)
                return static_cast<size_t>(address - section.VirtualAddress +
                                           section.PointerToRawData);
        }
        return SIZE_MAX;
    }

private:
    const FileView& file;
    IMAGE_NT_HEADERS64 headers{};
    size_t sections = 0;
    bool valid = false;
};

}  // namespace

std::optional<std::set<std::string>> exportedNames(const std::wstring& path) {
    const FileView file(path);
    const Image image(file);
    if (!image.isLibrary())
        return std::nullopt;
    std::set<std::string> names;
    IMAGE_EXPORT_DIRECTORY directory{};
    if (image.exports().Size == 0 ||
        !file.read(image.offsetOf(image.exports().VirtualAddress), directory))
        return names;
    for (uint64_t i = 0; i < directory.NumberOfNames; ++i) {
        DWORD address = 0;
        std::string name;
        if (!file.read(image.offsetOf(directory.AddressOfNames + i * sizeof address), address) ||
            !file.readText(image.offsetOf(address), name))
            break;
        names.insert(name);
    }
    return names;
}
