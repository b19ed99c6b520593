#include "author/schema/ElementTexts.h"

#include <algorithm>

#include "author/schema/AttributeWords.h"
#include "elements/Vocabulary.h"

namespace {

constexpr wchar_t onText[] =
    L"the [modes](#modes-and-the-attribute-on) that it takes part in: {words}; without it, all";
constexpr wchar_t vitalText[] =
    L"{words}: whether the host is asked [when it fails](#when-an-action-fails-vital); without it, "
    L"`yes`";
constexpr wchar_t titleText[] = L"text for the host, at most 511 characters";
constexpr wchar_t referredText[] = L"the name by which `{element}Ref` refers to it";
constexpr wchar_t referringText[] = L"the `Id` of the `{target}` that it stands for";
constexpr wchar_t unusedText[] = L"not used";
constexpr wchar_t variableIdText[] =
    L"the variable's name; of several with one name the first counts";
constexpr wchar_t variableValueText[] =
    L"its text or number; references in it are not replaced. That a number is none shows when it "
    L"is first read";
constexpr wchar_t variableTypeText[] =
    L"{words}; with any other the variable doesn't exist, and a line stands in the log";
constexpr wchar_t otherIdText[] = L"a name for it in messages";

constexpr ElementText texts[] = {
    {L"Script", L"", L"An install script. The root may have any name; this one has a schema."},
    {L"Product", L"", L"The product that the script installs: its places, and what a run does."},

    {L"InstallExecuteSequence", L"",
     L"Where a run begins; a direct child of `Product`. It has no attributes."},

    {L"Fragment", L"", L"Groups actions that belong to no component."},
    {L"Fragment", L"Id", referredText},
    {L"Fragment", L"On", onText},

    {L"Feature", L"", L"Groups components, and takes part in every mode."},
    {L"Feature", L"Id", referredText},

    {L"Component", L"",
     L"Holds what goes to one directory: that of the `Directory` (or `DirectoryRef`) in which the "
     L"component is defined, also when a `ComponentRef` elsewhere leads to it. A component that "
     L"stands in no directory can hold no files."},
    {L"Component", L"Id", referredText},
    {L"Component", L"On", onText},
    {L"Component", L"SupportDelayInstall",
     L"{words}: the default of its files' attribute of this name"},

    {L"Condition", L"",
     L"Visits its children when its expression is true, and skips them when it is false. An "
     L"expression that fails ends the run, without a question to the host. In all other respects a "
     L"condition isn't there: what its children ask of the element above them, for instance `Path` "
     L"or `SupportDelayInstall`, and its own `On`, is answered by the element above the "
     L"condition."},
    {L"Condition", L"Expression", L"see [expressions](#expressions); at most 511 characters"},

    {L"CustomAction", L"",
     L"Calls a function that a native 64-bit library exports; "
     L"[custom-actions.md](custom-actions.md) tells how to write one. The library is loaded for "
     L"the one call. A failure is always vital."},
    {L"CustomAction", L"DllFile",
     L"the library, with its whole path and in backslashes. One without a path is looked for by "
     L"Windows, with some hosts also in folders where anybody may have put one; with `temz.exe` in "
     L"the system directory alone"},
    {L"CustomAction", L"DllEntry", L"the exported name of the function, at most 511 characters"},
    {L"CustomAction", L"Return",
     L"`check`: a number other than 0 is a failure; anything else, such as `no`: the number is "
     L"ignored"},
    {L"CustomAction", L"On", onText},
    {L"CustomAction", L"Title", titleText},

    {L"File", L"",
     L"At install and upgrade, copies a file to the component's directory, which is made if it is "
     L"missing; a file that is there is replaced, whatever its version. At uninstall, deletes it "
     L"there, also when it is read-only; a file that isn't there is no failure. Directories are "
     L"not removed."},
    {L"File", L"Name",
     L"the file's name in the component's directory, at most 511 characters; see "
     L"[names](#code-pages-limits-and-the-log)"},
    {L"File", L"Source",
     L"the file to copy, relative to the directory of the host program, also if it looks absolute"},
    {L"File", L"SupportDelayInstall",
     L"`yes`: when the copy fails, the new file is staged beside the target, with `!@#$%` behind "
     L"its name, and replaces it at the next [restart](what-a-run-leaves.md#the-restart) of the "
     L"machine. The host is told that a restart is needed. There is no delayed deletion."},
    {L"File", L"KillProcess",
     L"`yes`: first ends the program that runs from the target, in every mode, and waits one "
     L"second"},
    {L"File", L"Vital", vitalText},

    {L"Shortcut", L"",
     L"At install and upgrade, makes a shortcut (`.lnk`) in the component's directory, which is "
     L"made if it is missing; one that is there is replaced. At uninstall, deletes it. A failure "
     L"is always vital; that the file of the shortcut can't be written is not noticed. Directory, "
     L"name and `.lnk` together stay under 260 characters: a longer path ends the process."},
    {L"Shortcut", L"Name",
     L"the shortcut's name in the component's directory; `.lnk` is always put behind it"},
    {L"Shortcut", L"Description", L"must be there, and means nothing"},
    {L"Shortcut", L"Target",
     L"what the shortcut opens: one path, without arguments; it need not exist"},
    {L"Shortcut", L"WorkingDirectory",
     L"the directory in which the target starts; without it, the target's own"},
    {L"Shortcut", L"IcoFile", L"an icon file; without it, the target's icon"},

    {L"ShellExcute", L"",
     L"Starts a program through the shell of Windows (with a hidden window, and from Windows Vista "
     L"on elevated, which asks the user when the host isn't), in every mode that `On` allows. It "
     L"fails when the program can't be started; its exit code means nothing."},
    {L"ShellExcute", L"File",
     L"the program, with its whole path, at most 511 characters. A bare name is looked up in "
     L"places that the user can write to"},
    {L"ShellExcute", L"Return",
     L"`sync`: the run waits, without a limit, until the program has ended; anything else, such as "
     L"`no`: it goes on"},
    {L"ShellExcute", L"ExeCommand",
     L"the program's arguments, on one line. `\"[ROOT]\"` ends in `\\\"`, which most programs, but "
     L"not `cmd.exe`, take for a quotation mark inside the argument"},
    {L"ShellExcute", L"On", onText},
    {L"ShellExcute", L"Show", L"means nothing: the window is hidden"},
    {L"ShellExcute", L"Title", titleText},
    {L"ShellExcute", L"Vital", vitalText},

    {L"ServiceControl", L"",
     L"Starts, stops or removes a service, in every mode that `On` allows. A service that isn't "
     L"there counts as stopped and as removed; [how to create one](how-to.md#create-a-service). "
     L"All three fail, without a reason, when the host isn't elevated."},
    {L"ServiceControl", L"Name",
     L"the service's name, not the one it is displayed by; at most 511 characters"},
    {L"ServiceControl", L"Action",
     L"{words}; anything else does nothing and leaves a line in the log"},
    {L"ServiceControl", L"Wait",
     L"`yes`: it has 15 seconds to start or stop; anything else, such as `no`: one second, after "
     L"which it must have"},
    {L"ServiceControl", L"On", onText},
    {L"ServiceControl", L"Vital", vitalText},

    {L"CopyFile", L"", L"Is accepted and does nothing; `File` is what copies."},
    {L"CopyFile", L"DestinationName", unusedText},
    {L"CopyFile", L"SourceName", unusedText},

    {L"FileSearch", L"",
     L"Looks for a file, in every mode, and evaluates an expression when it is there. That it "
     L"isn't there is no failure. An expression that fails is one, and always vital. The host "
     L"isn't told of a search."},
    {L"FileSearch", L"Name",
     L"the file; without `MinVersion` a directory and a pattern such as `*.dll` count too. A "
     L"pattern is also compared with the short names of files, so `*.htm` may find an `.html`"},
    {L"FileSearch", L"Path", L"the directory to look in"},
    {L"FileSearch", L"Expression",
     L"normally an assignment to a variable that a later `Condition` asks for"},
    {L"FileSearch", L"MinVersion",
     L"the lowest file version that will do: up to four numbers with dots, such as `1.2`, up to "
     L"the first piece that is no number; a file without a version won't do"},

    {L"RegistryKey", L"",
     L"Makes or removes a key of the registry (always the 64-bit one), in every mode that `On` "
     L"allows, and before its children, which are visited after a removal too. A key is removed "
     L"with all that it holds; one that isn't there is no failure. A failure ends the run, without "
     L"a question to the host and whatever `Vital` says. Beware of an empty `Key`, for instance "
     L"from a variable: with `remove` it means all that the root holds."},
    {L"RegistryKey", L"Action", L"{words}"},
    {L"RegistryKey", L"Key", L"the path of the key, behind that of the `RegistryKey` around it"},
    {L"RegistryKey", L"Root", L"{words}; a nested key takes it from the one around it"},
    {L"RegistryKey", L"On", onText},
    {L"RegistryKey", L"Vital", L"means nothing"},
    {L"RegistryKey", L"Title", titleText},

    {L"RegistryValue", L"",
     L"Writes a value into the key of the `RegistryKey` around it, which must be there, in every "
     L"mode that this key takes part in. Directly in a `Component` it ends the run."},
    {L"RegistryValue", L"Name", L"the value's name"},
    {L"RegistryValue", L"Type", L"{words}"},
    {L"RegistryValue", L"Value",
     L"a text, written without a terminator and, for `REG_MULTI_SZ`, as the only one; or a decimal "
     L"number, at most 2147483647"},
    {L"RegistryValue", L"Vital", vitalText},

    {L"RemoveDirectory", L"",
     L"Removes a directory with all that it holds, read-only files included, in every mode that "
     L"`On` allows. What can be removed is removed, also when something else can't be. A directory "
     L"that isn't there is no failure."},
    {L"RemoveDirectory", L"Path", L"the whole path, for instance `[ROOT]cache`"},
    {L"RemoveDirectory", L"On", onText},
    {L"RemoveDirectory", L"Vital", vitalText},
    {L"RemoveDirectory", L"Title", titleText},

    {L"Caution", L"", L"Passes a text to the host, for the user to read. It always succeeds."},
    {L"Caution", L"Title", L"the text, at most 511 characters"},
    {L"Caution", L"On", onText},

    {L"Directory", L"",
     L"Gives an `Id` to a place on the disk. `Path` is joined to the path of the enclosing "
     L"`Directory`; the outermost one can have an absolute `Path`. The directory is made only when "
     L"a file or a shortcut is put into it; [how to make an empty "
     L"one](how-to.md#make-an-empty-folder-and-remove-a-users-folder)."},
    {L"Directory", L"Id", L"a name of your own, or one of the system's folders"},
    {L"Directory", L"Path",
     L"text behind the enclosing path; without it, the system's folder that `Id` names, or else "
     L"the enclosing path itself"},

    {L"Variable", L"", L"A text or a number that expressions and attribute texts ask for."},
    {L"Variable", L"Id", variableIdText},
    {L"Variable", L"Value", variableValueText},
    {L"Variable", L"Type", variableTypeText},
    {L"VariableConst", L"", L"A `Variable` that can't be assigned to."},
    {L"VariableConst", L"Id", variableIdText},
    {L"VariableConst", L"Value", variableValueText},
    {L"VariableConst", L"Type", variableTypeText},

    {L"FragmentRef", L"", L"Stands for the first `Fragment` below `Product` with this `Id`."},
    {L"FragmentRef", L"Id", referringText},
    {L"FeatureRef", L"", L"Stands for the first `Feature` below `Product` with this `Id`."},
    {L"FeatureRef", L"Id", referringText},
    {L"ComponentRef", L"", L"Stands for the first `Component` below `Product` with this `Id`."},
    {L"ComponentRef", L"Id", referringText},
    {L"DirectoryRef", L"",
     L"Stands for the first `Directory` below `Product` with this `Id`, around components."},
    {L"DirectoryRef", L"Id", referringText},
};

void replace(std::wstring& text, const std::wstring& name, const std::wstring& value) {
    for (size_t at; (at = text.find(name)) != std::wstring::npos;)
        text.replace(at, name.size(), value);
}

/// "`a`, `b` or `c`".
std::wstring listOf(const std::vector<const wchar_t*>& words) {
    std::wstring list;
    for (size_t i = 0; i < words.size(); ++i) {
        if (i > 0)
            list += i + 1 < words.size() ? L", " : L" or ";
        list += std::wstring(L"`") + words[i] + L"`";
    }
    return list;
}

}  // namespace

std::span<const ElementText> elementTexts() {
    return texts;
}

std::wstring textOf(const std::wstring& element, const std::wstring& attribute) {
    const auto* found = std::find_if(std::begin(texts), std::end(texts), [&](const auto& row) {
        return element == row.element && attribute == row.attribute;
    });
    if (found == std::end(texts))
        return attribute == idAttribute ? otherIdText : L"";
    std::wstring text = found->text;
    if (const WordList* words = wordsOf(element, attribute))
        replace(text, L"{words}", listOf(words->words()));
    replace(text, L"{element}", element);
    constexpr size_t suffix = std::wstring_view(L"Ref").size();
    replace(text, L"{target}",
            element.substr(0, element.size() - std::min(element.size(), suffix)));
    return text;
}
