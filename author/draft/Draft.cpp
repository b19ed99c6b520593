#include "author/draft/Draft.h"

#include <algorithm>
#include <cwctype>
#include <utility>
#include <vector>

#include "author/Markup.h"
#include "author/SystemDirectories.h"

namespace {

constexpr size_t longestPath = 259;  // that Windows makes

/// The path of the shortcut has the name twice: [ProgramMenuFolder]\NAME\NAME.lnk.
constexpr size_t longestName = (longestPath - longestFolder - std::size(L"\\\\.lnk") + 1) / 2;

/// A text in which the engine sees no reference.
std::wstring literal(const std::wstring& plain) {
    std::wstring text;
    for (const wchar_t character : plain) {
        if (character == L'#' || character == L'[' || character == L']')
            text += L'#';
        text += character;
    }
    return text;
}

bool isAscii(const std::wstring& text) {
    return std::all_of(text.begin(), text.end(), [](wchar_t unit) { return unit < 0x80; });
}

std::wstring inLowerCase(std::wstring text) {
    std::transform(text.begin(), text.end(), text.begin(), std::towlower);
    return text;
}

std::wstring withoutBlanks(std::wstring text) {
    std::erase(text, L' ');
    return text;
}

/// The program that a shortcut should lead to; empty when there is none, or no telling which.
std::wstring programOf(const std::wstring& product, const Payload& payload) {
    constexpr std::wstring_view suffix = L".exe";
    std::vector<std::wstring> programs;
    for (const std::wstring& file : payload.files)
        if (inLowerCase(file).ends_with(suffix))
            programs.push_back(file);
    if (programs.size() == 1)
        return programs[0];
    const std::wstring wanted = inLowerCase(withoutBlanks(product));
    for (const std::wstring& program : programs)
        if (inLowerCase(withoutBlanks(program.substr(0, program.size() - suffix.size()))) == wanted)
            return program;
    return L"";
}

/// The file with the longest path below the folder, which is that of the folder here.
std::wstring longestPlace(const Payload& folder, const std::wstring& path) {
    std::wstring longest;
    const auto consider = [&longest](const std::wstring& place) {
        if (place.size() > longest.size())
            longest = place;
    };
    for (const std::wstring& file : folder.files)
        consider(path + file);
    for (const Payload& inner : folder.folders)
        consider(longestPlace(inner, path + inner.name + L"\\"));
    return longest;
}

void noteLongPath(const std::wstring& name, const Payload& payload, Notes& notes) {
    const std::wstring place = longestPlace(payload, L"");
    const size_t length = longestFolder + std::size(L"\\\\") - 1 + name.size() + place.size();
    if (length > longestPath)
        notes.push_back(place + L" gets a path of up to " + std::to_wstring(length) +
                        L" characters, and Windows makes files of up to " +
                        std::to_wstring(longestPath) + L". Shorten the names.");
}

/// A script in the making.
class Draft {
public:
    using Attributes = std::initializer_list<std::pair<const wchar_t*, std::wstring>>;

    void open(const wchar_t* element, Attributes attributes = {}) {
        line(L"<" + tag(element, attributes) + L">");
        elements.emplace_back(element);
    }
    void close() {
        const std::wstring element = elements.back();
        elements.pop_back();
        line(L"</" + element + L">");
    }
    void leaf(const wchar_t* element, Attributes attributes) {
        line(L"<" + tag(element, attributes) + L"/>");
    }
    void line(const std::wstring& text) {
        script.append(4 * elements.size(), L' ').append(text).append(L"\n");
    }
    /// The lines of a comment, the first behind its mark.
    void comment(std::initializer_list<const wchar_t*> lines) {
        std::wstring text;
        for (const wchar_t* one : lines)
            text +=
                (text.empty() ? L"<!-- " : L"\n" + std::wstring(4 * elements.size() + 5, L' ')) +
                std::wstring(one);
        line(text + L" -->");
    }

    /// The components of a folder and of those in it. A component's `Id` is the place of its files.
    void components(const Payload& folder, const std::wstring& place) {
        if (!folder.files.empty()) {
            ids.push_back(place);
            open(L"Component", {{L"Id", place}});
            const std::wstring source = literal(place) + L"\\";
            for (const std::wstring& file : folder.files) {
                const std::wstring name = literal(file);
                leaf(L"File", {{L"Name", name}, {L"Source", source + name}});
            }
            close();
        }
        for (const Payload& child : folder.folders) {
            open(L"Directory", {{L"Path", literal(child.name)}});
            components(child, place + L"\\" + child.name);
            close();
        }
    }
    void references() {
        for (const std::wstring& id : ids)
            leaf(L"ComponentRef", {{L"Id", id}});
    }

    std::wstring script;
    std::vector<std::wstring> ids;  ///< of the components so far

private:
    static std::wstring tag(const std::wstring& element, Attributes attributes) {
        std::wstring text = element;
        for (const auto& [name, value] : attributes)
            text += std::wstring(L" ") + name + L"=\"" + escapedForMarkup(value) + L"\"";
        return text;
    }

    std::vector<std::wstring> elements;
};

void noteEncoding(const std::wstring& script, Notes& notes) {
    if (!isAscii(script))
        notes.push_back(
            L"The script isn't all ASCII. It is UTF-8, which temz.exe reads on Windows "
            L"10, version 1903, and later.");
}

void writeShortcut(Draft& draft, const std::wstring& name, const std::wstring& program) {
    draft.comment({L"The place of the shortcut, in the start menu of all users."});
    draft.open(L"Directory", {{L"Id", L"ProgramMenuFolder"}});
    draft.open(L"Directory", {{L"Id", L"MENU"}, {L"Path", literal(name)}});
    // No place of files has a colon in it, so that this Id is no other's.
    const std::wstring id = L"Shortcut: " + name;
    draft.ids.push_back(id);
    draft.open(L"Component", {{L"Id", id}});
    draft.leaf(L"Shortcut", {{L"Name", literal(name)},
                             {L"Description", literal(name)},
                             {L"Target", L"[ROOT]" + literal(program)},
                             {L"WorkingDirectory", L"[ROOT]"}});
    draft.close();
    draft.close();
    draft.close();
}

void writeSequence(Draft& draft, bool hasShortcut) {
    draft.open(L"InstallExecuteSequence");
    draft.comment({L"What a run does, in this order. A component copies its files at install and",
                   L"upgrade and deletes them at uninstall. One that a later version no longer has",
                   L"stays until the directory is removed."});
    draft.open(L"Feature", {{L"Id", L"Main"}});
    draft.references();
    draft.close();
    draft.comment(
        {L"Directories stay until they are removed, with all that is in them: also with what",
         L"users have put there. Leave the line out to let them keep it."});
    draft.open(L"Fragment", {{L"Id", L"Clear"}, {L"On", L"uninstall"}});
    draft.leaf(L"RemoveDirectory", {{L"Path", L"[ROOT]"}});
    if (hasShortcut)
        draft.leaf(L"RemoveDirectory", {{L"Path", L"[MENU]"}});
    draft.close();
    draft.close();
}

}  // namespace

std::wstring faultOfProductName(const std::wstring& name) {
    if (name.size() > longestName)
        return L"it has " + std::to_wstring(name.size()) +
               L" characters; a product's name can have " + std::to_wstring(longestName) + L".";
    const std::wstring directory = L"]\\" + inLowerCase(name);
    if (isSystemDirectory(L"[programfilesfolder" + directory) ||
        isSystemDirectory(L"[programmenufolder" + directory))
        return L"that is a directory of Windows, which an uninstall would remove.";
    return faultOfName(name);
}

std::wstring draftProduct(const std::wstring& name, const Payload& payload, Notes& notes) {
    const std::wstring program = programOf(name, payload);
    if (program.empty())
        notes.push_back(
            L"There is no shortcut, as there isn't one program at the top of the folder, "
            L"or one that is named like the product.");
    Draft draft;
    draft.line(L"<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
    draft.comment(
        {L"A draft: make it yours. It runs from the folder that holds temz.exe, TEMZC.dll and the",
         L"folder of the files:", L"    temz install install.xml", L"    temz upgrade install.xml",
         L"    temz uninstall install.xml"});
    draft.open(L"Script");
    draft.open(L"Product", {{L"Id", name}});
    draft.comment(
        {L"Where files go: directories, nested as on the disk. The outermost is the system's "
         L"folder",
         L"of this name; [ROOT] stands for the whole path of the one with this Id. Each",
         L"component holds what goes to the directory around it; Source counts from the",
         L"folder of temz.exe."});
    draft.open(L"Directory", {{L"Id", L"ProgramFilesFolder"}});
    draft.open(L"Directory", {{L"Id", L"ROOT"}, {L"Path", literal(name)}});
    draft.components(payload, payload.name);
    draft.close();
    draft.close();
    if (!program.empty())
        writeShortcut(draft, name, program);
    writeSequence(draft, !program.empty());
    draft.close();
    draft.close();
    noteLongPath(name, payload, notes);
    noteEncoding(draft.script, notes);
    return draft.script;
}

std::wstring draftPart(const Payload& payload, Notes& notes) {
    Draft draft;
    draft.comment({L"Into the Directory that these files go to:"});
    draft.components(payload, payload.name);
    draft.comment({L"Into a Feature of the InstallExecuteSequence:"});
    draft.references();
    noteEncoding(draft.script, notes);
    return draft.script;
}
