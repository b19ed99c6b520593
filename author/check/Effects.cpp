#include "author/check/Effects.h"

Effects::Effects(const Checked& checked) {
    forEachAction(checked, [&](const Action& action) {
        if (action.is(fileKind))
            addFile(action, fileTargets);
        else if (action.is(shortcutKind))
            addFile(action, linkTargets);
        else if (action.is(registryKeyKind))
            addKey(action);
        else if (action.is(serviceControlKind))
            addService(action);
        else if (action.is(removeDirectoryKind))
            addDirectory(action);
        else if (action.is(shellExcuteKind))
            addCommand(action, L"ExeCommand");
    });
    const ElementNumber product = checked.model.product();
    const std::wstring name =
        product == noElement ? std::wstring() : lowered(checked.model[product].id());
    for (const Things* things : {&fileTargets, &linkTargets})
        for (const auto& [path, thing] : *things)
            if (thing.made != 0)
                addOwn(withFolderWords(std::wstring(above(path))), name);
}

void Effects::addOwn(const std::wstring& directory, const std::wstring& product) {
    if (!ownDirectories.insert(directory).second || product.empty())
        return;
    std::wstring_view outer = directory;
    while (!outer.empty() && !outer.ends_with(L"\\" + product))
        outer = above(outer);
    if (!outer.empty())
        ownDirectories.insert(std::wstring(outer));
}

void Effects::addFile(const Action& action, Things& things) {
    const KnownText target = targetOf(action);
    if (!target.exact)
        return;
    const std::wstring name = normalized(target.text);
    Thing& thing = things.try_emplace(lowered(name), Thing{&action.visit, name}).first->second;
    thing.made |= action.visit.possible & installingModes;
    thing.removed |= action.visit.possible & uninstalling;
}

void Effects::addKey(const Action& action) {
    const KnownText path = keyPathOf(action);
    const ActionCode code = actionOf(*action.visit.made, registryKeyActionKeywords());
    if (!path.exact || code == ActionCode{} ||
        !findKeyword(registryRootKeywords(), action.text(L"Root")->text))
        return;
    const std::wstring name = normalized(path.text);
    const std::wstring key = lowered(name);
    Thing& thing = registryKeys.try_emplace(key, Thing{&action.visit, name}).first->second;
    if (code == ACTION_CREATE_REGISTRY_KEY) {
        if (thing.made == 0)
            thing.visit = &action.visit;
        thing.made |= action.visit.possible;
        return;
    }
    thing.removed |= action.visit.possible;
    for (std::wstring_view outer = above(key); !outer.empty(); outer = above(outer))
        if (!aboveRemoved.insert(std::wstring(outer)).second)
            break;
}

void Effects::addService(const Action& action) {
    const KnownText& name = *action.text(L"Name");
    if (!name.exact)
        return;
    Service& service =
        servicesByName.try_emplace(lowered(name.text), Service{&action.visit, name.text})
            .first->second;
    switch (actionOf(*action.visit.made, serviceActionKeywords())) {
        case ACTION_START_SERVICE:
            if (service.started == 0)
                service.visit = &action.visit;
            service.started |= action.visit.possible;
            break;
        case ACTION_STOP_SERVICE:
            service.stopped |= action.visit.possible;
            break;
        case ACTION_REMOVE_SERVICE:
            service.removed |= action.visit.possible;
            break;
        default:
            break;
    }
}

void Effects::addDirectory(const Action& action) {
    const KnownText& path = *action.text(pathAttribute);
    if (path.exact)
        emptied[lowered(normalized(path.text))] |= action.visit.possible;
}

// What a command does isn't known: what it is about counts as dealt with.
void Effects::addCommand(const Action& action, const wchar_t* attribute) {
    const AttributeNode* command = action.node.find(attribute);
    if (command == nullptr)
        return;
    for (const TextPiece& piece : piecesOf(command->value)) {
        const ElementNumber number =
            piece.meaning == TextPiece::directory && !isFolderWord(piece.text)
                ? action.checked.model.find(directoryKind, piece.text)
                : noElement;
        if (number == noElement)
            continue;
        const KnownText* path = action.checked.maker.onDemand(number).find(pathAttribute);
        if (path && path->exact)
            emptied[lowered(normalized(path->text))] |= action.visit.possible;
    }
}

bool Effects::isOwn(std::wstring_view directory) const {
    return ownDirectories.contains(withFolderWords(std::wstring(directory)));
}

bool Effects::goesWithDirectory(const std::wstring& path, Modes modes) const {
    for (std::wstring_view outer = above(path); !outer.empty(); outer = above(outer))
        if (const auto found = emptied.find(std::wstring(outer));
            found != emptied.end() && (found->second & modes) == modes)
            return true;
    return false;
}

bool Effects::goesWithKey(const std::wstring& key, Modes modes) const {
    for (std::wstring_view outer = key; !outer.empty(); outer = above(outer))
        if (const auto found = registryKeys.find(std::wstring(outer));
            found != registryKeys.end() && (found->second.removed & modes) == modes)
            return true;
    return false;
}
