#include "Explain.h"

#include <cwchar>

#include "Diagnosis.h"
#include "ExitCodes.h"
#include "Findings.h"

namespace {

constexpr wchar_t seeLine[] = L"Look at the element that the message names.";
constexpr wchar_t seeExpression[] =
    L"Look at the expression: operators that are words stand between blanks.";
constexpr wchar_t hostFault[] = L"Tell the maker of the host program.";
constexpr wchar_t memory[] = L"Close other programs and run the command again.";

// Of two parts that both stand in a message the first counts.
constexpr MessageRow messages[] = {
    {L" mismatch.", L"A reference in an attribute's text, [id] or #name, leads to nothing.",
     L"Look for a Directory with that Id, or a string variable of that name; ## and #[ stand for "
     L"the characters themselves."},
    {L"] can't be the first", L"A ] in an attribute's text closes nothing.",
     L"Write #] for the character itself."},
    {L"refer to each other without end",
     L"Elements need each other in a circle, or too many of them for one.",
     L"Look for a Directory whose Path leads back to itself."},
    {L"The name or id is NULL", L"A reference has no Id.",
     L"Give it the Id of what it stands for."},
    {L"element can't create(get the node is null)",
     L"A reference leads to no element of that kind and Id below Product.",
     L"Compare the Id of the reference with that of the definition; case counts."},
    {L"element name is undefined", L"No element has this name.",
     L"Compare it with the names of the script reference; case counts."},
    {L"element undefined", L"No reference has this name.", seeLine},
    {L"has a illegal child element", L"An element stands where it may not.",
     L"The script reference tells what each element may hold."},
    {L"can't get child element name", L"A child without a name can't be visited.", seeLine},
    {L"cant get the require explicit",
     L"An attribute is missing that the element must have itself.", L"Give it the attribute."},
    {L"attribute from  parent element",
     L"The element gets this attribute from the one around it, which has none: a File or Shortcut "
     L"from the Directory of its component, a RegistryValue from its RegistryKey.",
     L"Put the component into a Directory, the value into a key."},
    {L"can't get parent node", L"The element has nothing around it to ask.", seeLine},
    {L"can't create parent element", L"The element around it can't be made.", seeLine},
    {L"getAttributesText params error", L"The engine has asked wrongly.", hostFault},
    {L"Can't obtain the name of the element", L"A node without a name can't be an element.",
     seeLine},
    {L"The parameter node is NULL", L"There is no such element.", seeLine},
    {L"Fail to get element name", L"Something stands where an element is expected.", seeLine},
    {L"Failed to create install element",
     L"Product has no InstallExecuteSequence as a direct child, or it can't be made.",
     L"Put one there."},
    {L"element can't get", L"The element has no such attribute.", L"Give it the attribute."},
    {L"can't get the ", L"There is no Directory with this Id, and no folder of the system's.",
     L"Compare the Id; case counts."},
    {L"can't get value attribute", L"A variable has no Value.", L"Give it one."},
    {L"It have already loaded", L"A script is loaded already.", hostFault},
    {L"variable is no exist", L"There is no variable of this name.", L"Compare the name."},
    {L"Can't get OS Version", L"Windows doesn't tell its version.", L"Run the command again."},
    {L"There is no root element", L"The file holds no element.", L"Name an install script."},
    {L"There is no Product element", L"The root element has no Product as a direct child.",
     L"Put one there."},
    {L"It is no XML", L"The file is no XML, nested more than 256 elements deep, or can't be read.",
     L"Open it in a browser, which shows where it is malformed."},
    {L"isn't in the active code page",
     L"The path has characters that the machine's code page lacks, and no short name.",
     L"Put the script into a folder with a plain name."},
    {L"may be misread", L"The script isn't in the code page in which it is read.",
     L"Keep to ASCII, or save it as UTF-8 and run it on Windows 10 1903 or later."},
    {L"is marked as downloaded",
     L"The program and the files beside it were unpacked from an archive with the mark of a "
     L"download, and an installed file that bears it is asked about when it is started.",
     L"Unblock the archive in its properties, and unpack it anew."},
    {L"The engine's log is written to",
     L"Whoever has made the folder decides where the log goes, also that of an administrator's "
     L"run.",
     L"Take it away, and make it from an administrator's prompt, for administrators alone."},
    {L"Another run goes on", L"One run at a time is allowed on a machine.",
     L"Wait for it, or give --wait=SECONDS."},
    {L"back, which waits for it",
     L"A file was replaced with delay, and removed before the restart.",
     L"Run the uninstall with --drop-pending, or once more after the restart."},
    {L"'(' didn't math ')'", L"The parentheses of an expression don't fit together.",
     seeExpression},
    {L"It can't new ", L"A symbol of an expression is no operator.", seeExpression},
    {L"Operations stack is empty", L"An expression ends before it is complete.", seeExpression},
    {L"can't be in front of", L"Two symbols of an expression can't stand side by side.",
     seeExpression},
    {L"operand naming is legal", L"An operator stands where a name or a number is expected.",
     seeExpression},
    {L"Reference undefined variable", L"An expression names a variable that there is not.",
     L"Declare it as a direct child of the root element; texts can't stand in an expression."},
    {L"variable type", L"A variable is of no known type.", L"Its Type is string or int."},
    {L"different type", L"A text and a number can't be compared or assigned to each other.",
     L"Give both variables one Type."},
    {L"const variable", L"A VariableConst can't be assigned to.", L"Declare it as a Variable."},
    {L"const operand", L"A number can't be assigned to.", L"Put a variable to the left of =."},
    {L"It doesn't support", L"An operator was used on what can't bear it.", seeExpression},
    {L"variable obj is NULL", L"An operand without a variable can't be assigned to.",
     L"Put a variable to the left of =."},
    {L"failed to update attribute", L"A variable can't take its value.", seeLine},
    {L"is not int variable", L"The Value of an int variable is no number.",
     L"Write decimal digits, with or without a minus sign."},
    {L"is unknown Registry KEY", L"The Root of a registry key is none.",
     L"Write its whole name: HKEY_LOCAL_MACHINE."},
    {L"is unknown Registry TYPE", L"The Type of a registry value is none.",
     L"Write REG_SZ, REG_MULTI_SZ or REG_DWORD."},
    {L"is unknown Action", L"The Action of a RegistryKey is none.", L"Write create or remove."},
    {L"isn't DWORD text", L"The Value of a REG_DWORD is no number.", L"Write decimal digits."},
    {L"Failed to load library", L"The library of a custom action can't be loaded.",
     L"Look at its whole path, that it is for 64 bits, and that what it needs is there."},
    {L"Failed to get Address", L"The library of a custom action has no such function.",
     L"Export it undecorated: extern \"C\"."},
    {L"Can't get application directory",
     L"A custom action needs a Directory with the Id APPLICATIONROOTDIRECTORY.",
     L"Give the script one."},
    {L"Create element error", L"An element stands for another one.", hostFault},
    {L"Failed to create element", L"An element stands for another one.", hostFault},
    {L"Create Element error", L"An element can't be made, for the reason behind it.", seeLine},
    {L"Create Motion Element error", L"An element can't be made, for the reason behind it.",
     seeLine},
    {L"Insufficient memory", L"There isn't enough memory.", memory},
    {L"cann't create child element", L"A child can't be made, for the reason in front.", seeLine},
    {L" attribute.", L"The element has no such attribute.", L"Give it the attribute."},
    {L"Get directory error", L"A place can't be found, for the reason behind it.", seeLine},
};

const MessageRow* findMessage(const std::wstring& text) {
    for (const MessageRow& row : messages)
        if (text.find(row.part) != std::wstring::npos)
            return &row;
    return nullptr;
}

std::wstring withNextStep(const std::wstring& cause, const std::wstring& nextStep) {
    return nextStep.empty() ? cause + L"\n" : cause + L"\n" + nextStep + L"\n";
}

/// With what the system's own codes don't tell: how a process is ended.
struct StatusRow {
    unsigned long status;
    const wchar_t* meaning;
    const wchar_t* nextStep;
};
constexpr StatusRow statusRows[] = {
    {0xC0000417,
     L"A text or a path of the script is longer than the engine takes, which has ended the "
     L"process. "
     L"What was done before stays.",
     L"The script reference tells the lengths. Of a tree to be removed, the paths in it count."},
    {0xC000013A, L"Ctrl+C has ended the process before the run began. Nothing was done.",
     L"Run the command again."},
    {0xC0000005, L"The process has crashed. What was done before stays.",
     L"Look at the last line of the log: mostly it is the library of a custom action."},
};

std::wstring explainSystemCode(unsigned long code) {
    const std::wstring text = systemText(code);
    return text.empty() ? L"" : withNextStep(L"Windows: " + text, adviceOn(code));
}

/// A code is the program's own, or the status of a process, or else the system's.
std::wstring explainCode(unsigned long code) {
    for (const ExitCode& row : exitCodes())
        if (static_cast<unsigned long>(row.code) == code)
            return withNextStep(row.meaning, row.nextStep) +
                   (row.ownMeaning ? explainSystemCode(code) : L"");
    for (const StatusRow& row : statusRows)
        if (row.status == code)
            return withNextStep(row.meaning, row.nextStep);
    return explainSystemCode(code);
}

std::wstring explainFinding(const std::wstring& code) {
    std::wstring text;
    forEachFindingKind([&](const temz_finding_kind& kind) {
        if (code == kind.code)
            text = withNextStep(kind.meaning, kind.remedy);
    });
    return text;
}

}  // namespace

std::span<const MessageRow> explainedMessages() {
    return messages;
}

std::wstring explain(const std::wstring& subject) {
    wchar_t* end = nullptr;
    const unsigned long code = std::wcstoul(subject.c_str(), &end, 0);
    if (!subject.empty() && *end == L'\0')
        return explainCode(code);
    if (std::wstring text = explainFinding(subject); !text.empty())
        return text;
    const MessageRow* row = findMessage(subject);
    return row ? withNextStep(row->cause, row->nextStep) : L"";
}

std::wstring exitCodeTable() {
    std::wstring table;
    for (const ExitCode& row : exitCodes()) {
        const std::wstring code = std::to_wstring(row.code);
        table += std::wstring(4 - code.size(), L' ') + code + L"  " + row.meaning + L"\n";
        if (*row.nextStep)
            table += std::wstring(L"      ") + row.nextStep + L"\n";
    }
    return table;
}
