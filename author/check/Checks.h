#pragma once

#include "author/check/ScriptWalk.h"

/// What every family of checks works on: the script, and what a run would do with it.
struct Checked {
    const ScriptModel& model;
    const ScriptVariables& variables;
    ElementMaker& maker;
    const ScriptWalk& walk;
    NearMiss& nearMiss;
    Report& report;
};

/// One action in a run, as the checks of actions see it.
struct Action {
    const Checked& checked;
    const Visit& visit;
    const ElementNode& node;

    const KnownText* text(std::wstring_view attribute) const { return visit.made->find(attribute); }
    /// The place of an attribute's value, or of the element where it has none of its own.
    Span placeOf(std::wstring_view attribute) const;
    bool is(const ElementKind& kind) const { return node.kind == &kind; }
    bool isSure() const { return visit.sure != 0; }

    /// Tells what makes the action fail each time in these modes; `always` tells whether that is so
    /// on every machine. One that isn't vital fails in silence.
    void tellFailure(Fault fault, Span place, const std::wstring& what, std::wstring help,
                     Modes modes = allModes, bool always = true) const;

    /// Tells of a text that is too long for its field, which ends the process: surely, or where
    /// the folders of the system have long paths.
    void tellLength(Fault fault, Fault likely, Span place, const KnownText& text, size_t limit,
                    Modes modes = allModes) const;
};

/// What the `Action` of an element stands for; nothing where there is none, for a text that can
/// change and for one that is none of the words.
ActionCode actionOf(const MadeElement& element, std::span<const ActionKeyword> keywords);

/// Calls `check` for each action of these that was made and takes part in some mode.
template <class Check>
void forEachActionOf(const std::deque<Visit>& visits, const Checked& checked, Check check) {
    for (const Visit& visit : visits)
        if (visit.possible != 0 && !visit.made->failed)
            check(Action{checked, visit, checked.model[visit.number]});
}

/// Each action of a run once, with all the modes in which it is reached.
template <class Check>
void forEachAction(const Checked& checked, Check check) {
    forEachActionOf(checked.walk.visits(), checked, check);
}

/// Each action as a run comes by it, for checks of what comes before what: one that is reached here
/// in one mode and there in another comes twice, with the modes of each place.
template <class Check>
void forEachActionInOrder(const Checked& checked, Check check) {
    forEachActionOf(checked.walk.passes(), checked, check);
}

// The families of checks. Each tells what it finds.
void checkEncoding(const Checked& checked);
void checkStructure(const Checked& checked);
void checkAttributes(const Checked& checked);
void checkKeywords(const Checked& checked);
void checkTexts(const Checked& checked);
void checkVariables(const Checked& checked);
void checkRegistry(const Checked& checked);
void checkFiles(const Checked& checked);
/// False when the payload can't be read.
bool checkPayload(const Checked& checked, const CheckRequest& request);
void checkBalance(const Checked& checked);
void checkUpgrade(const Checked& checked, const Checked& previous);
void checkDirectories(const Checked& checked);
void checkDangers(const Checked& checked);
void checkOrder(const Checked& checked);
