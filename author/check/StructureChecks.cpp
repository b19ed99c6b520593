#include <unordered_map>

#include "author/check/Checks.h"
#include "author/check/XmlChecks.h"
#include "system/ShellOperations.h"

namespace {

bool isDefinition(const ElementNode& element) {
    return element.is(componentKind) || element.is(fragmentKind) || element.is(featureKind);
}

bool isDirectoryReference(const ElementNode& element) {
    return element.reference == &directoryReference;
}

bool isPlace(const ElementNode& element) {
    return element.is(directoryKind) || isDirectoryReference(element);
}

bool isVariable(const ElementNode& element) {
    return element.is(variableKind) || element.is(variableConstKind);
}

class StructureCheck {
public:
    explicit StructureCheck(const Checked& checked)
        : model(checked.model), checked(checked), report(checked.report) {}

    void check() {
        if (!checkTop())
            return;
        findUsedPlaces();
        for (ElementNumber number = 1; number < model.elements().size();)
            number = checkElement(number);
        checkHiddenIds();
    }

private:
    bool checkTop() {
        if (model.elements().empty() || model.product() == noElement) {
            tellNoProduct();
            return false;
        }
        ElementMaker::tellProblems(checked.maker.onDemand(model.product()), true, false, report);
        if (model.sequence() == noElement) {
            std::vector<std::wstring_view> names;
            for (ElementNumber child = model[model.product()].firstChild; child != noElement;
                 child = model[child].nextSibling)
                names.push_back(model[child].name);
            const std::wstring nearest = checked.nearMiss.find(installKind.name, names);
            report.tellOf(Fault::noSequence, model[model.product()].place,
                          L"The `Product` has no `InstallExecuteSequence`, so no run can begin.",
                          nearest.empty() ? nearest : L"is " + inMarks(nearest) + L" meant as it?");
        }
        return true;
    }

    /// At the element that is meant as the product, if one is.
    void tellNoProduct() {
        const std::wstring text = L"The script has no `Product` in its root element.";
        std::vector<std::wstring_view> names;
        for (const ElementNode& element : model.elements())
            names.push_back(element.name);
        const std::wstring nearest = checked.nearMiss.find(productKind.name, names);
        for (const ElementNode& element : model.elements()) {
            if (element.is(productKind))
                return report.tellOf(Fault::noProduct, element.place, text,
                                     L"put this one directly into the root element.");
            if (element.name == nearest)
                return report.tellOf(Fault::noProduct, element.place, text,
                                     L"is " + inMarks(nearest) + L" meant as it?");
        }
        report.tellOfFile(Fault::noProduct, text, model.text().isCutShort() ? cutShortHelp : L"");
    }

    /// A place is used by an [id], by a reference, and by the components in it.
    void findUsedPlaces() {
        used.resize(model.elements().size());
        const auto mark = [this](ElementNumber number) {
            for (; number != noElement && !used[number]; number = model[number].parent)
                used[number] = true;
        };
        for (const Visit& visit : checked.walk.visits())
            mark(visit.number);
        for (ElementNumber number = 0; number < model.elements().size(); ++number)
            if (isPlace(model[number]) && checked.maker.isUsed(number)) {
                mark(number);
                if (const ElementNumber target = checked.maker.definitionOf(number);
                    target != noElement)
                    mark(target);
            }
        for (const ElementNode& element : model.elements())
            if (isDirectoryReference(element) && used[&element - model.elements().data()])
                if (const ElementNumber target = model.find(directoryKind, element.id());
                    target != noElement)
                    mark(target);
    }

    /// Checks an element outside the sequence and gives the number of the next one to check.
    ElementNumber checkElement(ElementNumber number) {
        const ElementNode& element = model[number];
        const ElementNumber parent = element.parent;
        if (parent == noElement)
            return element.end;  // a further root
        if (model.isRoot(parent))
            return checkChildOfRoot(number);
        if (number == model.sequence())
            return element.end;
        if (element.is(installKind)) {
            report.tellOf(Fault::furtherSequence, element.place,
                          L"This `InstallExecuteSequence` is never run.",
                          L"only the first one directly in the Product is.");
            return element.end;
        }
        if (isVariable(element)) {
            report.tellOf(Fault::unseenVariable, element.place,
                          describe(element) + L" isn't seen here.",
                          L"put it directly into the root element, beside the Product.");
            return element.end;
        }
        if (isPlace(element))
            return checkPlace(number);
        if (isDefinition(element))
            return checkDefinition(number);
        if (element.is(conditionKind) && used[number]) {
            report.tellOf(Fault::conditionNotEvaluated, element.place,
                          L"This `Condition` is never evaluated: what stands in it is reached by "
                          L"reference.",
                          L"put it around the reference, or into the definition.");
            return number + 1;
        }
        tellWithoutMeaning(element);
        return used[number] ? number + 1 : element.end;
    }

    ElementNumber checkChildOfRoot(ElementNumber number) {
        const ElementNode& element = model[number];
        if (number == model.product())
            return number + 1;
        if (isVariable(element))
            return element.end;
        if (element.is(productKind))
            report.tellOf(Fault::furtherProduct, element.place,
                          L"This `Product` never counts: the first one is the product.");
        else
            tellWithoutMeaning(element);
        return element.end;
    }

    ElementNumber checkPlace(ElementNumber number) {
        const ElementNode& element = model[number];
        if (isDirectoryReference(element))
            checkDirectoryReference(element);
        else if (!isFolderWord(element.id()))
            checkFolderWord(number);
        if (used[number] || element.firstChild != noElement)
            return number + 1;
        report.tellOf(Fault::unreachedDefinition, element.place,
                      L"Nothing uses " + describe(element) + L".",
                      L"remove it, or refer to it as [Id].");
        return element.end;
    }

    void checkDirectoryReference(const ElementNode& element) {
        const AttributeNode* id = element.find(idAttribute);
        if (id == nullptr)
            tellWithoutId(element, false, report);
        else if (model.find(directoryKind, id->value) == noElement)
            tellOfNothing(element, *id, model, checked.nearMiss, false, report);
    }

    void checkFolderWord(ElementNumber number) {
        const ElementNode& element = model[number];
        const std::wstring nearest = checked.nearMiss.find(element.id(), folderWords());
        if (nearest.empty())
            return checkRelativePath(number);
        std::wstring text = inMarks(element.id()) + L" is no folder of the system";
        const bool isOutermost = !isPlace(model[element.parent]);
        if (isOutermost && element.find(pathAttribute) == nullptr)
            text += L", so what stands in it goes to a path relative to the working directory";
        report.tellOf(Fault::outsideFolders, element.find(idAttribute)->valuePlace, text + L".",
                      didYouMean(nearest));
    }

    /// An outermost directory has nothing that its path could be joined to.
    void checkRelativePath(ElementNumber number) {
        const ElementNode& element = model[number];
        if (isPlace(model[element.parent]) || !element.find(pathAttribute))
            return;
        const KnownText* path = checked.maker.onDemand(number).find(pathAttribute);
        if (path == nullptr || !path->exact || path->text.empty() || path->opaqueEnd > 0 ||
            path->text.find_first_of(L"\\/") == 0 || path->text.find(L':') != std::wstring::npos)
            return;
        report.tellOf(Fault::outsideFolders, element.find(pathAttribute)->valuePlace,
                      inMarks(path->text) + L" is relative to the working directory.",
                      L"put the Directory into one whose Id is a folder word, such as "
                      L"ProgramFilesFolder.");
    }

    ElementNumber checkDefinition(ElementNumber number) {
        const ElementNode& element = model[number];
        if (checked.walk.isReached(number))
            return element.end;
        if (used[number])
            return number + 1;
        const bool isHidden = element.find(idAttribute) && element.kind &&
                              model.find(*element.kind, element.id()) != number;
        if (!isHidden) {
            std::wstring help = L"refer to it by `" + element.name + L"Ref` in the sequence.";
            if (element.id().empty())
                help = L"give it an Id, and r" + help.substr(1);
            report.tellOf(Fault::unreachedDefinition, element.place,
                          L"Nothing reaches " + describe(element) + L".", help);
        }
        return element.end;
    }

    void tellWithoutMeaning(const ElementNode& element) {
        std::wstring help;
        if (!element.kind && !element.reference)
            help = didYouMean(checked.nearMiss.find(element.name, allElementNames()));
        else
            help = L"put it into an element that may hold it.";
        report.tellOf(Fault::elementWithoutMeaning, element.place,
                      inMarks(element.name) + L" means nothing in " +
                          inMarks(model[element.parent].name) + L" and is passed over.",
                      help);
    }

    void checkHiddenIds() {
        for (ElementNumber number = model.product() + 1; number < model[model.product()].end;
             ++number) {
            const ElementNode& element = model[number];
            if ((!isDefinition(element) && !element.is(directoryKind)) || element.id().empty())
                continue;
            const ElementNumber first = model.find(*element.kind, element.id());
            if (first == number)
                continue;
            const std::wstring line =
                std::to_wstring(model.text().lineNumberOf(model[first].place));
            report.tellOf(Fault::hiddenId, element.find(idAttribute)->valuePlace,
                          describe(element) + L" is hidden by the one in line " + line + L".",
                          hiddenHelp(element, model[first]));
        }
    }

    /// An element that defines nothing of its own was meant to refer to the other.
    static std::wstring hiddenHelp(const ElementNode& hidden, const ElementNode& first) {
        const auto definesNothing = [](const ElementNode& element) {
            return element.is(directoryKind) ? !element.find(pathAttribute)
                                             : element.firstChild == noElement;
        };
        if (definesNothing(hidden))
            return L"is `" + hidden.name + L"Ref` meant?";
        if (definesNothing(first))
            return L"is `" + hidden.name + L"Ref` meant there?";
        return L"give it an Id of its own.";
    }

    const ScriptModel& model;
    const Checked& checked;
    Report& report;
    std::vector<bool> used;
};

}  // namespace

void checkStructure(const Checked& checked) {
    StructureCheck(checked).check();
}
