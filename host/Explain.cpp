#include "Explain.h"

#include <algorithm>
#include <cwchar>
#include <cwctype>
#include <string_view>

#include "Diagnosis.h"
#include "ExitCodes.h"
#include "Findings.h"

namespace {

constexpr wchar_t seeLine[] = L"Look at the element that the message names.";
constexpr wchar_t seeExpression[] =
    L"Look at the expression: operators that are words stand between blanks.";
constexpr wchar_t hostFault[] = L"Tell the maker of the host program.";
constexpr wchar_t seeHelp[] = L"temz help shows all commands and options.";
constexpr wchar_t seeEventLog[] = L"See the system's event log.";
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
    {L"back: that can't be taken back",
     L"A file was replaced with delay, and the system's list of such files can't be written.",
     L"Run it from an administrator's prompt, or the uninstall once more after the restart."},
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
    // Why a run isn't begun, and how it ends.
    {L"isn't started", L"The script has faults that would surely end a run half-way.",
     L"Mend what temz check tells, or start it all the same with --no-check."},
    {L"isn't planned", L"The script has faults that would surely end a run half-way.",
     L"Mend what temz check tells, or plan it all the same with --no-check."},
    {L"The script has no variable", L"A variable is assumed that the script doesn't declare.",
     L"Compare its name with the Id of the variables; case counts."},
    {L"can't be kept to",
     L"The plan can't be read, or is of another script or mode than the run. Nothing was done.",
     L"Make a new plan with temz plan, and have it approved."},
    {L"leave its plan",
     L"The machine isn't as it was when the plan was made. The run was ended before the call that "
     L"the plan lacks.",
     L"See what has changed by temz plan, and have the new plan approved."},
    {L"has left its plan",
     L"A call had another result than when the plan was made. The run makes no other call then.",
     L"See what has changed by temz plan, and have the new plan approved."},
    {L"The plan has more than there was to do",
     L"All was done, with fewer calls than the plan has: something of it was done already.",
     L"Compare the plan with what temz plan shows now, if that wasn't expected."},
    {L"The wait for another run was ended",
     L"Ctrl+C, or the end of the session, came before the other run had ended. Nothing was done.",
     L"Run the command again."},
    {L"The run ends behind this action", L"Ctrl+C was pressed, and an action is completed first.",
     L"Wait for its end. Ctrl+C once more may leave it half done."},
    {L"The session ends",
     L"Windows shuts down, or the user logs off. The action under way is completed first.",
     L"Run the same command again afterwards."},
    {L"Windows ends the session",
     L"Windows shut down, or the user logged off, and the run was ended because of that.",
     L"Run the same command again afterwards."},
    {L"Ended in the middle of this action",
     L"Ctrl+C was pressed twice. The action may be half done; what was done before stays.",
     L"Run the same command again, or uninstall."},
    // Why an action has failed.
    {L"the file is in use by", L"A program has the file open, so that it can't be replaced.",
     L"Close the program, or give the file KillProcess or SupportDelayInstall in the script."},
    {L"the file there is ",
     L"Windows doesn't replace a file that is read-only, hidden or the "
     L"system's.",
     L"Clear that (attrib -r -h -s), and ship the file without it."},
    {L"isn't run as an administrator",
     L"Only an administrator may change this, and the program has no such rights.",
     L"Run it from an administrator's prompt."},
    {L"access is denied", L"Even an administrator hasn't the right to do this.",
     L"Look at the rights of the file, key or service that the message names."},
    {L"the file to copy", L"The Source of a File leads to nothing, or its directory can't be made.",
     L"Put the file where Source says, counted from the folder of temz.exe."},
    {L"the program isn't there", L"The program that is to be started isn't at this path.",
     L"Give its whole path in the script."},
    {L"the program's directory isn't there",
     L"The directory of the program that is to be started isn't there.",
     L"Give its whole path in the script."},
    {L"answered with No", L"Somebody has refused the program an administrator's rights.",
     L"Run it from an administrator's prompt, where nobody is asked."},
    {L"can't be started elevated",
     L"The file is no program, and Windows has none that opens it with more rights.",
     L"Start the program that opens it, with the file as its argument."},
    {L"the library, or one that it needs", L"A library isn't where Windows looks for it.",
     L"Give its whole path in the script, and link what it needs statically."},
    {L"it is no 64-bit library", L"The engine is a program of 64 bits, the library isn't.",
     L"Build it for 64 bits."},
    {L"no program that this Windows can run",
     L"The file is damaged, no program, or one for another processor.",
     L"Compare it with the one that was built."},
    {L"exports no such function", L"The library of a custom action has no function of this name.",
     L"Export it undecorated: extern \"C\"."},
    {L"the disk is full", L"There is no room for what is to be written.", L"Make room on it."},
    {L"the disk is write-protected", L"The disk doesn't let itself be written to.",
     L"Take the protection away, or install to another one."},
    {L"the name can't be one of a file", L"Windows allows no such name.",
     L"Look at the names in the script: < > : \" | ? * can't be in one."},
    {L"the path is too long", L"Windows takes no path of this length.",
     L"Install into a directory with a shorter path."},
    {L"there is no such service", L"No service of the machine has this name.",
     L"The script wants its short name, which sc query shows."},
    {L"its program isn't there",
     L"The service is registered with a path at which there is nothing.",
     L"See the path that sc qc NAME shows."},
    {L"it has stopped", L"The service has ended again as soon as it was started.", seeEventLog},
    {L"it is still st", L"The service takes longer to start or stop than a run waits.",
     L"Run the command again; see the system's event log."},
    {L"the service is disabled", L"A disabled service can't be started.",
     L"Enable it: sc config NAME start= demand."},
    {L"the service is already being removed",
     L"It goes when the last program that has it open lets it go.",
     L"Close all programs that look at services, or restart the machine."},
    {L"didn't answer in time", L"The program of the service hasn't told Windows that it runs.",
     seeEventLog},
    {L"can't log on with its account", L"The account of the service is unknown or refused.",
     L"Set its account and password."},
    {L"the service can't be stopped now", L"It is just starting or stopping.",
     L"Try again when it has started."},
    {L"doesn't let itself be stopped", L"The service takes no request to stop.",
     L"Ask its maker how it is ended."},
    {L"services that run depend on it", L"A service can't be stopped below others that need it.",
     L"Stop these first."},
    {L"the key is being removed", L"A program has a key open that was removed.",
     L"Run the command again."},
    // What can't be written, and what no script can be made of.
    {L"The log is incomplete", L"Lines of the log couldn't be written. The run went on.",
     L"Do what the reason behind it asks, as to make room on the disk."},
    {L"can't be written", L"The file can't be made or filled, for the reason behind it.",
     L"Name one in a directory that is there and can be written to, and that nobody has open."},
    {L"is there already, and isn't replaced",
     L"What is made from a folder never overwrites a file.", L"Remove it, or name another file."},
    {L"There is no shortcut",
     L"Only one program at the top of the folder, or the one named like the product, gets one.",
     L"Add a Shortcut to the script."},
    {L"The script isn't all ASCII", L"An older Windows reads the script in its code page.",
     L"Give the files plain names where it is to run there."},
    {L"can't be called",
     L"The product's name is that of its directory, and Windows allows none "
     L"such.",
     L"Give --name one that a directory can have."},
    {L"can't be installed: ", L"The folder holds a file or folder whose name no script can have.",
     L"Give it another name."},
    {L"is a whole drive", L"The script is made for a folder, and a drive has no name for one.",
     L"Name a folder of it."},
    {L"can't be read: ", L"The folder isn't there, or Windows doesn't let it be read.",
     L"Look at its path and its rights."},
    {L"holds no files", L"A script makes a directory only for the files that it puts there.",
     L"Look whether it is the right folder, and built."},
    {L"can't be opened", L"The file isn't there or can't be read, for the reason behind it.",
     L"Look at its path and its rights."},
    {L"can't be loaded", L"The script isn't one, for the reason behind it.",
     L"Mend what temz check tells."},
    {L" is no command", L"There is no such command.", seeHelp},
    {L" is no option", L"There is no such option, or not of this command.", seeHelp},
    {L" is missing.", L"The command needs more than it was given.", seeHelp},
    {L" needs a value", L"A value stands behind this option: --log run.log or --log=run.log.",
     seeHelp},
    {L" takes no value", L"This option stands alone.", seeHelp},
    {L" stands twice", L"This option may stand once.", seeHelp},
    {L" can't be \"", L"The option takes no such value.", seeHelp},
    {L"A run has failed", L"A product that isn't installed or removed can't be verified.",
     L"Do what the failure above says."},
    // The last line of a run; the reason in front of it or behind it says more.
    {L"Nothing was done (", L"The run hasn't begun, for the reason that stands with it.",
     L"temz help codes tells what to do about the code in the parentheses."},
    {L"What was done before stays",
     L"The run has ended before all was done. It takes nothing back by itself.",
     L"Do what the failure says, and run the same command again, or uninstall."},
};

/// A shorter text stands in anything.
constexpr size_t shortestPart = 8;

/// The message that the text is or holds, or else the only one that the text is a part of.
const MessageRow* findMessage(const std::wstring& text) {
    const MessageRow* around = nullptr;
    size_t count = 0;
    for (const MessageRow& row : messages) {
        if (text.find(row.part) != std::wstring::npos)
            return &row;
        if (std::wstring_view(row.part).find(text) != std::wstring_view::npos) {
            around = &row;
            ++count;
        }
    }
    return text.size() >= shortestPart && count == 1 ? around : nullptr;
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

/// The first finding's code in a text, in capitals; empty when there is none. Case doesn't count.
std::wstring findingCodeIn(const std::wstring& text) {
    for (size_t at = 0; at + 5 <= text.size(); ++at) {
        const bool begins = at == 0 || !std::iswalnum(text[at - 1]);
        const bool ends = at + 5 == text.size() || !std::iswalnum(text[at + 5]);
        if (begins && ends && std::towupper(text[at]) == L'T' &&
            std::towupper(text[at + 1]) == L'Z' &&
            text.find_first_not_of(L"0123456789", at + 2) >= at + 5)
            return L"TZ" + text.substr(at + 2, 3);
    }
    return L"";
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
    if (std::wstring text = explainFinding(findingCodeIn(subject)); !text.empty())
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
