#include "plan/ShadowFiles.h"

#include <algorithm>
#include <cwchar>

#include "plan/MachineFile.h"
#include "system/FileOperations.h"
#include "system/PathText.h"

namespace {

constexpr DWORD asDirectory = FILE_FLAG_BACKUP_SEMANTICS;
constexpr DWORD asLink = FILE_FLAG_OPEN_REPARSE_POINT;

SeenFile missing(DWORD error) {
    SeenFile file;
    file.error = error;
    return file;
}

bool isDotEntry(const wchar_t* name) {
    return wcscmp(name, L".") == 0 || wcscmp(name, L"..") == 0;
}

constexpr int dwordBits = 32;

uint64_t sizeOf(const WIN32_FIND_DATAW& data) {
    return uint64_t{data.nFileSizeHigh} << dwordBits | data.nFileSizeLow;
}

WIN32_FIND_DATAW dataOf(const SeenFile& file) {
    WIN32_FIND_DATAW data{};
    data.dwFileAttributes = file.attributes;
    data.ftCreationTime = data.ftLastAccessTime = data.ftLastWriteTime = file.written;
    data.nFileSizeHigh = static_cast<DWORD>(file.size >> dwordBits);
    data.nFileSizeLow = static_cast<DWORD>(file.size);
    file.name.copy(data.cFileName, std::size(data.cFileName) - 1);
    return data;
}

SeenFile newDirectory(const std::wstring& name) {
    SeenFile directory;
    directory.attributes = FILE_ATTRIBUTE_DIRECTORY;
    directory.name = name;
    GetSystemTimeAsFileTime(&directory.written);
    return directory;
}

std::wstring driveOf(const std::wstring& directory) {
    wchar_t drive[pathBufferLength] = {};
    return GetVolumePathNameW(directory.c_str(), drive, pathBufferLength) ? drive : L"";
}

bool isNotFound(DWORD error) {
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

}  // namespace

// What is there.

/// What is told by what has been made or removed at the path or above it; nothing when the machine
/// decides.
std::optional<SeenFile> ShadowFiles::planned(const std::wstring& path) const {
    if (const auto own = files.find(path); own != files.end())
        return own->second;
    bool direct = true;
    for (std::wstring above = parentOf(path); !above.empty();
         above = parentOf(above), direct = false) {
        const auto found = files.find(above);
        if (found == files.end() || (found->second.isDirectory() && isOnMachine(above)))
            continue;
        return missing(direct && found->second.isDirectory() ? ERROR_FILE_NOT_FOUND
                                                             : ERROR_PATH_NOT_FOUND);
    }
    return std::nullopt;
}

SeenFile ShadowFiles::onMachine(const std::wstring& path) const {
    SeenFile file;
    file.attributes = system.GetFileAttributesW(path.c_str());
    if (file.attributes == INVALID_FILE_ATTRIBUTES)
        return missing(GetLastError());
    file.content = path;
    file.name = nameOf(path);
    WIN32_FIND_DATAW data;
    const HANDLE search = system.FindFirstFileW(path.c_str(), &data);
    if (search == INVALID_HANDLE_VALUE)  // as for a drive's root
        return file;
    system.FindClose(search);
    file.name = data.cFileName;
    file.size = sizeOf(data);
    file.written = data.ftLastWriteTime;
    return file;
}

SeenFile ShadowFiles::look(const std::wstring& path) const {
    const std::optional<SeenFile> file = planned(path);
    return file ? *file : onMachine(path);
}

/// Whether what is seen there is what the machine has there, its attributes aside.
bool ShadowFiles::isOnMachine(const std::wstring& path) const {
    const auto own = files.find(path);
    return own == files.end()
               ? !planned(path)
               : own->second.isThere() && equalIgnoringCase(own->second.content, path);
}

/// Calls `visit` for all that has been made or removed directly in a directory.
template <class Visitor>
void ShadowFiles::visitPlannedIn(const std::wstring& directory, Visitor&& visit) const {
    const std::wstring prefix = withSeparator(directory);
    for (auto file = files.lower_bound(prefix); file != files.end(); ++file) {
        if (!equalIgnoringCase(std::wstring_view(file->first).substr(0, prefix.size()), prefix))
            return;
        if (file->first.find(L'\\', prefix.size()) == std::wstring::npos)
            visit(file->first, file->second);
    }
}

bool ShadowFiles::isTouched(const std::wstring& directory) const {
    bool touched = !isOnMachine(directory);
    visitPlannedIn(directory, [&](const auto&...) { touched = true; });
    return touched;
}

DWORD ShadowFiles::answer(Call<&FileCalls::GetFileAttributesW>, const wchar_t* path) {
    const std::optional<SeenFile> file = planned(fullPath(path));
    if (!file)
        return system.GetFileAttributesW(path);
    return answerOf(file->error) ? file->attributes : INVALID_FILE_ATTRIBUTES;
}

// Searches.

DWORD ShadowFiles::searchOnMachine(const wchar_t* pattern,
                                   std::vector<WIN32_FIND_DATAW>& found) const {
    WIN32_FIND_DATAW data;
    const HANDLE handle = system.FindFirstFileW(pattern, &data);
    if (handle == INVALID_HANDLE_VALUE)
        return GetLastError();
    do
        found.push_back(data);
    while (system.FindNextFileW(handle, &data));
    system.FindClose(handle);
    return ERROR_SUCCESS;
}

/// All that a pattern finds in a directory, in the order of the system.
DWORD ShadowFiles::search(const wchar_t* pattern, std::vector<WIN32_FIND_DATAW>& found) const {
    const std::wstring name = nameOf(pattern);
    const std::wstring place(pattern, wcslen(pattern) - name.size());
    const std::wstring directory = fullPath(place.empty() ? L"." : place.c_str());
    const SeenFile seen = look(directory);
    if (!seen.isThere())
        return ERROR_PATH_NOT_FOUND;
    if (!seen.isDirectory())
        return ERROR_DIRECTORY;
    if (isOnMachine(directory)) {
        const DWORD error = searchOnMachine(pattern, found);
        if (error != ERROR_SUCCESS && error != ERROR_FILE_NOT_FOUND)
            return error;
        std::erase_if(found, [&](const WIN32_FIND_DATAW& data) {
            return files.contains(withSeparator(directory) + data.cFileName);
        });
    } else if (matchesPattern(name, L".")) {
        for (const wchar_t* dots : {L".", L".."})
            found.push_back(dataOf(newDirectory(dots)));
    }
    const auto ahead = [](const WIN32_FIND_DATAW& one, const WIN32_FIND_DATAW& other) {
        return !isDotEntry(other.cFileName) && LessIgnoringCase()(one.cFileName, other.cFileName);
    };
    visitPlannedIn(directory, [&](const std::wstring&, const SeenFile& file) {
        if (!file.isThere() || !matchesPattern(name, file.name))
            return;
        const WIN32_FIND_DATAW data = dataOf(file);
        found.insert(std::upper_bound(found.begin(), found.end(), data, ahead), data);
    });
    return found.empty() ? ERROR_FILE_NOT_FOUND : ERROR_SUCCESS;
}

HANDLE ShadowFiles::answer(Call<&FileCalls::FindFirstFileW>, const wchar_t* pattern,
                           WIN32_FIND_DATAW* found) {
    Search result;
    DWORD error = ERROR_SUCCESS;
    const std::wstring path = fullPath(pattern);
    if (isPattern(nameOf(pattern))) {
        if (!isTouched(parentOf(path)))
            return system.FindFirstFileW(pattern, found);
        error = search(pattern, result.found);
    } else {
        const std::optional<SeenFile> file = planned(path);
        if (!file)
            return system.FindFirstFileW(pattern, found);
        error = file->error;
        if (file->isThere() && endsInSeparator(pattern))
            error = ERROR_FILE_NOT_FOUND;
        else
            result.found.push_back(dataOf(*file));
    }
    if (!answerOf(error))
        return INVALID_HANDLE_VALUE;
    *found = result.found[result.next++];
    return searches.give(std::move(result));
}

BOOL ShadowFiles::answer(Call<&FileCalls::FindNextFileW>, HANDLE handle, WIN32_FIND_DATAW* found) {
    Search* const search = searches.find(handle);
    if (search == nullptr)
        return system.FindNextFileW(handle, found);
    if (search->next == search->found.size())
        return answerOf(ERROR_NO_MORE_FILES);
    *found = search->found[search->next++];
    return TRUE;
}

BOOL ShadowFiles::answer(Call<&FileCalls::FindClose>, HANDLE handle) {
    return searches.close(handle) || system.FindClose(handle);
}

// Versions.

DWORD ShadowFiles::answer(Call<&VersionCalls::GetFileVersionInfoSizeW>, const wchar_t* path,
                          DWORD* unused) {
    const std::optional<SeenFile> file = planned(fullPath(path));
    if (!file)
        return versions.GetFileVersionInfoSizeW(path, unused);
    if (!file->isThere() || file->content.empty()) {
        const DWORD nothing =
            file->isDirectory() ? ERROR_ACCESS_DENIED : ERROR_RESOURCE_DATA_NOT_FOUND;
        SetLastError(file->isThere() ? nothing : file->error);
        return 0;
    }
    return versions.GetFileVersionInfoSizeW(file->content.c_str(), unused);
}

BOOL ShadowFiles::answer(Call<&VersionCalls::GetFileVersionInfoW>, const wchar_t* path,
                         DWORD unused, DWORD size, void* block) {
    const std::optional<SeenFile> file = planned(fullPath(path));
    return versions.GetFileVersionInfoW(file ? file->content.c_str() : path, unused, size, block);
}

std::optional<uint64_t> ShadowFiles::versionOf(const std::wstring& path) const {
    DWORD unused = 0;
    const DWORD size = versions.GetFileVersionInfoSizeW(path.c_str(), &unused);
    std::vector<char> block(size);
    void* found = nullptr;
    UINT length = 0;
    if (size == 0 || !versions.GetFileVersionInfoW(path.c_str(), 0, size, block.data()) ||
        !versions.VerQueryValueW(block.data(), L"\\", &found, &length))
        return std::nullopt;
    const auto& fixed = *static_cast<const VS_FIXEDFILEINFO*>(found);
    return uint64_t{fixed.dwFileVersionMS} << dwordBits | fixed.dwFileVersionLS;
}

// What the system would refuse.

/// The nearest directory at or above a path that the machine has and that is still there.
std::wstring ShadowFiles::directoryOnMachine(std::wstring path) const {
    while (!path.empty() && !(look(path).isDirectory() && isOnMachine(path)))
        path = parentOf(path);
    return path;
}

/// For a name that isn't there yet.
DWORD ShadowFiles::refusalToAdd(const std::wstring& path, DWORD right) const {
    const std::wstring parent = parentOf(path);
    if (!look(parent).isDirectory())
        return ERROR_PATH_NOT_FOUND;
    if (isOnMachine(parent))
        return tryToOpen(parent, right, asDirectory);
    // A name that is refused here is refused anywhere.
    const DWORD error =
        tryToOpen(withSeparator(directoryOnMachine(parent)) + nameOf(path), 0, asDirectory);
    if (error == ERROR_INVALID_NAME)
        return error;
    return tryToOpen(path, 0) == ERROR_FILENAME_EXCED_RANGE ? ERROR_FILENAME_EXCED_RANGE
                                                            : ERROR_SUCCESS;
}

DWORD ShadowFiles::refusalToWrite(const wchar_t* target, DWORD newAttributes) const {
    constexpr DWORD kept = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
    const std::wstring path = fullPath(target);
    const SeenFile before = look(path);
    if (isOnMachine(path)) {
        const DWORD error = tryToOpen(target, GENERIC_WRITE);
        if (error == ERROR_FILE_NOT_FOUND) {
            const DWORD refusal = refusalToAdd(path, FILE_ADD_FILE);
            return isNotFound(refusal) ? error : refusal;
        }
        if (error != ERROR_SUCCESS &&
            !(error == ERROR_SHARING_VIOLATION && ended.haveReleased(path)))
            return error;
    } else if (!before.isThere()) {
        return before.error == ERROR_PATH_NOT_FOUND ? before.error
                                                    : refusalToAdd(path, FILE_ADD_FILE);
    } else if (before.isDirectory()) {
        return ERROR_ACCESS_DENIED;
    } else if (before.attributes & FILE_ATTRIBUTE_READONLY) {
        // Whether that keeps this user out is told by the file that it is a copy of.
        if (before.content.empty() ||
            tryToOpen(before.content, GENERIC_WRITE) == ERROR_ACCESS_DENIED)
            return ERROR_ACCESS_DENIED;
    }
    return before.attributes & kept & ~newAttributes ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
}

DWORD ShadowFiles::refusalOfRoom(const std::wstring& path, uint64_t bytes,
                                 uint64_t bytesFreed) const {
    const std::wstring directory = directoryOnMachine(parentOf(path));
    const std::optional<uint64_t> available = freeBytes(directory);
    if (!available)
        return ERROR_SUCCESS;
    const auto taken = bytesTaken.find(driveOf(directory));
    const int64_t needed = static_cast<int64_t>(bytes) - static_cast<int64_t>(bytesFreed) +
                           (taken == bytesTaken.end() ? 0 : taken->second);
    return needed > 0 && static_cast<uint64_t>(needed) > *available ? ERROR_DISK_FULL
                                                                    : ERROR_SUCCESS;
}

// Changes.

std::wstring ShadowFiles::textOf(const SeenFile& file) const {
    if (!file.isThere() || file.isDirectory())
        return {};
    return fileText(file.content.empty() ? std::nullopt : versionOf(file.content), file.size,
                    file.written);
}

Change ShadowFiles::describe(ChangeKind kind, const std::wstring& path, const SeenFile& before,
                             const SeenFile& after) const {
    Change change{};
    change.kind = kind;
    change.object = path;
    change.source = after.content;
    change.bytes = after.size;
    change.bytesBefore = before.size;
    if (!listener.wantsContents())
        return change;
    change.before = textOf(before);
    change.after = textOf(after);
    change.sameContent = before.isThere() && after.isThere() && before.size == after.size &&
                         !before.content.empty() &&
                         (equalIgnoringCase(before.content, after.content) ||
                          haveSameContent(before.content, after.content));
    return change;
}

void ShadowFiles::put(const std::wstring& path, const SeenFile& file) {
    const SeenFile before = look(path);
    bytesTaken[driveOf(directoryOnMachine(parentOf(path)))] +=
        static_cast<int64_t>(file.size) - static_cast<int64_t>(before.size);
    files[path] = file;
}

void ShadowFiles::write(const std::wstring& path, const SeenFile& file) {
    const SeenFile before = look(path);
    SeenFile after = file;
    after.name = before.isThere() ? before.name : nameOf(path);
    put(path, after);
}

DWORD ShadowFiles::copy(const wchar_t* source, const wchar_t* target, bool keep) {
    const std::wstring from = fullPath(source);
    const std::wstring to = fullPath(target);
    if (isOnMachine(from))
        if (const DWORD error = tryToOpen(source, GENERIC_READ))
            return error;
    SeenFile file = look(from);
    if (!file.isThere())
        return file.error;
    if (file.isDirectory())
        return ERROR_ACCESS_DENIED;
    if (equalIgnoringCase(from, to))
        return ERROR_SHARING_VIOLATION;
    const SeenFile before = look(to);
    if (keep && before.isThere())
        return ERROR_FILE_EXISTS;
    file.attributes |= FILE_ATTRIBUTE_ARCHIVE;
    if (const DWORD error = refusalToWrite(target, file.attributes))
        return error;
    if (const DWORD error = refusalOfRoom(to, file.size, before.size))
        return error;
    // Where the system lets a read-only file be written over, it stays read-only.
    if (before.isThere())
        file.attributes |= before.attributes & FILE_ATTRIBUTE_READONLY;
    const Change change = describe(
        before.isThere() ? ChangeKind::fileReplaced : ChangeKind::fileAdded, to, before, file);
    write(to, file);
    listener.planned(change);
    return ERROR_SUCCESS;
}

BOOL ShadowFiles::answer(Call<&FileCalls::CopyFileW>, const wchar_t* source, const wchar_t* target,
                         BOOL keep) {
    return answerOf(copy(source, target, keep != FALSE));
}

DWORD ShadowFiles::remove(const wchar_t* name) {
    const std::wstring path = fullPath(name);
    const bool real = isOnMachine(path);
    if (real) {
        const DWORD error = tryToOpen(name, DELETE, asLink);
        if (error != ERROR_SUCCESS &&
            !(error == ERROR_SHARING_VIOLATION && ended.haveReleased(path)))
            return error;
    }
    const SeenFile file = look(path);
    if (!file.isThere())
        return file.error;
    if (file.isDirectory() || (file.attributes & FILE_ATTRIBUTE_READONLY))
        return ERROR_ACCESS_DENIED;
    // A program that runs can be opened for deletion, but not be deleted.
    if (real && tryToOpen(name, FILE_WRITE_DATA) == ERROR_SHARING_VIOLATION &&
        isProgramFile(path) && !ended.haveReleased(path))
        return ERROR_ACCESS_DENIED;
    const Change change =
        describe(ChangeKind::fileRemoved, path, file, missing(ERROR_FILE_NOT_FOUND));
    put(path, missing(ERROR_FILE_NOT_FOUND));
    listener.planned(change);
    return ERROR_SUCCESS;
}

BOOL ShadowFiles::answer(Call<&FileCalls::DeleteFileW>, const wchar_t* path) {
    return answerOf(remove(path));
}

DWORD ShadowFiles::setAttributes(const wchar_t* name, DWORD attributes) {
    const std::wstring path = fullPath(name);
    if (isOnMachine(path))
        if (const DWORD error = tryToOpen(name, FILE_WRITE_ATTRIBUTES, asDirectory | asLink))
            return error;
    SeenFile file = look(path);
    if (!file.isThere())
        return file.error;
    const SeenFile before = file;
    file.attributes = attributes | (file.attributes & FILE_ATTRIBUTE_DIRECTORY);
    const Change change = describe(ChangeKind::attributesChanged, path, before, file);
    put(path, file);
    listener.planned(change);
    return ERROR_SUCCESS;
}

BOOL ShadowFiles::answer(Call<&FileCalls::SetFileAttributesW>, const wchar_t* path,
                         DWORD attributes) {
    return answerOf(setAttributes(path, attributes));
}

/// The system notes in the registry what it will replace; that note alone can be refused.
DWORD ShadowFiles::replaceAtRestart(const wchar_t* source, const wchar_t* target) {
    HKEY key = nullptr;
    const LSTATUS error =
        RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"System\\CurrentControlSet\\Control\\Session Manager", 0,
                      KEY_QUERY_VALUE | KEY_SET_VALUE, &key);
    if (error != ERROR_SUCCESS)
        return static_cast<DWORD>(error);
    RegCloseKey(key);
    const std::wstring path = fullPath(target);
    listener.planned(describe(ChangeKind::fileAtRestart, path, look(path), look(fullPath(source))));
    return ERROR_SUCCESS;
}

BOOL ShadowFiles::answer(Call<&FileCalls::MoveFileExW>, const wchar_t* source,
                         const wchar_t* target, DWORD /*flags*/) {
    return answerOf(replaceAtRestart(source, target));
}

DWORD ShadowFiles::makeDirectory(const wchar_t* name) {
    const std::wstring path = fullPath(name);
    const SeenFile before = look(path);
    if (before.isThere())
        return ERROR_ALREADY_EXISTS;
    if (before.error != ERROR_FILE_NOT_FOUND)
        return before.error;
    const DWORD error = refusalToAdd(path, FILE_ADD_SUBDIRECTORY);
    if (error != ERROR_SUCCESS)
        return isNotFound(error) ? before.error : error;
    put(path, newDirectory(nameOf(path)));
    Change change{};
    change.kind = ChangeKind::directoryAdded;
    change.object = path;
    listener.planned(change);
    return ERROR_SUCCESS;
}

BOOL ShadowFiles::answer(Call<&FileCalls::CreateDirectoryW>, const wchar_t* path,
                         SECURITY_ATTRIBUTES* /*security*/) {
    return answerOf(makeDirectory(path));
}

bool ShadowFiles::isEmpty(const std::wstring& directory) const {
    std::vector<WIN32_FIND_DATAW> found;
    search((withSeparator(directory) + L"*").c_str(), found);
    return std::all_of(found.begin(), found.end(),
                       [](const WIN32_FIND_DATAW& data) { return isDotEntry(data.cFileName); });
}

DWORD ShadowFiles::removeDirectory(const wchar_t* name) {
    const std::wstring path = fullPath(name);
    const SeenFile directory = look(path);
    if (!directory.isThere())
        return directory.error;
    if (!directory.isDirectory())
        return ERROR_DIRECTORY;
    if (isOnMachine(path))
        if (const DWORD error = tryToOpen(name, DELETE, asDirectory | asLink))
            return error;
    const bool isLink = directory.attributes & FILE_ATTRIBUTE_REPARSE_POINT;
    if (!isLink && !isEmpty(path))
        return ERROR_DIR_NOT_EMPTY;
    if (directory.attributes & FILE_ATTRIBUTE_READONLY)
        return ERROR_ACCESS_DENIED;
    const std::wstring inside = withSeparator(path);
    std::erase_if(files, [&](const auto& file) {
        return equalIgnoringCase(std::wstring_view(file.first).substr(0, inside.size()), inside);
    });
    put(path, missing(ERROR_FILE_NOT_FOUND));
    Change change{};
    change.kind = ChangeKind::directoryRemoved;
    change.object = path;
    listener.planned(change);
    return ERROR_SUCCESS;
}

BOOL ShadowFiles::answer(Call<&FileCalls::RemoveDirectoryW>, const wchar_t* path) {
    return answerOf(removeDirectory(path));
}
