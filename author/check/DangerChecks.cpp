#include <algorithm>
#include <cwctype>

#include "author/SystemDirectories.h"
#include "author/check/Effects.h"

namespace {

/// Keys that belong to no product alone; in lower case, below HKEY_LOCAL_MACHINE and others.
constexpr const wchar_t* sharedKeys[] = {
    L"software",
    L"software\\classes",
    L"software\\classes\\clsid",
    L"software\\clients",
    L"software\\microsoft",
    L"software\\microsoft\\windows",
    L"software\\microsoft\\windows\\currentversion",
    L"software\\microsoft\\windows\\currentversion\\app paths",
    L"software\\microsoft\\windows\\currentversion\\explorer",
    L"software\\microsoft\\windows\\currentversion\\policies",
    L"software\\microsoft\\windows\\currentversion\\run",
    L"software\\microsoft\\windows\\currentversion\\runonce",
    L"software\\microsoft\\windows\\currentversion\\shareddlls",
    L"software\\microsoft\\windows\\currentversion\\uninstall",
    L"software\\microsoft\\windows nt",
    L"software\\microsoft\\windows nt\\currentversion",
    L"software\\policies",
    L"software\\wow6432node",
    L"system",
    L"system\\currentcontrolset",
    L"system\\currentcontrolset\\control",
    L"system\\currentcontrolset\\services",
    L"system\\currentcontrolset\\services\\eventlog",
    L"system\\currentcontrolset\\services\\eventlog\\application",
    L"environment",
};

/// What can be started elevated.
constexpr const wchar_t* startable[] = {L".exe", L".com", L".bat", L".cmd", L".msc", L".cpl"};

bool isDriveRoot(const std::wstring& path) {
    return path.size() == 2 && path[1] == L':' && std::iswalpha(path[0]);
}

bool hasPath(const KnownText& text) {
    return !text.exact || text.opaqueEnd > 0 ||
           text.text.find_first_of(L"\\/") != std::wstring::npos;
}

class DangerCheck {
public:
    explicit DangerCheck(const Checked& checked) : checked(checked), effects(checked) {
        for (const Effects::Things* things : {&effects.files(), &effects.shortcuts()})
            for (const auto& [path, thing] : *things)
                if (thing.made != 0)
                    addAbove(above(path));
    }

    void check() {
        forEachAction(checked, [this](const Action& action) {
            if (action.is(removeDirectoryKind))
                checkDirectory(action);
            else if (action.is(registryKeyKind))
                checkKey(action);
            else if (action.is(customActionKind))
                checkLibrary(action);
            else if (action.is(shellExcuteKind))
                checkProgram(action);
        });
        forEachActionInOrder(checked, [this](const Action& action) {
            if (action.is(serviceControlKind))
                checkService(action);
        });
    }

private:
    void addAbove(std::wstring_view directory) {
        for (; !directory.empty(); directory = above(directory))
            if (!aboveProduct.insert(withFolderWords(std::wstring(directory))).second)
                return;
    }

    void tell(const Action& action, Fault fault, const wchar_t* attribute, std::wstring text,
              std::wstring help = {}) {
        checked.report.tellOf(fault, action.placeOf(attribute), std::move(text), std::move(help));
    }

    /// How to name a file with its path: where the product installs it, or else by this word.
    std::wstring wholeName(const std::wstring& file, std::wstring_view otherwise) const {
        const ScriptModel& model = checked.model;
        std::wstring directory(otherwise);
        for (const Visit& visit : checked.walk.visits()) {
            const ElementNode& element = model[visit.number];
            const AttributeNode* name = element.find(L"Name");
            if (!element.is(fileKind) || !name || lowered(name->value) != lowered(file))
                continue;
            ElementNumber around = element.parent;
            while (around != noElement && !model[around].is(directoryKind) &&
                   model[around].reference != &directoryReference)
                around = model[around].parent;
            if (around != noElement && !model[around].id().empty()) {
                directory = model[around].id();
                break;
            }
        }
        return L"name it with its whole path, such as [" + directory + L"]" + file + L".";
    }

    /// The Directory that custom actions are told of, or else the first one of the product's own.
    std::wstring_view mainDirectory() const {
        constexpr std::wstring_view root = L"APPLICATIONROOTDIRECTORY";
        if (checked.model.find(directoryKind, root) != noElement)
            return root;
        for (const std::wstring_view id : checked.model.idsOf(directoryKind))
            if (!id.empty() && !isFolderWord(id))
                return id;
        return root;
    }

    /// Whether the product puts something into it or into one around it.
    bool isInProduct(std::wstring_view path) const {
        for (; !path.empty(); path = above(path))
            if (effects.isOwn(path))
                return true;
        return false;
    }

    void checkDirectory(const Action& action) {
        const KnownText& text = *action.text(pathAttribute);
        const std::wstring name = normalized(text.text);
        if (!text.exact || text.text.empty())
            return;
        if (isDriveRoot(name) || name.empty())
            return tell(action, Fault::driveRemoved, pathAttribute,
                        inMarks(name.empty() ? text.text : name) + L" is a whole drive.");
        const std::wstring path = withFolderWords(lowered(name));
        if (isSystemDirectory(path))
            return tell(action, Fault::folderWordRemoved, pathAttribute,
                        inMarks(name) + L" is a folder of the system.");
        if (isInProduct(path) || aboveProduct.empty())
            return;
        // Directly below a folder of the system stand the directories of vendors and of others.
        if (aboveProduct.contains(path)) {
            if (partsOf(path) == 2)
                tell(action, Fault::directoryAboveRemoved, pathAttribute,
                     inMarks(name) + L" is above what the product installs, and may hold others.");
            return;
        }
        const bool isBelowProduct =
            aboveProduct.contains(std::wstring(above(path))) && partsOf(path) > 3;
        if (!isBelowProduct && !checked.report.hasGaps())
            tell(action, Fault::directoryBesideRemoved, pathAttribute,
                 inMarks(name) + L" is beside what the product installs.");
    }

    void checkKey(const Action& action) {
        const KnownText& key = *action.text(L"Key");
        const KnownText& code = *action.text(L"Action");
        const ActionKeyword* keyword = findKeyword(registryKeyActionKeywords(), code.text);
        if (!key.exact || !keyword || keyword->action != ACTION_REMOVE_REGISTRY_KEY)
            return;
        const std::wstring path = lowered(normalized(key.text));
        for (const wchar_t* shared : sharedKeys)
            if (path == shared)
                tell(action, Fault::sharedKeyRemoved, L"Key",
                     inMarks(key.text) + L" belongs to others, too.");
    }

    void checkLibrary(const Action& action) {
        const KnownText& file = *action.text(L"DllFile");
        if (!hasPath(file) && !file.text.empty())
            tell(action, Fault::libraryWithoutPath, L"DllFile",
                 inMarks(file.text) + L" is named without its path.",
                 wholeName(file.text, mainDirectory()));
    }

    void checkProgram(const Action& action) {
        const KnownText& file = *action.text(L"File");
        if (!file.exact || file.text.empty())
            return;
        if (!hasPath(file))
            tell(action, Fault::programWithoutPath, L"File",
                 inMarks(file.text) + L" is named without its path.",
                 wholeName(file.text, L"System32Folder"));
        const std::wstring name = lowered(file.text);
        for (const wchar_t* extension : startable)
            if (const size_t blank = name.find(extension + std::wstring(L" "));
                blank != std::wstring::npos)
                return tell(action, Fault::notStartable, L"File",
                            inMarks(file.text) + L" has arguments in it, and no file is called so.",
                            L"move what follows the program's name to `ExeCommand`.");
        const size_t dot = name.find_last_of(L".\\/");
        if (dot == std::wstring::npos || name[dot] != L'.')
            return;
        if (std::none_of(std::begin(startable), std::end(startable),
                         [&](const wchar_t* extension) { return name.substr(dot) == extension; }))
            tell(
                action, Fault::notStartable, L"File",
                inMarks(file.text.substr(dot)) + L" is no program, and can't be started elevated.");
    }

    void checkService(const Action& action) {
        const KnownText& name = *action.text(L"Name");
        const KnownText& code = *action.text(L"Action");
        const ActionKeyword* keyword = findKeyword(serviceActionKeywords(), code.text);
        if (!name.exact || !keyword)
            return;
        Modes& stopped = stoppedSoFar[lowered(name.text)];
        if (keyword->action == ACTION_STOP_SERVICE)
            stopped |= action.visit.possible;
        else if (keyword->action == ACTION_REMOVE_SERVICE &&
                 (action.visit.possible & ~stopped) != 0)
            tell(
                action, Fault::serviceNotStopped, L"Name",
                L"The service " + inMarks(name.text) + L" is removed without having been stopped.");
    }

    const Checked& checked;
    Effects effects;
    std::unordered_set<std::wstring>
        aboveProduct;  // what something is put into, and what is around
    std::map<std::wstring, Modes> stoppedSoFar;
};

}  // namespace

void checkDangers(const Checked& checked) {
    DangerCheck(checked).check();
}
