#include "PlanWords.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <vector>

#include "Diagnosis.h"
#include "author/SizeText.h"

namespace {

constexpr ChangeWords words[] = {
    {TEMZ_CHANGE_FILE_ADDED, L'+', L"file-added", L"file", L"new"},
    {TEMZ_CHANGE_FILE_REPLACED, L'~', L"file-replaced", L"file", L""},
    {TEMZ_CHANGE_FILE_REMOVED, L'-', L"file-removed", L"file", L"removed"},
    {TEMZ_CHANGE_FILE_AT_RESTART, L'!', L"file-at-restart", L"file", L"at the restart"},
    {TEMZ_CHANGE_ATTRIBUTES, L'~', L"attributes-changed", L"file", L"attributes"},
    {TEMZ_CHANGE_DIRECTORY_ADDED, L'+', L"directory-added", L"file", L"new directory"},
    {TEMZ_CHANGE_DIRECTORY_REMOVED, L'-', L"directory-removed", L"file", L"removed"},
    {TEMZ_CHANGE_KEY_ADDED, L'+', L"key-added", L"registry", L"new key"},
    {TEMZ_CHANGE_KEY_REMOVED, L'-', L"key-removed", L"registry", L"removed"},
    {TEMZ_CHANGE_VALUE_SET, L'~', L"value-set", L"registry", L""},
    {TEMZ_CHANGE_SERVICE_STARTED, L'>', L"service-started", L"service", L"start the service"},
    {TEMZ_CHANGE_SERVICE_STOPPED, L'>', L"service-stopped", L"service", L"stop the service"},
    {TEMZ_CHANGE_SERVICE_REMOVED, L'-', L"service-removed", L"service", L"remove the service"},
    {TEMZ_CHANGE_SERVICE_CHANGED, L'~', L"service-changed", L"service", L"set up the service"},
    {TEMZ_CHANGE_LINK_WRITTEN, L'~', L"link-written", L"file", L"shortcut"},
    {TEMZ_CHANGE_PROCESS_ENDED, L'>', L"process-ended", L"program", L"ended"},
    {TEMZ_CHANGE_PROGRAM_STARTED, L'>', L"program-started", L"program", L"started"},
    {TEMZ_CHANGE_LIBRARY_LOADED, L'>', L"library-loaded", L"program", L"loaded"},
    {TEMZ_CHANGE_ACTION_CALLED, L'>', L"action-called", L"program", L"called"},
};
static_assert(std::size(words) == TEMZ_CHANGE_END_ - 1);

constexpr SignWords signs[] = {
    {L'+', L"\x1B[32m", L"add"},     {L'-', L"\x1B[31m", L"remove"},
    {L'~', L"\x1B[33m", L"change"},  {L'!', L"\x1B[35m", L"wait"},
    {L'>', L"\x1B[36m", L"run"},     {L'?', L"\x1B[36m", L"unknown"},
    {L'x', L"\x1B[91m", L"failing"},
};

std::wstring counted(uint64_t number, const wchar_t* one, const wchar_t* many) {
    return std::to_wstring(number) + L" " + (number == 1 ? one : many);
}

void append(std::wstring& list, const wchar_t* separator, const std::wstring& part) {
    if (!part.empty())
        list += (list.empty() ? L"" : separator) + part;
}

/// One number of the summary, left out when it is 0.
struct CountedWords {
    unsigned PlanSummary::*number;
    const wchar_t* one;
    const wchar_t* many;
};

std::wstring countedList(const PlanSummary& summary, std::span<const CountedWords> rows) {
    std::wstring list;
    for (const CountedWords& row : rows)
        if (summary.*row.number > 0)
            append(list, L", ", counted(summary.*row.number, row.one, row.many));
    return list;
}

constexpr CountedWords fileCounts[] = {
    {&PlanSummary::filesAdded, L"file added", L"files added"},
    {&PlanSummary::filesReplaced, L"file replaced", L"files replaced"},
    {&PlanSummary::filesRemoved, L"file removed", L"files removed"},
    {&PlanSummary::links, L"shortcut", L"shortcuts"},
};
constexpr CountedWords otherCounts[] = {
    {&PlanSummary::keys, L"registry key", L"registry keys"},
    {&PlanSummary::values, L"registry value", L"registry values"},
    {&PlanSummary::services, L"change of a service", L"changes of services"},
    {&PlanSummary::programs, L"program", L"programs"},
};

std::wstring needText(const PlanSummary& summary) {
    std::wstring list;
    for (const auto& [drive, bytes] : summary.bytesNeeded)
        append(list, L", ", sizeText(bytes) + L" on " + drive);
    return list;
}

std::wstring failuresText(const PlanSummary& summary) {
    std::wstring text;
    if (summary.endsUnasked)
        text = L"a run fails and ends before its end";
    if (summary.vitalFailures > 0)
        append(text, L"; ",
               counted(summary.vitalFailures, L"vital action fails", L"vital actions fail"));
    if (summary.uncertainFailures > 0)
        append(
            text, L"; ",
            counted(summary.uncertainFailures, L"vital action", L"vital actions") + L" may fail");
    if (summary.otherFailures > 0)
        append(text, L"; ",
               counted(summary.otherFailures, L"action fails that isn't vital",
                       L"actions fail that aren't vital"));
    return text;
}

}  // namespace

std::span<const ChangeWords> changeWords() {
    return words;
}

const SignWords* findSign(wchar_t symbol) {
    const auto* sign = std::find_if(std::begin(signs), std::end(signs),
                                    [symbol](const auto& one) { return one.symbol == symbol; });
    return sign == std::end(signs) ? nullptr : sign;
}

const ChangeWords& wordsOf(const Step& change) {
    return words[change.code - 1];
}

wchar_t symbolOf(const Step& change) {
    if (change.unforeseeable)
        return L'?';
    const wchar_t symbol = wordsOf(change).symbol;
    const bool mayBeNew =
        change.code == TEMZ_CHANGE_VALUE_SET || change.code == TEMZ_CHANGE_LINK_WRITTEN;
    return mayBeNew && change.before.empty() ? L'+' : symbol;
}

std::wstring effectText(const Step& change) {
    std::wstring text = wordsOf(change).verb;
    if (change.code == TEMZ_CHANGE_LINK_WRITTEN) {
        if (!change.detail.empty())
            text += L" to " + change.detail;
        return change.before.empty() ? text : text + L", in place of " + change.before;
    }
    std::wstring states = change.before;
    if (!change.before.empty() && !change.after.empty())
        states += L" -> ";
    states += change.after;
    append(text, L", ", states);
    if (change.sameContent)
        append(text, L", ", L"the same content");
    if (!change.holders.empty()) {
        std::wstring holders;
        for (const std::wstring& holder : change.holders)
            append(holders, L", ", holder);
        append(text, L", ", L"held by " + holders);
    }
    if (change.unforeseeable)
        append(text, L"; ", L"what it does can't be foreseen");
    return text;
}

std::wstring failureLine(const Step& failing) {
    constexpr const wchar_t* fates[] = {
        L"A run asks here, and ends unless it goes on.",
        L"A run goes on: it isn't vital.",
        L"A run ends here.",
    };
    const Failure& failure = failing.failure;
    std::wstring text = failure.what;
    if (failure.code != TEMZ_ERROR_MESSAGE)
        text += failing.uncertain ? L" may fail" : L" fails";
    if (!failure.why.empty())
        text += L": " + failure.why;
    if (text.empty() || text.back() != L'.')
        text += L'.';
    if (failure.systemError != 0)
        text += L" [error " + std::to_wstring(failure.systemError) + L"]";
    return text + L" " + fates[failing.fate];
}

std::wstring leftOutText(const Step& step) {
    if (step.files > 0)
        return counted(step.files, L"file", L"files") + L" left out";
    return step.elements == 0 ? L""
                              : counted(step.elements, L"element", L"elements") + L" left out";
}

std::wstring decisionText(const Step& condition) {
    std::wstring text = condition.holds ? L"true" : L"false";
    if (!condition.detail.empty())
        text += L" (" + condition.detail + L")";
    append(text, L", ", leftOutText(condition));
    return text;
}

std::wstring searchText(const Step& search) {
    std::wstring text = search.holds ? L"found" : L"not found";
    if (!search.after.empty())
        text += L", at least " + search.after;
    if (!search.detail.empty())
        text += L" (" + search.detail + L")";
    return text;
}

std::wstring headlineOf(const PlanHeader& header) {
    std::wstring text = header.script.substr(header.script.find_last_of(L"\\/") + 1) + L", " +
                        header.mode + L", on this machine (Windows " + header.windows + L")";
    std::wstring assumed;
    for (const std::wstring& assumption : header.assumptions)
        append(assumed, L", ", assumption);
    return assumed.empty() ? text : text + L", assuming " + assumed;
}

std::wstring summaryTextOf(const PlanSummary& summary) {
    std::wstring text = countedList(summary, fileCounts);
    append(text, L"; ", needText(summary));
    append(text, L"; ", countedList(summary, otherCounts));
    if (summary.filesAtRestart > 0)
        append(text, L"; ",
               L"a restart is needed for " + counted(summary.filesAtRestart, L"file", L"files"));
    if (text.empty())
        text = L"nothing changes";
    append(text, L"; ", failuresText(summary));
    if (summary.unforeseeable > 0)
        append(text, L"; ",
               L"the effect of " + counted(summary.unforeseeable, L"step", L"steps") +
                   L" can't be foreseen");
    return text;
}
