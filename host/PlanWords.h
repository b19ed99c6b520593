#pragma once

#include <temz/temz.h>

#include <span>
#include <string>

#include "Plan.h"

/// What is said of a kind of change, on every page.
struct ChangeWords {
    uint32_t code;        ///< TEMZ_CHANGE_...
    wchar_t symbol;       ///< in front of its line
    const wchar_t* word;  ///< for programs that read a plan: "file-added"
    const wchar_t* area;  ///< what it belongs to: "file", "registry", "service", "program"
    const wchar_t* verb;  ///< what is done, behind the object
};

/// One row for each, in the order of the codes.
std::span<const ChangeWords> changeWords();
const ChangeWords& wordsOf(const Step& change);

/// How a line with a symbol in front looks.
struct SignWords {
    wchar_t symbol;
    const wchar_t* colour;     ///< the control sequence for a terminal
    const wchar_t* pageClass;  ///< of the page
};

/// Null for a line of no colour of its own.
const SignWords* findSign(wchar_t symbol);

/// What stands in front of a change: '?' for what can't be foreseen, '+' for a value or shortcut
/// that is new, else that of its row.
wchar_t symbolOf(const Step& change);
/// What is done with the object of a change, from what to what: "1.3.0, 800 KB -> 1.4.0, 812 KB".
std::wstring effectText(const Step& change);
/// A failure, and what a run does there.
std::wstring failureLine(const Step& failing);
/// What a condition was decided by, and what that leaves out.
std::wstring decisionText(const Step& condition);
std::wstring searchText(const Step& search);
/// "3 files", "2 elements"; empty when there is nothing.
std::wstring leftOutText(const Step& step);

/// What comes first of a plan: of what, and what it comes to.
std::wstring headlineOf(const PlanHeader& header);
std::wstring summaryTextOf(const PlanSummary& summary);
