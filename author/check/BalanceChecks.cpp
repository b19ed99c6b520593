#include <unordered_set>

#include "author/check/Effects.h"

namespace {

constexpr Modes installing = 1U << RUNMODE_INSTALL;

class BalanceCheck {
public:
    explicit BalanceCheck(const Checked& checked)
        : checked(checked), model(checked.model), effects(checked) {}

    void check() {
        for (const auto& [path, file] : effects.files())
            checkFile(path, file, Fault::fileStays);
        for (const auto& [path, link] : effects.shortcuts())
            checkFile(path, link, Fault::shortcutStays);
        for (const auto& [key, thing] : effects.keys())
            checkKey(key, thing);
        for (const auto& [name, service] : effects.services())
            checkService(service);
    }

private:
    Span placeOf(const Visit& visit) const { return model[visit.number].place; }

    void checkFile(const std::wstring& path, const Effects::Thing& thing, Fault stays) {
        if (thing.made == 0) {
            if (!checked.report.hasGaps())
                checked.report.tellOf(Fault::fileNeverInstalled, placeOf(*thing.visit),
                                      inMarks(thing.name) + L" is removed, but never installed.");
            return;
        }
        if (thing.removed != 0 || effects.goesWithDirectory(path, uninstalling))
            return;
        if (thing.made == installing && stays == Fault::fileStays)
            checked.report.tellOf(
                Fault::fileStaysByDesign, placeOf(*thing.visit),
                inMarks(thing.name) + L" is put in place at install alone, and stays for good.",
                L"nothing, if it is the user's from then on.");
        else
            checked.report.tellOf(stays, placeOf(*thing.visit),
                                  inMarks(thing.name) + L" is never removed.",
                                  L"let its Component take part in uninstall, too.");
    }

    /// Keys that only lead to others count with these.
    bool holdsOnlyKeys(ElementNumber number) const {
        bool holdsKeys = false;
        for (ElementNumber inner = number + 1; inner < model[number].end; ++inner) {
            if (model[inner].is(registryValueKind))
                return false;
            if (model[inner].is(registryKeyKind)) {
                holdsKeys = true;
                inner = model[inner].end - 1;
            }
        }
        return holdsKeys;
    }

    void checkKey(const std::wstring& key, const Effects::Thing& thing) {
        const bool goes = effects.goesWithKey(key, uninstalling);
        if ((thing.made & installingModes) != 0 && !goes && !effects.holdsRemovedKey(key) &&
            !holdsOnlyKeys(thing.visit->number) && isOutermost(key, staying))
            checked.report.tellOf(Fault::keyStays, placeOf(*thing.visit),
                                  inMarks(thing.name) + L" is never removed.");
        if ((thing.made & uninstalling) != 0 && (thing.made & installingModes) != 0 &&
            isOutermost(key, madeAtUninstall))
            checked.report.tellOf(Fault::keyMadeAtUninstall, placeOf(*thing.visit),
                                  inMarks(thing.name) + L" is made at uninstall, too.");
        if (thing.made == 0 && (thing.removed & uninstalling) != 0 && !isNearMadeKey(key) &&
            !checked.report.hasGaps())
            checked.report.tellOf(Fault::keyNeverMade, placeOf(*thing.visit),
                                  inMarks(thing.name) + L" is removed, but never made.");
    }

    /// Adds the key to those that something is wrong with. Whether none above it is there already,
    /// of which the same would be told: keys come after those that they stand in.
    static bool isOutermost(const std::wstring& key, std::unordered_set<std::wstring>& keys) {
        keys.insert(key);
        for (std::wstring_view outer = above(key); !outer.empty(); outer = above(outer))
            if (keys.contains(std::wstring(outer)))
                return false;
        return true;
    }

    /// Whether the script makes a key above this one or in it.
    bool isNearMadeKey(const std::wstring& key) const {
        for (std::wstring_view outer = above(key); !outer.empty(); outer = above(outer))
            if (const auto found = effects.keys().find(std::wstring(outer));
                found != effects.keys().end() && found->second.made != 0)
                return true;
        const auto next = effects.keys().upper_bound(key);
        return next != effects.keys().end() && next->first.starts_with(key + L"\\") &&
               next->second.made != 0;
    }

    void checkService(const Effects::Service& service) {
        if ((service.started & installingModes) != 0 &&
            ((service.stopped | service.removed) & uninstalling) == 0)
            checked.report.tellOf(Fault::serviceStays, placeOf(*service.visit),
                                  L"The service " + inMarks(service.name) +
                                      L" is neither stopped nor removed at uninstall.",
                                  L"stop and remove it in a Fragment On=\"uninstall\".");
    }

    const Checked& checked;
    const ScriptModel& model;
    Effects effects;
    std::unordered_set<std::wstring> staying;          // keys
    std::unordered_set<std::wstring> madeAtUninstall;  // keys
};

std::wstring lineIn(const Checked& script, const Visit& visit) {
    return std::to_wstring(script.model.text().lineNumberOf(script.model[visit.number].place));
}

}  // namespace

void checkBalance(const Checked& checked) {
    BalanceCheck(checked).check();
}

void checkUpgrade(const Checked& checked, const Checked& previous) {
    if (checked.report.hasGaps())
        return;
    const Effects before(previous);
    const Effects now(checked);
    const auto tell = [&](Fault fault, const std::wstring& name, const Visit& visit) {
        const wchar_t* what = fault == Fault::serviceLeftByUpgrade ? L"The service " : L"";
        checked.report.tellOfFile(fault, what + inMarks(name) + L" of the version before (line " +
                                             lineIn(previous, visit) +
                                             L" of its script) is left by an upgrade.");
    };
    const auto checkFiles = [&](const Effects::Things& old, const Effects::Things& current) {
        for (const auto& [path, thing] : old)
            if (thing.made != 0 && !current.contains(path) &&
                !now.goesWithDirectory(path, upgrading))
                tell(Fault::fileLeftByUpgrade, thing.name, *thing.visit);
    };
    checkFiles(before.files(), now.files());
    checkFiles(before.shortcuts(), now.shortcuts());
    for (const auto& [key, thing] : before.keys())
        if ((thing.made & installingModes) != 0 && !now.keys().contains(key) &&
            !now.goesWithKey(key, upgrading))
            tell(Fault::keyLeftByUpgrade, thing.name, *thing.visit);
    for (const auto& [name, service] : before.services())
        if (service.started != 0 && !now.services().contains(name))
            tell(Fault::serviceLeftByUpgrade, service.name, *service.visit);
}
