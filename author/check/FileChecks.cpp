#include <algorithm>
#include <cwctype>
#include <unordered_map>

#include "author/check/Checks.h"
#include "author/check/Targets.h"
#include "system/FileOperations.h"

namespace {

constexpr wchar_t refusedCharacters[] = L"<>|\"*?";
constexpr const wchar_t* deviceNames[] = {L"con", L"prn", L"aux", L"nul"};
constexpr const wchar_t* numberedDevices[] = {L"com", L"lpt"};

constexpr size_t pathLimit = pathBufferLength;  // of a file, its end included

bool isDevice(std::wstring_view name) {
    const std::wstring base = lowered(name.substr(0, name.find(L'.')));
    for (const wchar_t* device : deviceNames)
        if (base == device)
            return true;
    return base.size() == 4 && base[3] >= L'1' && base[3] <= L'9' &&
           std::any_of(std::begin(numberedDevices), std::end(numberedDevices),
                       [&](const wchar_t* device) { return base.starts_with(device); });
}

/// Why Windows takes one part of a path for something else; empty if it doesn't.
std::wstring whyUnwise(std::wstring_view part) {
    if (isDevice(part))
        return L" is the name of a device.";
    if (part.find(L':') != std::wstring_view::npos)
        return L" has a colon, behind which Windows takes it for a stream of another file.";
    if (!part.empty() && part != L"." && part != L".." &&
        (part.back() == L'.' || part.back() == L' '))
        return L" ends in a blank or a dot, which Windows drops.";
    return {};
}

void checkName(const Action& action, const KnownText& name) {
    const Span place = action.placeOf(L"Name");
    if (name.text.find_first_of(refusedCharacters) != std::wstring::npos && name.opaqueEnd == 0) {
        if (action.is(fileKind))
            action.tellFailure(Fault::nameRefused, place,
                               inMarks(name.text) + L" has a character that Windows refuses.",
                               L"take < > | \" * ? out of it.", installingModes);
        else
            action.checked.report.tellOf(
                Fault::nameUnwise, place,
                inMarks(name.text) + L" has a character that Windows refuses.",
                L"take < > | \" * ? out of it.");
    }
    std::wstring_view rest = std::wstring_view(name.text).substr(name.opaqueEnd);
    while (!rest.empty()) {
        const size_t end = std::min(rest.find_first_of(L"\\/"), rest.size());
        const std::wstring reason = whyUnwise(rest.substr(0, end));
        if (!reason.empty())
            action.checked.report.tellOf(Fault::nameUnwise, place,
                                         inMarks(rest.substr(0, end)) + reason);
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
}

/// Part of what is too long is a suffix that only a delayed replacement needs.
void tellLongPath(const Action& action, Span place, size_t shortest, size_t longest) {
    const auto sentence = [](const wchar_t* verb, size_t length) {
        return std::wstring(L"The path ") + verb + L" " + std::to_wstring(length) +
               L" characters; Windows makes files of up to " + std::to_wstring(pathLimit - 1) +
               L".";
    };
    if (shortest >= pathLimit)
        action.tellFailure(Fault::pathTooLongForWindows, place, sentence(L"has at least", shortest),
                           {}, installingModes);
    else if (longest >= pathLimit)
        action.checked.report.tellOf(Fault::pathLikelyTooLong, place,
                                     sentence(L"may have", longest));
}

void checkSource(const Action& action) {
    const KnownText& source = *action.text(L"Source");
    if (holdsWholePath(action, L"Source", source))
        action.tellFailure(Fault::absoluteSource, action.placeOf(L"Source"),
                           inMarks(source.text) +
                               L" is put behind the directory of the host "
                               L"program all the same.",
                           L"name the file relative to the directory of the host program.",
                           installingModes);
}

void checkService(const Action& action) {
    const KnownText& name = *action.text(L"Name");
    const KnownText& keyword = *action.text(L"Action");
    if (name.text.find_first_of(L"\\/") != std::wstring::npos &&
        findKeyword(serviceActionKeywords(), keyword.text))
        action.tellFailure(Fault::nameRefused, action.placeOf(L"Name"),
                           inMarks(name.text) + L" can't be the name of a service.",
                           L"services are named without a path.");
}

const KnownText* pathOf(const MadeElement& element) {
    return element.failed ? nullptr : element.find(pathAttribute);
}

/// Whether what stands in a place goes to where the place itself stands, or below.
bool takesPathFromAround(const ElementNode& place) {
    if (place.is(directoryKind))
        return place.find(pathAttribute) || !isFolderWord(place.id());
    return place.is(componentKind) || place.is(conditionKind);
}

/// The Directory around an element whose own path is a whole one, and is joined to that of the
/// directory around it all the same; noElement if there is none.
ElementNumber joinedDrive(const Action& action) {
    const ScriptModel& model = action.checked.model;
    ElementMaker& maker = action.checked.maker;
    // Comes to an end: what takes its path from itself isn't made, and what stands in it neither.
    for (ElementNumber around = action.node.parent; around != noElement;) {
        const ElementNumber definition = maker.definitionOf(around);
        if (definition == noElement || !takesPathFromAround(model[definition]))
            return noElement;
        around = model[definition].parent;
        if (around == noElement || !model[definition].is(directoryKind) ||
            !model[definition].find(pathAttribute))
            continue;
        const KnownText* above = pathOf(maker.onDemand(around));
        const KnownText* whole = pathOf(maker.onDemand(definition));
        if (!above || !whole || above->text.empty())
            continue;
        std::wstring_view own = std::wstring_view(whole->text).substr(above->text.size());
        own.remove_prefix(std::min(own.find_first_not_of(L"\\/"), own.size()));
        if (whole->opaqueEnd > above->text.size() || (own.size() > 1 && own[1] == L':'))
            return definition;
    }
    return noElement;
}

void checkDirectory(const Action& action) {
    const ElementNumber number = joinedDrive(action);
    if (number == noElement)
        return;
    const ElementNode& directory = action.checked.model[number];
    action.tellFailure(Fault::nameRefused, directory.find(pathAttribute)->valuePlace,
                       inMarks(directory.find(pathAttribute)->value) +
                           L" is put behind the path of the directory around it all the same.",
                       L"move the Directory directly into the Product.", installingModes);
}

void checkFile(const Action& action) {
    checkName(action, *action.text(L"Name"));
    checkSource(action);
    const KnownText target = targetOf(action);
    const KnownText* delay = action.text(L"SupportDelayInstall");
    const size_t suffix = delay && delay->text == yesKeyword ? wcslen(stagingSuffix) : 0;
    tellLongPath(action, action.placeOf(L"Name"), target.shortest, target.longest + suffix);
    checkDirectory(action);
    const KnownText* kill = action.text(L"KillProcess");
    const KnownText& name = *action.text(L"Name");
    const size_t separator = name.text.find_last_of(L"\\/");
    if (kill && kill->exact && kill->text == yesKeyword && name.exact && name.opaqueEnd == 0)
        action.tellLength(
            Fault::pathTooLong, Fault::pathLikelyTooLong, action.placeOf(L"Name"),
            KnownText::of(separator == std::wstring::npos ? name.text
                                                          : name.text.substr(separator + 1)),
            pathLimit);
}

void checkShortcut(const Action& action) {
    checkName(action, *action.text(L"Name"));
    action.tellLength(Fault::pathTooLong, Fault::pathLikelyTooLong, action.placeOf(L"Name"),
                      targetOf(action), pathLimit, installingModes);
    if (lowered(action.text(L"Name")->text).ends_with(L".lnk"))
        action.checked.report.tellOf(
            Fault::shortcutNamedLnk, action.placeOf(L"Name"),
            L"The link will be called " + inMarks(action.text(L"Name")->text + L".lnk") + L".");
    checkDirectory(action);
}

void checkRemoval(const Action& action) {
    const KnownText& path = *action.text(L"Path");
    if (std::wstring_view(path.text).substr(path.opaqueEnd).find_first_of(refusedCharacters) !=
        std::wstring::npos)
        action.tellFailure(Fault::nameRefused, action.placeOf(L"Path"),
                           inMarks(path.text) + L" has a character that Windows refuses.",
                           L"name one directory: there are no patterns.");
    KnownText pattern = path;
    pattern.addSeparator();
    pattern.append(L"*");
    action.tellLength(Fault::pathTooLong, Fault::pathLikelyTooLong, action.placeOf(L"Path"),
                      pattern, pathLimit);
}

void checkCustomAction(const Action& action) {
    constexpr wchar_t root[] = L"APPLICATIONROOTDIRECTORY";
    constexpr size_t limit = 260;  // bytes of the field that tells a function of it
    const ElementNumber number = action.checked.model.find(directoryKind, root);
    if (number == noElement) {
        action.tellFailure(Fault::noApplicationDirectory, action.node.place,
                           std::wstring(L"There is no `Directory` with the Id `") + root +
                               L"`, without which no function is called.",
                           L"give the product's Directory this Id.");
        return;
    }
    const MadeElement& directory = action.checked.maker.onDemand(number);
    const KnownText* path = directory.failed ? nullptr : directory.find(pathAttribute);
    if (path == nullptr) {
        ElementMaker::tellProblems(directory, action.isSure(), false, action.checked.report);
        return;
    }
    if (path->isSurelyEmpty())
        action.tellFailure(Fault::noApplicationDirectory, action.node.place,
                           std::wstring(L"The path of `") + root + L"` is empty.", {});
    KnownText place = *path;
    place.addSeparator();
    action.tellLength(Fault::pathTooLong, Fault::pathLikelyTooLong,
                      action.checked.model[number].place, place, limit);
}

/// Where a path is read as it stands.
struct PathText {
    const ElementKind* kind;
    const wchar_t* attribute;
};

constexpr PathText pathTexts[] = {
    {&directoryKind, L"Path"},       {&fileKind, L"Source"},          {&fileSearchKind, L"Path"},
    {&removeDirectoryKind, L"Path"}, {&customActionKind, L"DllFile"}, {&shellExcuteKind, L"File"},
};

/// A folder word that stands for what an environment variable holds.
struct EnvironmentFolder {
    std::wstring_view variable;
    const wchar_t* word;
};

constexpr EnvironmentFolder environmentFolders[] = {
    {L"programfiles", L"ProgramFilesFolder"},
    {L"programw6432", L"ProgramFilesFolder"},
    {L"windir", L"WindowsFolder"},
    {L"systemroot", L"WindowsFolder"},
};

void checkEnvironment(const Checked& checked, const AttributeNode& path) {
    const size_t start = path.value.find(L'%');
    const size_t end = start == std::wstring::npos ? start : path.value.find(L'%', start + 1);
    if (end == std::wstring::npos)
        return;
    const std::wstring name = path.value.substr(start + 1, end - start - 1);
    const auto belongsToName = [](wchar_t letter) {
        return std::iswalnum(letter) != 0 || letter == L'_' || letter == L'(' || letter == L')';
    };
    if (name.empty() || !std::iswalpha(name.front()) ||
        !std::all_of(name.begin(), name.end(), belongsToName))
        return;
    std::wstring help;
    for (const auto& [variable, word] : environmentFolders)
        if (lowered(name) == variable)
            help = std::wstring(L"did you mean `[") + word + L"]`?";
    checked.report.tellOf(Fault::environmentStaysText,
                          checked.model.spanIn(path, start, end + 1 - start),
                          inMarks(L"%" + name + L"%") + L" isn't replaced.", help);
}

/// Two files in one place, where both are put there.
class TargetCheck {
public:
    void add(const Action& action) {
        const KnownText target = targetOf(action);
        if (!target.exact || (action.visit.possible & installingModes) == 0)
            return;
        const std::wstring text = normalized(target.text);
        for (const Earlier& earlier : byTarget[lowered(text)]) {
            const bool sameModes =
                (earlier.visit->possible & action.visit.possible & installingModes) != 0;
            if (!sameModes || earlier.visit->number == action.visit.number ||
                !(implies(action.visit.guard, earlier.visit->guard) ||
                  implies(earlier.visit->guard, action.visit.guard)))
                continue;
            tell(action, earlier, text);
            return;
        }
        if (std::vector<Earlier>& list = byTarget[lowered(text)]; list.size() < mostCompared)
            list.push_back({&action.visit, text});
    }

private:
    static constexpr size_t mostCompared = 16;

    struct Earlier {
        const Visit* visit;
        std::wstring text;
    };

    static void tell(const Action& action, const Earlier& earlier, const std::wstring& text) {
        const ScriptModel& model = action.checked.model;
        const std::wstring line =
            std::to_wstring(model.text().lineNumberOf(model[earlier.visit->number].place));
        const bool same = text == earlier.text;
        action.checked.report.tellOf(
            same ? Fault::sameTarget : Fault::sameTargetButCase, action.placeOf(L"Name"),
            inMarks(text) +
                (same ? L" is installed by line " + line + L", too."
                      : L" differs in nothing but case from the target in line " + line + L"."));
    }

    std::unordered_map<std::wstring, std::vector<Earlier>> byTarget;
};

}  // namespace

void checkFiles(const Checked& checked) {
    for (const ElementNode& element : checked.model.elements())
        for (const auto& [kind, attribute] : pathTexts)
            if (const AttributeNode* path = element.is(*kind) ? element.find(attribute) : nullptr)
                checkEnvironment(checked, *path);
    TargetCheck targets;
    forEachAction(checked, [&](const Action& action) {
        if (action.is(fileKind)) {
            checkFile(action);
            targets.add(action);
        } else if (action.is(shortcutKind)) {
            checkShortcut(action);
        } else if (action.is(removeDirectoryKind)) {
            checkRemoval(action);
        } else if (action.is(serviceControlKind)) {
            checkService(action);
        } else if (action.is(customActionKind)) {
            checkCustomAction(action);
        }
    });
}
