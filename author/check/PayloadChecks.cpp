#include <windows.h>

#include <filesystem>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "author/Folder.h"
#include "author/check/Targets.h"

namespace fs = std::filesystem;

namespace {

/// What stands beside a payload to install it.
constexpr const wchar_t* hostFiles[] = {L"temz.exe", L"TEMZC.dll", L"TEMZ.dll"};

/// The payload stands in for the directory of the host program, or is a folder in it that all
/// sources name.
class PayloadCheck {
public:
    PayloadCheck(const Checked& checked, const CheckRequest& request)
        : checked(checked), request(request), folder(fs::absolute(request.payload)) {
        if (!folder.has_filename())
            folder = folder.parent_path();
    }

    /// Whether the payload could be read.
    bool check() {
        UnreadFolder unread;
        const std::optional<Folder> read = readFolder(folder.wstring(), unread);
        if (!read)
            return false;
        listFiles(*read, L"");
        forEachAction(checked, [this](const Action& action) {
            if (action.is(fileKind) && (action.visit.possible & installingModes) != 0)
                checkSource(action);
        });
        if (!checked.report.hasGaps())
            checkUnused();
        return true;
    }

private:
    /// The path is that of a folder in the payload, with a separator at its end.
    void listFiles(const Folder& listed, const std::wstring& path) {
        for (const FolderFile& file : listed.files) {
            files.push_back(path + file.name);
            byName.try_emplace(lowered(file.name), files.back());
        }
        for (const Folder& inner : listed.folders)
            listFiles(inner, path + inner.name + L"\\");
    }

    static std::wstring keyOf(const fs::path& path) {
        return lowered(fs::path(path).lexically_normal().make_preferred().wstring());
    }

    void checkSource(const Action& action) {
        const KnownText& source = *action.text(L"Source");
        if (!source.exact || source.text.empty())
            return;
        if (holdsWholePath(action, L"Source", source)) {
            nearSource(
                source.text);  // is told elsewhere, and the file that is meant isn't forgotten
            return;
        }
        fs::path path = folder / fs::path(source.text).relative_path();
        DWORD attributes = GetFileAttributesW(path.c_str());
        if (attributes == INVALID_FILE_ATTRIBUTES) {
            const fs::path beside = folder.parent_path() / fs::path(source.text).relative_path();
            if (keyOf(beside).starts_with(keyOf(folder) + L"\\")) {
                path = beside;
                attributes = GetFileAttributesW(path.c_str());
            }
        }
        used.insert(keyOf(path));
        const Span place = action.placeOf(L"Source");
        if (attributes == INVALID_FILE_ATTRIBUTES)
            checked.report.tellOf(Fault::sourceMissing, place,
                                  inMarks(source.text) + L" isn't in the payload.",
                                  didYouMean(nearSource(source.text)));
        else if (attributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN))
            checked.report.tellOf(Fault::sourceReadOnly, place,
                                  inMarks(source.text) +
                                      L" is read-only or hidden, so an upgrade can't replace its "
                                      L"copy.",
                                  L"take the attribute off the file.");
    }

    /// The file of the payload that was probably meant, as a Source names it; it counts as used.
    std::wstring nearSource(const std::wstring& source) {
        const std::wstring front = folder.filename().wstring() + L"\\";
        const std::wstring wanted = normalized(source);
        const bool namesFolder = lowered(wanted).starts_with(lowered(front));
        const auto sameName = byName.find(lowered(fs::path(wanted).filename().wstring()));
        const std::wstring meant =
            sameName != byName.end()
                ? sameName->second
                : checked.nearMiss.find(namesFolder ? wanted.substr(front.size()) : wanted, files);
        if (meant.empty())
            return {};
        used.insert(keyOf(folder / meant));
        return namesFolder ? front + meant : meant;
    }

    bool isOfTheHost(const fs::path& path) const {
        for (const wchar_t* name : hostFiles)
            if (lowered(path.filename().wstring()) == lowered(name))
                return true;
        const std::wstring key = keyOf(path);
        return key == keyOf(fs::absolute(request.script)) ||
               (!request.previous.empty() && key == keyOf(fs::absolute(request.previous)));
    }

    void checkUnused() {
        for (const std::wstring& file : files)
            if (!isOfTheHost(folder / file) && !used.contains(keyOf(folder / file)))
                checked.report.tellOfFile(
                    Fault::payloadUnused,
                    L"No File installs " + inMarks(file) + L" of the payload.");
    }

    const Checked& checked;
    const CheckRequest& request;
    fs::path folder;
    std::vector<std::wstring> files;  // from the folder on
    std::unordered_map<std::wstring, std::wstring> byName;
    std::unordered_set<std::wstring> used;
};

}  // namespace

bool checkPayload(const Checked& checked, const CheckRequest& request) {
    return PayloadCheck(checked, request).check();
}
