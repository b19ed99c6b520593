#include "author/check/ScriptWalk.h"

#include <algorithm>

namespace {

/// Documented as safe on the smallest usual stack.
constexpr size_t longestChain = 1000;

std::wstring listOfParents(const std::wstring& child) {
    std::wstring list;
    for (const ElementKind* kind : motionKinds())
        if (kind->allowsChild(child.c_str()))
            list.append(list.empty() ? L"" : L", ").append(inMarks(kind->name));
    return list;
}

std::wstring article(std::wstring_view word) {
    const bool isVowel = std::wstring_view(L"AEIOU").find(word.front()) != std::wstring_view::npos;
    return isVowel ? L"an " : L"a ";
}

}  // namespace

bool implies(const Guard* inner, const Guard* outer) {
    while (inner && inner != outer)
        inner = inner->outer;
    return inner == outer;
}

// An expression with a text in it that a run can change may be anything; one with a path in it asks
// for a variable of that name.
ExpressionResult checkExpression(const MadeElement& element, const ScriptModel& model,
                                 const ScriptVariables& variables, NearMiss& nearMiss, bool surely,
                                 Report& report) {
    const KnownText* expression = element.find(L"Expression");
    const AttributeNode* attribute = model[element.number].find(L"Expression");
    if (expression == nullptr)
        return {};
    if (!expression->exact || expression->opaqueEnd > 0) {
        for (const TextPiece& piece : piecesOf(attribute->value))
            if (piece.meaning == TextPiece::directory)
                report.tell(
                    Fault::expressionVariable, model.spanIn(*attribute, piece.from, piece.length),
                    false,
                    L"The path of " + inMarks(piece.text) + L" is no variable of this script.");
        return {};
    }
    ExpressionResult result = readExpression(expression->text, variables, nearMiss);
    for (const ExpressionFault& fault : result.faults) {
        const auto place = [&] {
            if (fault.variable != noElement) {
                const ElementNode& variable = model[fault.variable];
                const AttributeNode* value = variable.find(L"Value");
                return value ? value->valuePlace : variable.place;
            }
            return hasReferences(attribute->value)
                       ? attribute->valuePlace
                       : model.spanIn(*attribute, fault.from, fault.length);
        };
        report.tell(fault.fault, place(), surely && fault.surely, fault.text, fault.help);
    }
    return result;
}

void tellWithoutId(const ElementNode& reference, bool surely, Report& report) {
    report.tell(Fault::referenceWithoutId, reference.place, surely,
                inMarks(reference.name) + L" has no `Id`, so it refers to nothing.",
                std::wstring(L"give it the Id of a ") + reference.reference->target->name + L".");
}

void tellOfNothing(const ElementNode& reference, const AttributeNode& id, const ScriptModel& model,
                   NearMiss& nearMiss, bool surely, Report& report) {
    const ElementKind& target = *reference.reference->target;
    std::wstring help;
    for (const ReferenceKind& other : motionReferences())
        if (model.find(*other.target, id.value) != noElement)
            help = std::wstring(L"it is the Id of a `") + other.target->name +
                   L"`: refer to that by `" + other.name + L"`.";
    if (help.empty())
        help = didYouMean(nearMiss.findAlike(id.value, model.idsOf(target)));
    report.tell(Fault::referenceToNothing, id.valuePlace, surely,
                std::wstring(L"There is no `") + target.name + L"` with the Id " +
                    inMarks(id.value) + L" in the Product.",
                help);
}

ScriptWalk::ScriptWalk(const ScriptModel& model, const ScriptVariables& variables,
                       ElementMaker& maker, NearMiss& nearMiss, Report& report)
    : model(model),
      variables(variables),
      maker(maker),
      nearMiss(nearMiss),
      report(report),
      visitsOf(model.elements().size(), none),
      openCount(model.elements().size()) {}

void ScriptWalk::run() {
    const ElementNumber sequence = model.sequence();
    if (sequence == noElement)
        return;
    Visit& first = visited.emplace_back();
    first = {sequence, &maker.onDemand(sequence), false, allModes, allModes, allModes, allModes};
    visitsOf[sequence] = known.size();
    known.push_back({0, nullptr, false, none});
    tellMaking(first, true);
    enter(first, allModes, allModes, nullptr, 0);
    while (!frames.empty()) {
        Frame& top = frames.back();
        if (top.nextChild == noElement) {
            --openCount[top.visit->number];
            frames.pop_back();
            continue;
        }
        const ElementNumber child = top.nextChild;
        top.nextChild = model[child].nextSibling;
        const Frame frame = top;
        visitChild(frame, child);
    }
}

void ScriptWalk::visitChild(const Frame& frame, ElementNumber child) {
    ++stepCount;
    const ElementNode& node = model[child];
    const bool surely = frame.sure != 0;
    const ElementKind& parentKind = *frame.visit->made->kind;
    if (!parentKind.allowsChild(node.name.c_str())) {
        tellMisplaced(parentKind, node, surely);
        return;
    }
    const bool byReference = node.reference != nullptr;
    const ElementNumber definition = byReference ? follow(node, surely) : child;
    if (definition == noElement)
        return;
    const size_t references = frame.references + (byReference ? 1 : 0);
    if (byReference && references == longestChain + 1)
        report.tellOf(Fault::longChain, node.place,
                      L"More than " + std::to_wstring(longestChain) +
                          L" references follow each other up to this one.");

    Visit& visit = visitOf(definition, *frame.visit->made, byReference);
    if (visit.madePossible == 0)
        visit.guard = frame.guard;
    const Modes possible = frame.possible & ~visit.madePossible;
    const Modes sure = frame.sure & ~visit.madeSure;
    if (possible == 0 && sure == 0)
        return;
    visit.madePossible |= frame.possible;
    visit.madeSure |= frame.sure;
    tellMaking(visit, sure != 0);

    Modes sureInside = sure;
    const Modes possibleInside = modesOf(visit, possible | sure, sureInside);
    visit.possible |= possibleInside;
    visit.sure |= sureInside;
    Visit& pass = passed.emplace_back(visit);
    pass.possible = possibleInside;
    pass.sure = sureInside;
    pass.guard = frame.guard;
    if (possibleInside != 0)
        enter(visit, possibleInside, sureInside, frame.guard, references);
}

void ScriptWalk::enter(Visit& visit, Modes possible, Modes sure, const Guard* guard,
                       size_t references) {
    if (visit.made->kind == &conditionKind && !decide(visit, sure, guard))
        return;
    const ElementNumber firstChild = model[visit.number].firstChild;
    if (firstChild == noElement)
        return;
    ++openCount[visit.number];
    frames.push_back({&visit, firstChild, possible, sure, guard, references});
}

void ScriptWalk::tellMaking(const Visit& visit, bool surely) {
    const MadeElement& made = *visit.made;
    if (!made.failed && made.problems.empty() && made.blamed.empty())
        return;
    ElementMaker::tellProblems(made, surely, visit.byReference, report);
    if (!made.problems.empty() || !made.blamed.empty())
        return;
    // What it has to take from its parent isn't there.
    const ElementNode& node = model[visit.number];
    if (made.kind == &registryValueKind) {
        report.tell(Fault::valueOutsideKey, node.place, surely,
                    L"A `RegistryValue` must stand in a `RegistryKey`.",
                    L"put it into the RegistryKey that it belongs to.");
        return;
    }
    if (made.kind == &registryKeyKind) {
        report.tell(Fault::keyWithoutRoot, node.place, surely,
                    describe(node) + L" has no `Root`, and no `RegistryKey` around it.",
                    L"name one of the root keys.");
        return;
    }
    const MadeElement* component = made.around;
    while (component && component->kind == &conditionKind)
        component = component->around;
    if (component && component->failed && !component->blamed.empty())
        return;
    const MadeElement* place = component && component->kind == &componentKind
                                   ? &maker.onDemand(model[component->number].parent)
                                   : nullptr;
    if (place && place->failed && place->kind) {
        ElementMaker::tellProblems(*place, surely, false, report);
        return;
    }
    std::wstring help = L"define the Component in a Directory and refer to it by ComponentRef.";
    if (place && place->kind == &conditionKind)
        help = L"the Condition cuts it off from its directory: put it into the Component.";
    report.tell(Fault::noDirectory, node.place, surely,
                inMarks(node.name) + L" stands in no `Directory`, so it has no place to go to.",
                help);
}

void ScriptWalk::tellMisplaced(const ElementKind& parent, const ElementNode& child, bool surely) {
    std::wstring help = didYouMean(nearMiss.find(child.name, parent.children));
    if (help.empty()) {
        const std::wstring parents = listOfParents(child.name);
        if (!parents.empty())
            help = article(child.name) + inMarks(child.name) + L" may stand in " + parents + L".";
    }
    if (help.empty())
        help = didYouMean(nearMiss.find(child.name, allElementNames()));
    report.tell(
        Fault::misplacedElement, child.place, surely,
        inMarks(child.name) + L" is no element that may stand in " + inMarks(parent.name) + L".",
        help);
}

ElementNumber ScriptWalk::follow(const ElementNode& reference, bool surely) {
    const ElementKind& target = *reference.reference->target;
    const AttributeNode* id = reference.find(idAttribute);
    if (id == nullptr) {
        tellWithoutId(reference, surely, report);
        return noElement;
    }
    const ElementNumber definition = model.find(target, id->value);
    if (definition == noElement) {
        tellOfNothing(reference, *id, model, nearMiss, surely, report);
        return noElement;
    }
    if (openCount[definition] > 0) {
        report.tell(Fault::circleOfReferences, id->valuePlace, surely,
                    describe(model[definition]) + L" contains this reference to itself.",
                    L"take the reference out of the circle.");
        return noElement;
    }
    return definition;
}

Visit& ScriptWalk::visitOf(ElementNumber definition, const MadeElement& parent, bool byReference) {
    const bool asksParent = !byReference && ElementMaker::asksParent(*model[definition].kind);
    const MadeElement* key = asksParent ? &parent : nullptr;
    for (size_t at = visitsOf[definition]; at != none; at = known[at].next)
        if (known[at].parent == key && known[at].byReference == byReference)
            return visited[known[at].visit];

    const MadeElement* made = byReference
                                  ? &maker.onDemand(definition)
                                  : &madeElements.emplace_back(maker.inParent(definition, parent));
    visited.push_back({definition, made, byReference});
    known.push_back({visited.size() - 1, key, byReference, visitsOf[definition]});
    visitsOf[definition] = known.size() - 1;
    return visited.back();
}

// A Condition only sees what has let its surroundings pass.
Modes ScriptWalk::modesOf(const Visit& visit, Modes possible, Modes& sure) {
    const KnownText* on = visit.made->kind == &conditionKind ? nullptr : visit.made->find(L"On");
    if (on == nullptr || on->isSurelyEmpty())
        return possible;
    if (!on->exact) {
        sure = 0;
        return possible;
    }
    const OnKeyword* keyword = findKeyword(onKeywords(), on->text);
    if (keyword == nullptr) {
        const AttributeNode* attribute = model[visit.number].find(L"On");
        report.tellOf(Fault::modeUnknown, attribute->valuePlace,
                      inMarks(on->text) + L" names no mode, so this takes part in none.",
                      didYouMean(nearMiss.find(on->text, onKeywords())));
        sure = 0;
        return 0;
    }
    sure &= keyword->modes;
    return possible & keyword->modes;
}

/// False when the children are never reached.
bool ScriptWalk::decide(const Visit& visit, Modes& sure, const Guard*& guard) {
    const ExpressionResult result =
        checkExpression(*visit.made, model, variables, nearMiss, sure != 0, report);
    const bool hasChildren = model[visit.number].firstChild != noElement;
    if (result.value && hasChildren && (!result.assigns || !*result.value))
        report.tellOf(Fault::sameEverywhere, model[visit.number].find(L"Expression")->valuePlace,
                      *result.value ? L"The condition is true on every machine."
                                    : L"The condition is false on every machine, so what stands in "
                                      L"it is never done.",
                      L"remove it, or ask for something that can differ.");
    if (result.value)
        return *result.value;
    sure = 0;
    guard = &guards.emplace_back(Guard{guard, visit.number});
    return true;
}
