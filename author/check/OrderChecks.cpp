#include <map>
#include <unordered_set>
#include <vector>

#include "author/check/Effects.h"

namespace {

constexpr Modes installing = 1U << RUNMODE_INSTALL;

/// Holds the actions of a run against those before them: what is started must be there, and what
/// has just been installed must stay.
class OrderCheck {
public:
    explicit OrderCheck(const Checked& checked) : checked(checked), effects(checked) {}

    void check() {
        forEachActionInOrder(checked, [this](const Action& action) {
            if (action.is(fileKind))
                passFile(action);
            else if (action.is(shortcutKind))
                passInstalled(action, targetOf(action));
            else if (action.is(removeDirectoryKind))
                passRemoval(action);
            else if (action.is(customActionKind))
                checkStart(action, L"DllFile");
            else if (action.is(shellExcuteKind))
                checkStart(action, L"File");
        });
    }

private:
    /// So many actions are remembered for one path: others hardly tell more.
    static constexpr size_t mostRemembered = 16;
    using Earlier = std::map<std::wstring, std::vector<const Visit*>, std::less<>>;

    static void remember(Earlier& earlier, std::wstring_view path, const Visit& visit) {
        if (std::vector<const Visit*>& visits = earlier[std::wstring(path)];
            visits.size() < mostRemembered)
            visits.push_back(&visit);
    }

    void passInstalled(const Action& action, const KnownText& target) {
        if (!target.exact || (action.visit.possible & installingModes) == 0)
            return;
        const std::wstring path = lowered(normalized(target.text));
        for (std::wstring_view outer = above(path); !outer.empty(); outer = above(outer))
            remember(filled, outer, action.visit);
    }

    void passFile(const Action& action) {
        const KnownText target = targetOf(action);
        passInstalled(action, target);
        if (!target.exact)
            return;
        const std::wstring path = lowered(normalized(target.text));
        if ((action.visit.possible & installing) != 0)
            installed.insert(path);
        if ((action.visit.possible & uninstalling) != 0)
            remember(removed, path, action.visit);
    }

    void passRemoval(const Action& action) {
        const KnownText& text = *action.text(pathAttribute);
        const std::wstring path = lowered(normalized(text.text));
        if (!text.exact || partsOf(path) < 2)
            return;
        if ((action.visit.possible & uninstalling) != 0)
            remember(emptied, path, action.visit);
        const auto found = filled.find(path);
        if (found == filled.end())
            return;
        for (const Visit* visit : found->second) {
            const bool bothRun = (visit->possible & action.visit.possible & installingModes) != 0 &&
                                 (implies(action.visit.guard, visit->guard) ||
                                  implies(visit->guard, action.visit.guard));
            if (!bothRun)
                continue;
            checked.report.tellOf(Fault::installedDirectoryRemoved, action.placeOf(pathAttribute),
                                  inMarks(normalized(text.text)) + L" holds what line " +
                                      lineOf(*visit) + L" has just installed.");
            return;
        }
    }

    void checkStart(const Action& action, const wchar_t* attribute) {
        const KnownText& file = *action.text(attribute);
        const std::wstring path = lowered(normalized(file.text));
        if (!file.exact || path.empty())
            return;
        if (const Visit* removal = removalBefore(action, path)) {
            action.tellFailure(Fault::gone, action.placeOf(attribute),
                               inMarks(normalized(file.text)) + L" has been removed by line " +
                                   lineOf(*removal) + L" of the same uninstall.",
                               {}, uninstalling, (removal->sure & uninstalling) != 0);
            return;
        }
        // One in a Condition may know that the file is there from before.
        const auto thing = effects.files().find(path);
        const bool comesLater = thing != effects.files().end() &&
                                (thing->second.made & installing) != 0 && !installed.contains(path);
        const KnownText* vital = action.text(L"Vital");
        if (comesLater && (action.visit.sure & installing) != 0 &&
            (vital == nullptr || vital->text == yesKeyword))
            checked.report.tellOf(Fault::notThereYet, action.placeOf(attribute),
                                  inMarks(normalized(file.text)) + L" is installed only by line " +
                                      lineOf(*thing->second.visit) + L", behind this.");
    }

    /// What has removed the path at uninstall wherever the action comes to be done.
    const Visit* removalBefore(const Action& action, std::wstring_view path) const {
        if ((action.visit.possible & uninstalling) == 0)
            return nullptr;
        const auto in = [&](const Earlier& earlier, std::wstring_view place) -> const Visit* {
            const auto found = earlier.find(place);
            if (found == earlier.end())
                return nullptr;
            for (const Visit* visit : found->second)
                if (implies(action.visit.guard, visit->guard))
                    return visit;
            return nullptr;
        };
        if (const Visit* visit = in(removed, path))
            return visit;
        for (std::wstring_view outer = above(path); !outer.empty(); outer = above(outer))
            if (const Visit* visit = in(emptied, outer))
                return visit;
        return nullptr;
    }

    std::wstring lineOf(const Visit& visit) const {
        return std::to_wstring(
            checked.model.text().lineNumberOf(checked.model[visit.number].place));
    }

    const Checked& checked;
    Effects effects;
    std::unordered_set<std::wstring> installed;  // files, by an install
    Earlier filled;                              // directories, by an install or an upgrade
    Earlier removed;                             // files, by an uninstall
    Earlier emptied;                             // directories, by an uninstall
};

}  // namespace

void checkOrder(const Checked& checked) {
    OrderCheck(checked).check();
}
