#pragma once

#include <cstdint>
#include <deque>
#include <vector>

#include "author/check/ElementMaker.h"
#include "author/check/ExpressionReading.h"

/// Run modes, one bit for each: 1 << RunMode.
using Modes = uint32_t;
inline constexpr Modes allModes = 7;
inline constexpr Modes installingModes = 1U << RUNMODE_INSTALL | 1U << RUNMODE_UPGRADE;
inline constexpr Modes uninstalling = 1U << RUNMODE_UNINSTALL;
inline constexpr Modes upgrading = 1U << RUNMODE_UPGRADE;

/// A Condition of which only the machine decides, with those around it.
struct Guard {
    const Guard* outer;
    ElementNumber condition;
};

/// Whether what stands under `inner` is done only where that under `outer` is done too.
bool implies(const Guard* inner, const Guard* outer);

/// An element in a run, reached on one of the ways that lead to it.
struct Visit {
    ElementNumber number;
    const MadeElement* made;
    bool byReference;
    Modes madePossible = 0;  ///< in these modes the element is made on some machines,
    Modes madeSure = 0;      ///< and in these on all of them, unless the run has ended before
    Modes possible = 0;      ///< as the two above, for what it does: `On` can leave that out
    Modes sure = 0;
    const Guard* guard = nullptr;
};

/// Goes through the install sequence as a run would, in all modes at once and on all machines at
/// once: a Condition of which only the machine decides is entered as if it were true, and what
/// stands in it isn't sure. Tells what is wrong with the structure on the way. Each element is
/// visited once for each parent that matters to it, however many references lead there, so that the
/// work grows with the script.
class ScriptWalk {
public:
    ScriptWalk(const ScriptModel& model, const ScriptVariables& variables, ElementMaker& maker,
               NearMiss& nearMiss, Report& report);

    void run();

    /// What was visited, in the order of the first time.
    const std::deque<Visit>& visits() const { return visited; }

    /// The same, one for each time that it was reached in modes in which it hadn't been: with these
    /// modes and what guards it there, in the order of a run.
    const std::deque<Visit>& passes() const { return passed; }
    bool isReached(ElementNumber number) const { return visitsOf[number] != none; }

    /// How many steps the walk has taken: a measure of its work that is the same on every machine.
    size_t steps() const { return stepCount; }

private:
    static constexpr size_t none = static_cast<size_t>(-1);

    struct Frame {
        const Visit* visit;
        ElementNumber nextChild;
        Modes possible;
        Modes sure;
        const Guard* guard;
        size_t references;  // that lead here one after the other
    };

    void visitChild(const Frame& frame, ElementNumber child);
    void enter(Visit& visit, Modes possible, Modes sure, const Guard* guard, size_t references);
    void tellMaking(const Visit& visit, bool surely);
    void tellMisplaced(const ElementKind& parent, const ElementNode& child, bool surely);
    ElementNumber follow(const ElementNode& reference, bool surely);
    Visit& visitOf(ElementNumber definition, const MadeElement& parent, bool byReference);
    Modes modesOf(const Visit& visit, Modes possible, Modes& sure);
    bool decide(const Visit& visit, Modes& sure, const Guard*& guard);

    const ScriptModel& model;
    const ScriptVariables& variables;
    ElementMaker& maker;
    NearMiss& nearMiss;
    Report& report;

    struct Known {
        size_t visit;
        const MadeElement* parent;  // null when it doesn't matter
        bool byReference;
        size_t next;
    };
    std::deque<Visit> visited;
    std::deque<Visit> passed;
    std::vector<Known> known;
    std::vector<size_t> visitsOf;
    std::deque<MadeElement> madeElements;
    std::deque<Guard> guards;
    std::vector<Frame> frames;
    std::vector<uint32_t> openCount;  // how often an element is on the way to the current one
    size_t stepCount = 0;
};

/// Tells of a reference that has no Id, and of one whose Id is that of nothing it can refer to.
void tellWithoutId(const ElementNode& reference, bool surely, Report& report);
void tellOfNothing(const ElementNode& reference, const AttributeNode& id, const ScriptModel& model,
                   NearMiss& nearMiss, bool surely, Report& report);

/// Reads the `Expression` of an element as far as it is known, and tells what is wrong with it.
/// `surely` tells whether every machine comes to evaluate it.
ExpressionResult checkExpression(const MadeElement& element, const ScriptModel& model,
                                 const ScriptVariables& variables, NearMiss& nearMiss, bool surely,
                                 Report& report);
