#include <set>

#include "author/SystemDirectories.h"
#include "author/check/Effects.h"

namespace {

bool isOfTheSystem(std::wstring_view directory) {
    return partsOf(directory) < 2 || isSystemDirectory(directory);
}

/// Directories that the install makes for what it puts into them, and that nothing removes.
class LeftDirectories {
public:
    explicit LeftDirectories(const Checked& checked) : checked(checked), effects(checked) {}

    void tell() {
        forEachInstalled([this](const std::wstring& path, const Effects::Thing& thing) {
            const std::wstring directory = outermost(path);
            if (directory.empty() || effects.goesWithDirectory(path, uninstalling))
                return;
            // What stays itself is told of, or stays by design.
            (thing.removed != 0 ? left : needed).insert(directory);
        });
        for (const std::wstring& directory : left)
            if (!needed.contains(directory))
                tellOf(directory);
    }

private:
    template <class Visitor>
    void forEachInstalled(Visitor visitor) const {
        for (const Effects::Things* things : {&effects.files(), &effects.shortcuts()})
            for (const auto& [path, thing] : *things)
                if (thing.made != 0)
                    visitor(path, thing);
    }

    /// The outermost directory around a file that is the product's own. One directly below a folder
    /// of the system that only leads to others is the vendor's, for all of his products.
    std::wstring outermost(const std::wstring& path) const {
        for (size_t end = path.find(L'\\'); end != std::wstring::npos;
             end = path.find(L'\\', end + 1)) {
            std::wstring directory = path.substr(0, end);
            const bool isVendors = isOfTheSystem(above(directory)) && !effects.isOwn(directory);
            if (!isOfTheSystem(directory) && !isVendors)
                return directory;
        }
        return {};
    }

    void tellOf(const std::wstring& directory) const {
        const ScriptModel& model = checked.model;
        for (ElementNumber number = 0; number < model.elements().size(); ++number) {
            if (!model[number].is(directoryKind) || !checked.maker.isUsed(number))
                continue;
            const KnownText* path = checked.maker.onDemand(number).find(pathAttribute);
            if (!path || !path->exact || lowered(normalized(path->text)) != directory)
                continue;
            std::wstring help;
            if (!model[number].id().empty())
                help = L"add <RemoveDirectory Path=\"[" + std::wstring(model[number].id()) +
                       L"]\"/> to a Fragment On=\"uninstall\" at the end of the sequence.";
            return checked.report.tellOf(
                Fault::directoryStays, model[number].place,
                inMarks(normalized(path->text)) + L" stays after uninstall, empty or not.", help);
        }
        checked.report.tellOfFile(Fault::directoryStays,
                                  inMarks(directory) + L" stays after uninstall, empty or not.");
    }

    const Checked& checked;
    Effects effects;
    std::set<std::wstring> left;
    std::set<std::wstring> needed;
};

}  // namespace

void checkDirectories(const Checked& checked) {
    if (!checked.report.hasGaps())
        LeftDirectories(checked).tell();
}
