#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "author/check/KnownText.h"
#include "author/check/NearMiss.h"
#include "author/check/Report.h"
#include "author/check/ScriptModel.h"
#include "author/check/ScriptVariables.h"
#include "author/check/TextPieces.h"

/// What keeps an element from being made.
struct Problem {
    Fault fault;
    Span place;
    std::wstring text;
    std::wstring help;
};

/// An element as the engine would make it, with its attributes as far as they are known.
struct MadeElement {
    ElementNumber number = noElement;
    const ElementKind* kind = nullptr;  ///< null for one that the engine doesn't know
    /// Whom a Condition passes questions on to; null for an element made on demand.
    const MadeElement* around = nullptr;

    bool failed = false;   ///< it can't be made
    bool endless = false;  ///< making it takes everything down that needs it
    std::vector<Problem> problems;
    std::vector<const MadeElement*> blamed;  ///< it can't be made because of these
    std::vector<const MadeElement*> needs;   ///< directories whose paths stand in its texts

    std::vector<std::pair<const wchar_t*, KnownText>> attributes;
    size_t depth = 0;  ///< how deep the making goes, and how many elements and references it takes
    size_t total = 0;
    size_t taken = 0;  ///< how many characters these take from each other, and have themselves
    size_t own = 0;

    /// What getAttribute would answer; null for nothing.
    const KnownText* find(std::wstring_view name) const;
};

/// Makes elements without running anything: reads their attributes, replaces references, and takes
/// from the parent what only that has, in the engine's order. What is made on demand, places and
/// the parents of what is reached by reference, is made once.
class ElementMaker {
public:
    ElementMaker(const ScriptModel& model, const ScriptVariables& variables, NearMiss& nearMiss);

    /// The element as CreateElement makes it from where it stands, or from what it refers to.
    const MadeElement& onDemand(ElementNumber number);

    /// The element as the walk makes it in a parent.
    MadeElement inParent(ElementNumber number, const MadeElement& parent);

    /// Whether the outcome of the walk's making depends on the parent.
    static bool asksParent(const ElementKind& kind);

    /// The definition that a reference leads to, or the element itself; noElement for a reference
    /// that leads nowhere.
    ElementNumber definitionOf(ElementNumber number) const;

    /// Tells what keeps an element from being made, there and in all that it needs. One that is
    /// made by reference has its id cut and not copied.
    static void tellProblems(const MadeElement& element, bool surely, bool byReference,
                             Report& report);

    /// Whether anything asks for the place that a Directory names.
    bool isUsed(ElementNumber directory) const { return made[directory] != nullptr; }

private:
    enum class State : char { unknown, open, done };

    void demand(ElementNumber number);
    void begin(ElementNumber number);
    std::vector<ElementNumber> needsOf(ElementNumber definition) const;
    void make(MadeElement& element, const MadeElement* parent);
    bool readDeclared(MadeElement& element, const MadeElement* parent);
    void takeDerived(MadeElement& element, const MadeElement* parent);
    bool expand(MadeElement& element, const AttributeNode& attribute, KnownText& text);
    bool expandPiece(MadeElement& element, const AttributeNode& attribute, const TextPiece& piece,
                     KnownText& text);
    bool tellVariable(MadeElement& element, const AttributeNode& attribute, const TextPiece& piece);
    void failInCircle(MadeElement& element, ElementNumber next);
    void failWithout(MadeElement& element, const wchar_t* attribute);
    static void fail(MadeElement& element, Problem problem);
    static void blame(MadeElement& element, const MadeElement& cause);
    static void addCost(MadeElement& element, const MadeElement& need);
    static bool countReference(MadeElement& element, size_t characters);

    const ScriptModel& model;
    const ScriptVariables& variables;
    NearMiss& nearMiss;
    std::deque<MadeElement> storage;
    std::vector<MadeElement*> made;
    std::vector<State> states;
};

/// "`Directory` `ROOT`", or the name alone for one without an id.
std::wstring describe(const ElementNode& element);

/// Whether a word names a folder of the system.
bool isFolderWord(std::wstring_view word);
