#include "author/check/ElementMaker.h"

#include <algorithm>
#include <iterator>
#include <unordered_set>

#include "elements/MakingScope.h"
#include "system/ShellOperations.h"

namespace {

constexpr size_t idLimit = 256;

bool isCumulative(const ElementKind& kind, std::wstring_view attribute) {
    return (&kind == &directoryKind && attribute == pathAttribute) ||
           (&kind == &registryKeyKind && attribute == L"Key");
}

bool isExpandable(const ElementKind& kind) {
    return &kind != &variableKind && &kind != &variableConstKind;
}

/// Whether the element's own XML gives it the attribute: what isn't declared isn't read there.
bool isDeclaredOn(const ElementNode& element, const wchar_t* attributeName) {
    return element.find(attributeName) &&
           std::any_of(element.kind->declared.begin(), element.kind->declared.end(),
                       [&](const AttributeDeclaration& declaration) {
                           return std::wstring_view(declaration.name) == attributeName;
                       });
}

/// How many elements one makes of itself: CreateElement leaves those that a run executes to the
/// other factory, which the walk asks at once.
size_t ownCost(const MadeElement& element) {
    const auto lookedUp = lookedUpKinds();
    const bool isLookedUp =
        std::find(lookedUp.begin(), lookedUp.end(), element.kind) != lookedUp.end();
    return isLookedUp || element.around ? 1 : 2;
}

bool needsTooMuch(const MadeElement& element) {
    return element.total > maxMakingNeeds || element.taken > maxMakingText;
}

std::wstring kindOfPlace(std::wstring_view attributeName) {
    return attributeName == pathAttribute ? L"no directory around it has a path"
                                          : L"no element around it has one";
}

}  // namespace

std::wstring describe(const ElementNode& element) {
    const std::wstring_view id = element.id();
    return inMarks(element.name) + (id.empty() ? L"" : L" " + inMarks(id));
}

bool isFolderWord(std::wstring_view word) {
    const auto words = folderWords();
    return std::any_of(words.begin(), words.end(),
                       [&](const FolderWord& row) { return word == row.word; });
}

const KnownText* MadeElement::find(std::wstring_view name) const {
    const MadeElement* asked = this;
    while (asked) {
        for (const auto& [attributeName, text] : asked->attributes)
            if (name == attributeName)
                return &text;
        const bool passesOn = asked->kind == &conditionKind && name != L"Expression";
        asked = passesOn ? asked->around : nullptr;
    }
    return nullptr;
}

ElementMaker::ElementMaker(const ScriptModel& model, const ScriptVariables& variables,
                           NearMiss& nearMiss)
    : model(model),
      variables(variables),
      nearMiss(nearMiss),
      made(model.elements().size()),
      states(model.elements().size(), State::unknown) {}

bool ElementMaker::asksParent(const ElementKind& kind) {
    return !kind.derived.empty() || &kind == &conditionKind;
}

ElementNumber ElementMaker::definitionOf(ElementNumber number) const {
    const ElementNode& element = model[number];
    return element.reference ? model.find(*element.reference->target, element.id()) : number;
}

const MadeElement& ElementMaker::onDemand(ElementNumber number) {
    if (states[number] != State::done)
        demand(number);
    return *made[number];
}

// Without recursion: what elements need can form a chain as long as the script.
void ElementMaker::demand(ElementNumber number) {
    std::vector<ElementNumber> open{number};
    while (!open.empty()) {
        const ElementNumber current = open.back();
        if (states[current] == State::done) {
            open.pop_back();
            continue;
        }
        const bool isNew = states[current] == State::unknown;
        if (isNew)
            begin(current);
        MadeElement& element = *made[current];
        const std::vector<ElementNumber> needs =
            element.kind ? needsOf(element.number) : std::vector<ElementNumber>{};
        if (isNew) {
            const size_t before = open.size();
            std::copy_if(needs.begin(), needs.end(), std::back_inserter(open),
                         [&](ElementNumber need) { return states[need] == State::unknown; });
            if (open.size() > before)
                continue;
        }
        const auto circle = std::find_if(needs.begin(), needs.end(), [&](ElementNumber need) {
            return states[need] == State::open;
        });
        if (circle != needs.end()) {
            failInCircle(element, *circle);
        } else if (element.kind) {
            const ElementNumber parent = model[element.number].parent;
            make(element,
                 parent != noElement && states[parent] == State::done ? made[parent] : nullptr);
        }
        states[current] = State::done;
        open.pop_back();
    }
}

void ElementMaker::begin(ElementNumber number) {
    states[number] = State::open;
    const ElementNumber definition = definitionOf(number);
    MadeElement& element = storage.emplace_back();
    element.number = definition == noElement ? number : definition;
    element.kind = model[element.number].kind;
    element.failed = element.kind == nullptr;
    made[number] = &element;
}

void ElementMaker::failInCircle(MadeElement& element, ElementNumber next) {
    const ElementNode& node = model[element.number];
    element.endless = true;
    std::wstring way;
    if (definitionOf(next) != element.number)
        way = L", by way of " + describe(model[next]);
    fail(element, {Fault::endlessMaking, node.place,
                   describe(node) + L" needs itself to be made" + way + L".",
                   way.empty() ? L"take the reference to it out of its own text."
                               : L"take the reference out of one of their texts."});
}

std::vector<ElementNumber> ElementMaker::needsOf(ElementNumber definition) const {
    const ElementNode& element = model[definition];
    std::vector<ElementNumber> needs;
    bool needsParent = false;
    for (const AttributeDeclaration& declaration : element.kind->declared) {
        const AttributeNode* attribute = element.find(declaration.name);
        if (!attribute)
            continue;
        needsParent |= isCumulative(*element.kind, declaration.name);
        if (isExpandable(*element.kind) && hasReferences(attribute->value))
            for (const TextPiece& piece : piecesOf(attribute->value))
                if (piece.meaning == TextPiece::directory && !isFolderWord(piece.text)) {
                    const ElementNumber need = model.find(directoryKind, piece.text);
                    if (need != noElement)
                        needs.push_back(need);
                }
    }
    for (const AttributeDeclaration& declaration : element.kind->derived)
        if (!isDeclaredOn(element, declaration.name) &&
            !(element.is(directoryKind) && isFolderWord(element.id())))
            needsParent = true;
    if (needsParent && element.parent != noElement)
        needs.push_back(element.parent);
    return needs;
}

MadeElement ElementMaker::inParent(ElementNumber number, const MadeElement& parent) {
    MadeElement element;
    element.number = number;
    element.kind = model[number].kind;
    element.around = &parent;
    for (const ElementNumber need : needsOf(number))
        if (model[need].is(directoryKind))
            onDemand(need);
    make(element, &parent);
    return element;
}

void ElementMaker::make(MadeElement& element, const MadeElement* parent) {
    const ElementNode& node = model[element.number];
    element.depth = element.total = ownCost(element);
    if (const AttributeNode* id = node.find(idAttribute); id && id->value.size() >= idLimit)
        element.problems.push_back({Fault::idTooLong,
                                    id->valuePlace,
                                    L"The Id has " + std::to_wstring(id->value.size()) +
                                        L" characters; there is room for " +
                                        std::to_wstring(idLimit - 1) + L".",
                                    {}});
    readDeclared(element, parent);
    if (!element.failed)
        takeDerived(element, parent);
    if (!element.endless && (element.depth > maxMakingDepth || needsTooMuch(element))) {
        element.endless = true;
        fail(element, {Fault::endlessMaking, node.place,
                       describe(node) + L" needs more elements to be made than the engine makes "
                                        L"for one, or more text.",
                       L"let fewer directories stand in each other's texts."});
    }
}

bool ElementMaker::readDeclared(MadeElement& element, const MadeElement* parent) {
    const ElementNode& node = model[element.number];
    for (const AttributeDeclaration& declaration : element.kind->declared) {
        const AttributeNode* attribute = node.find(declaration.name);
        if (!attribute) {
            if (declaration.required)
                failWithout(element, declaration.name);
            continue;
        }
        KnownText text;
        element.own += attribute->value.size();
        if (!isExpandable(*element.kind))
            text = KnownText::of(attribute->value);
        else if (!expand(element, *attribute, text))
            continue;
        if (isCumulative(*element.kind, declaration.name) && parent) {
            if (parent->endless)
                blame(element, *parent);
            if (const KnownText* above =
                    parent->failed ? nullptr : parent->find(declaration.name)) {
                KnownText whole = *above;
                whole.addSeparator();
                whole.append(text);
                text = whole;
                element.taken += above->text.size();
            }
            if (element.around == nullptr)
                addCost(element, *parent);
        }
        element.attributes.emplace_back(declaration.name, std::move(text));
    }
    return !element.failed;
}

void ElementMaker::failWithout(MadeElement& element, const wchar_t* attribute) {
    const ElementNode& node = model[element.number];
    std::vector<std::wstring_view> present;
    for (const AttributeNode& other : node.attributes)
        present.push_back(other.name);
    const std::wstring nearest = nearMiss.find(attribute, present);
    fail(element,
         {Fault::missingAttribute, node.place,
          describe(node) + L" has no " + inMarks(attribute) + L".",
          nearest.empty() ? nearest
                          : L"is " + inMarks(nearest) + L" meant as `" + attribute + L"`?"});
}

void ElementMaker::takeDerived(MadeElement& element, const MadeElement* parent) {
    const ElementNode& node = model[element.number];
    bool countedParent = false;
    for (const AttributeDeclaration& declaration : element.kind->derived) {
        if (std::any_of(element.attributes.begin(), element.attributes.end(),
                        [&](const auto& entry) {
                            return std::wstring_view(entry.first) == declaration.name;
                        }))
            continue;
        if (element.kind == &directoryKind && isFolderWord(node.id())) {
            element.attributes.emplace_back(declaration.name, KnownText::ofFolder(node.id()));
            continue;
        }
        if (parent && element.around == nullptr && !countedParent) {
            addCost(element, *parent);
            countedParent = true;
        }
        if (parent && parent->endless)
            blame(element, *parent);
        const KnownText* above =
            parent && !parent->failed ? parent->find(declaration.name) : nullptr;
        if (above) {
            element.attributes.emplace_back(declaration.name, *above);
            element.taken += above->text.size();
        } else if (declaration.required && !element.failed) {
            element.failed = true;
            if (parent && (!parent->problems.empty() || !parent->blamed.empty())) {
                element.blamed.push_back(parent);
            } else if (element.kind == &directoryKind) {
                fail(element, {Fault::directoryWithoutPath, node.place,
                               describe(node) + L" has no `Path`, and " +
                                   kindOfPlace(declaration.name) + L".",
                               didYouMean(nearMiss.find(node.id(), folderWords()))});
            }
        }
    }
}

bool ElementMaker::expand(MadeElement& element, const AttributeNode& attribute, KnownText& text) {
    if (!hasReferences(attribute.value)) {
        text = KnownText::of(attribute.value);
        return true;
    }
    bool whole = true;
    for (const TextPiece& piece : piecesOf(attribute.value)) {
        whole &= expandPiece(element, attribute, piece, text);
        if (needsTooMuch(element))
            break;
    }
    return whole;
}

bool ElementMaker::expandPiece(MadeElement& element, const AttributeNode& attribute,
                               const TextPiece& piece, KnownText& text) {
    const auto failAt = [&](Fault fault, std::wstring message, std::wstring help = {}) {
        fail(element, {fault, model.spanIn(attribute, piece.from, piece.length), std::move(message),
                       std::move(help)});
        return false;
    };
    switch (piece.meaning) {
        case TextPiece::literal:
            text.append(piece.text);
            return true;
        case TextPiece::fault:
            if (piece.reason == Fault::numberSign)
                return failAt(piece.reason,
                              L"The `#` in " + inMarks(piece.text) + L" names nothing.",
                              L"write ## for a # that is meant as such.");
            return failAt(piece.reason,
                          L"The brackets of " + inMarks(piece.text) + L" don't match.",
                          L"write [id], and #[ or #] for a bracket that is meant as such.");
        case TextPiece::variable:
            if (const ScriptVariable* variable = variables.find(piece.text);
                variable && variable->type == VARIABLE_STRING) {
                variable->read = true;
                text.append(variable->asText());
                return countReference(element, variable->value.size());
            }
            return tellVariable(element, attribute, piece);
        case TextPiece::directory:
            break;
    }
    if (isFolderWord(piece.text)) {
        KnownText folder = KnownText::ofFolder(piece.text);
        folder.addSeparator();
        text.append(folder);
        return countReference(element, folder.text.size());
    }
    const ElementNumber number = model.find(directoryKind, piece.text);
    if (number == noElement) {
        std::wstring nearest = nearMiss.find(piece.text, folderWords());
        if (nearest.empty())
            nearest = nearMiss.findAlike(piece.text, model.idsOf(directoryKind));
        return failAt(Fault::directoryUnknown,
                      L"There is no `Directory` with the Id " + inMarks(piece.text) +
                          L", and it is no folder word.",
                      nearest.empty() ? nearest : L"did you mean `[" + nearest + L"]`?");
    }
    const MadeElement& directory = onDemand(number);
    addCost(element, directory);
    const KnownText* path = directory.failed ? nullptr : directory.find(pathAttribute);
    if (!path) {
        blame(element, directory);
        return false;
    }
    KnownText place = *path;
    place.addSeparator();
    text.append(place);
    element.needs.push_back(&directory);
    return countReference(element, place.text.size());
}

bool ElementMaker::tellVariable(MadeElement& element, const AttributeNode& attribute,
                                const TextPiece& piece) {
    const auto failAt = [&](Fault fault, std::wstring message, std::wstring help) {
        fail(element, {fault, model.spanIn(attribute, piece.from, piece.length), std::move(message),
                       std::move(help)});
        return false;
    };
    if (const ScriptVariable* variable = variables.find(piece.text)) {
        variable->read = true;
        return failAt(Fault::integerInText,
                      inMarks(piece.text) + L" is an integer and can't be written into a text.",
                      L"use a variable of the type string.");
    }
    const std::wstring_view front = variables.nameInFrontOf(piece.text);
    if (!front.empty()) {
        variables.find(front)->read = true;
        return failAt(Fault::textBehindVariable,
                      inMarks(piece.text) + L" is taken as a whole for the name of a variable.",
                      L"`#" + std::wstring(front) +
                          L"` ends only at the next # or [, or with the text: put what follows "
                          L"into a variable or a Directory of its own.");
    }
    const std::wstring nearest = nearMiss.findAlike(piece.text, variables.names());
    return failAt(Fault::variableUnknown, L"There is no variable " + inMarks(piece.text) + L".",
                  nearest.empty() ? L"write ## for a # that is meant as such."
                                  : L"did you mean `#" + nearest + L"`?");
}

void ElementMaker::fail(MadeElement& element, Problem problem) {
    element.failed = true;
    element.problems.push_back(std::move(problem));
}

void ElementMaker::blame(MadeElement& element, const MadeElement& cause) {
    element.failed = true;
    element.endless |= cause.endless;
    element.blamed.push_back(&cause);
}

void ElementMaker::addCost(MadeElement& element, const MadeElement& need) {
    element.depth = std::max(element.depth, ownCost(element) + need.depth);
    element.total += need.total;
    element.taken += need.taken + need.own;
    if (!need.failed && (!need.problems.empty() || !need.blamed.empty()))
        element.blamed.push_back(&need);
}

bool ElementMaker::countReference(MadeElement& element, size_t characters) {
    ++element.total;
    element.taken += characters;
    return !needsTooMuch(element);
}

// Without recursion, for the same reason as the making.
void ElementMaker::tellProblems(const MadeElement& element, bool surely, bool byReference,
                                Report& report) {
    std::vector<const MadeElement*> left{&element};
    std::unordered_set<const MadeElement*> told;
    while (!left.empty()) {
        const MadeElement* current = left.back();
        left.pop_back();
        if (!told.insert(current).second)
            continue;
        for (const Problem& problem : current->problems)
            if (problem.fault != Fault::idTooLong || current != &element || !byReference)
                report.tell(problem.fault, problem.place, surely, problem.text, problem.help);
        left.insert(left.end(), current->blamed.begin(), current->blamed.end());
    }
}
