#include "check/ScriptGenerator.h"

#include <algorithm>
#include <cctype>
#include <span>

namespace {

constexpr const char* expressions[] = {"OS_BIT E 64",
                                       "NUMBER G 3 OR OS_BIT NE 64",
                                       "! ( NUMBER E 1 )",
                                       "NUMBER = 2",
                                       "TEXT E FIXED",
                                       "TEXT = FIXED",
                                       "OS_MAJOR_VERSION GE 6 AND NUMBER",
                                       "( NUMBER L 9 )AND 1",
                                       "NUMBER = COUNT = 4",
                                       "TEXT AND NUMBER"};
constexpr const char* modes[] = {"install", "uninstall", "upgrade", "installupgrade", ""};
constexpr const char* titles[] = {"A title", "[DIR1]", "#TEXT", "#FIXED[DIR1]end", "a##b #[c#]"};
// A whole path in the middle of another would make directories that can't be removed again, and
// what a variable holds that a run can change, or shares with one, isn't known to a check.
constexpr const char* names[] = {"A title", "#]plain", "a##b #[c#]"};

bool isPath(const std::string& attribute) {
    return attribute == "Name" || attribute == "Path" || attribute == "Source";
}

constexpr const char* elementNames[] = {"File",       "Shortcut",  "RegistryKey", "RegistryValue",
                                        "Condition",  "Component", "Fragment",    "Feature",
                                        "FileSearch", "Caution",   "Directory",   "ComponentRef"};
constexpr const char* marks[] = {"[", "]", "#", " ", "(", ")", "=", "x", "7", "!"};
constexpr const char* wordAttributes[] = {"On",   "Action", "Return", "Wait",
                                          "Type", "Root",   "Vital",  "Id"};

std::string escaped(const std::string& text) {
    std::string result;
    for (const char letter : text)
        result += letter == '"' ? std::string("&quot;") : std::string(1, letter);
    return result;
}

}  // namespace

std::vector<DraftElement*> DraftElement::all() {
    std::vector<DraftElement*> list{this};
    for (DraftElement& child : children)
        for (DraftElement* inner : child.all())
            list.push_back(inner);
    return list;
}

void DraftElement::write(std::string& text, size_t depth) const {
    text.append(depth * 2, ' ').append("<").append(name);
    for (const auto& [attribute, value] : attributes)
        text.append(" ").append(attribute).append("=\"").append(escaped(value)).append("\"");
    if (children.empty()) {
        text.append("/>\n");
        return;
    }
    text.append(">\n");
    for (const DraftElement& child : children)
        child.write(text, depth + 1);
    text.append(depth * 2, ' ').append("</").append(name).append(">\n");
}

std::string ScriptGenerator::expression() {
    return random.pick(expressions);
}

std::string ScriptGenerator::mode() {
    return random.pick(modes);
}

DraftElement ScriptGenerator::condition(DraftElement inner) {
    return {"Condition", {{"Expression", expression()}}, {std::move(inner)}};
}

DraftElement ScriptGenerator::action() {
    switch (random.below(8)) {
        case 0:
            return {"Caution", {{"Title", random.pick(titles)}, {"On", mode()}}, {}};
        case 1:
            return {"FileSearch",
                    {{"Name", "kernel32.dll"},
                     {"Path", "[System32Folder]"},
                     {"Expression", expression()},
                     {"MinVersion", random.percent(50) ? "6.0" : ""}},
                    {}};
        case 2:
            return {"CopyFile", {{"DestinationName", "a"}, {"SourceName", "b"}}, {}};
        case 3:
            return {"RemoveDirectory",
                    {{"Path", "[DIR1]" + freshId("gone")}, {"Title", random.pick(titles)}},
                    {}};
        case 4:
            return {"ServiceControl",
                    {{"Name", "TemzNoSuchService"},
                     {"Action", random.percent(50) ? "stop" : "remove"},
                     {"Wait", "no"}},
                    {}};
        case 5:
            return {"ShellExcute",
                    {{"File", "[DIR1]run.exe"}, {"Return", "sync"}, {"ExeCommand", "#TEXT"}},
                    {}};
        case 6:
            return {"CustomAction",
                    {{"DllFile", playground.library}, {"DllEntry", "answer"}, {"Return", "check"}},
                    {}};
        default:
            return {"Condition", {{"Expression", expression()}}, {}};
    }
}

DraftElement ScriptGenerator::fragment(size_t depth) {
    DraftElement element{"Fragment", {{"Id", freshId("F")}, {"On", mode()}}, {}};
    for (size_t count = random.below(4); count > 0; --count) {
        if (depth > 0 && random.percent(30))
            element.children.push_back(fragment(depth - 1));
        else
            element.children.push_back(random.percent(25) ? condition(action()) : action());
    }
    return element;
}

DraftElement ScriptGenerator::registryKey(size_t depth, bool outermost) {
    DraftElement element{"RegistryKey", {{"Action", "create"}}, {}};
    if (outermost)
        element.attributes.emplace_back("Root", "HKEY_CURRENT_USER");
    element.attributes.emplace_back(
        "Key", outermost ? playground.key + "\\" + freshId("K") : freshId("K"));
    for (size_t count = random.below(3); count > 0; --count) {
        DraftElement value{"RegistryValue", {{"Name", freshId("V")}}, {}};
        const bool isNumber = random.percent(50);
        value.attributes.emplace_back("Type", isNumber ? "REG_DWORD" : "REG_SZ");
        value.attributes.emplace_back("Value", isNumber ? "17" : random.pick(titles));
        if (random.percent(20))
            value.attributes.emplace_back("Vital", random.percent(50) ? "yes" : "no");
        element.children.push_back(random.percent(25) ? condition(value) : value);
    }
    if (depth > 0 && random.percent(40))
        element.children.push_back(registryKey(depth - 1, false));
    return element;
}

DraftElement ScriptGenerator::component(size_t depth) {
    DraftElement element{"Component", {{"Id", freshId("C")}}, {}};
    if (random.percent(40))
        element.attributes.emplace_back("On", mode());
    for (size_t count = 1 + random.below(3); count > 0; --count) {
        DraftElement child;
        switch (random.below(5)) {
            case 0:
                child = registryKey(depth, true);
                break;
            case 1:
                child = action();
                break;
            case 2:
                if (random.percent(15)) {
                    child = {"Shortcut",
                             {{"Name", freshId("link")},
                              {"Description", ""},
                              {"Target", "[DIR1]run.exe"}},
                             {}};
                    break;
                }
                [[fallthrough]];
            default:
                child = {"File", {{"Name", freshId("file")}, {"Source", playground.source}}, {}};
                if (random.percent(20))
                    child.attributes.emplace_back("Vital", random.percent(50) ? "yes" : "no");
        }
        element.children.push_back(random.percent(20) ? condition(child) : child);
    }
    return element;
}

DraftElement ScriptGenerator::makeScript() {
    ids = 0;
    DraftElement directory{"Directory",
                           {{"Id", "APPLICATIONROOTDIRECTORY"}, {"Path", playground.folder}},
                           {{"Directory", {{"Id", "DIR1"}, {"Path", "#TEXT"}}, {}},
                            {"Directory", {{"Id", "DIR2"}}, {}}}};
    DraftElement product{"Product", {{"Id", "P"}}, {}};
    DraftElement sequence{"InstallExecuteSequence", {}, {}};
    DraftElement feature{"Feature", {{"Id", "Main"}}, {}};
    for (size_t count = 1 + random.below(3); count > 0; --count) {
        DraftElement defined = component(2);
        DraftElement reference{"ComponentRef", {defined.attributes.front()}, {}};
        directory.children[random.below(2)].children.push_back(std::move(defined));
        feature.children.push_back(random.percent(25) ? condition(reference) : reference);
    }
    product.children.push_back(std::move(directory));
    for (size_t count = 1 + random.below(3); count > 0; --count) {
        DraftElement defined = fragment(1);
        if (random.percent(40)) {
            sequence.children.push_back({"FragmentRef", {defined.attributes.front()}, {}});
            product.children.push_back(std::move(defined));
        } else {
            sequence.children.push_back(random.percent(20) ? condition(defined) : defined);
        }
    }
    if (random.percent(30)) {
        sequence.children.push_back({"FeatureRef", {{"Id", "Main"}}, {}});
        product.children.push_back(std::move(feature));
    } else {
        sequence.children.push_back(std::move(feature));
    }
    product.children.push_back(std::move(sequence));
    const auto variable = [](const char* name, const char* id, const char* type,
                             const char* value) -> DraftElement {
        return {name, {{"Id", id}, {"Type", type}, {"Value", value}}, {}};
    };
    return {"Script",
            {},
            {variable("Variable", "TEXT", "string", "text"),
             variable("VariableConst", "FIXED", "string", "fixed"),
             variable("Variable", "NUMBER", "int", "5"), variable("Variable", "COUNT", "int", "0"),
             std::move(product)}};
}

// What stands at the front of all paths and keys stays, so that nothing else on the machine is met.
bool ScriptGenerator::isSafeToSpoil(const DraftElement& element,
                                    const std::string& attribute) const {
    if (element.name == "RegistryKey")
        return attribute != "Key";
    for (const auto& [name, value] : element.attributes)
        if (name == attribute && value == playground.folder)
            return false;
    return attribute != "DllFile" && attribute != "DllEntry";
}

void ScriptGenerator::spoil(DraftElement& script) {
    const std::vector<DraftElement*> elements = script.all();
    DraftElement& element = *elements[1 + random.below(elements.size() - 1)];
    switch (random.below(6)) {
        case 0:
            return spoilName(element);
        case 1:
            return spoilChildren(element, script);
        default:
            return spoilAttribute(element);
    }
}

void ScriptGenerator::spoilName(DraftElement& element) {
    std::string& name = element.name;
    switch (random.below(3)) {
        case 0:
            name.erase(random.below(name.size() - 1), 1);
            break;
        case 1:
            name[0] = static_cast<char>(std::tolower(name[0]));
            break;
        default:
            name = random.pick(elementNames);
    }
}

void ScriptGenerator::spoilAttribute(DraftElement& element) {
    if (element.attributes.empty()) {
        element.attributes.emplace_back("On", "Install");
        return;
    }
    const size_t index = random.below(element.attributes.size());
    auto& [name, value] = element.attributes[index];
    if (!isSafeToSpoil(element, name))
        return;
    switch (random.below(6)) {
        case 0:
            element.attributes.erase(element.attributes.begin() + static_cast<ptrdiff_t>(index));
            return;
        case 1:
            name[random.below(name.size())] = 'q';
            return;
        case 2:
            value.insert(random.below(value.size() + 1), random.pick(marks));
            return;
        case 3:
            if (!value.empty())
                value.erase(random.below(value.size()), 1);
            return;
        case 4:
            value.clear();
            return;
        default:
            if (std::find(std::begin(wordAttributes), std::end(wordAttributes), name) !=
                std::end(wordAttributes))
                std::transform(value.begin(), value.end(), value.begin(), [](unsigned char letter) {
                    return static_cast<char>(std::isupper(letter) ? std::tolower(letter)
                                                                  : std::toupper(letter));
                });
            else
                value = random.pick(isPath(name) ? std::span<const char* const>(names)
                                                 : std::span<const char* const>(titles));
    }
}

void ScriptGenerator::spoilChildren(DraftElement& element, DraftElement& script) {
    if (element.name == "RegistryKey")
        return;
    switch (random.below(3)) {
        case 0:
            element.children.push_back({random.pick(elementNames), {{"Id", "C1"}}, {}});
            return;
        case 1:
            element.children.clear();
            return;
        default: {
            const std::vector<DraftElement*> elements = script.all();
            const DraftElement copy = *elements[1 + random.below(elements.size() - 1)];
            if (copy.name != "RegistryKey" && copy.name != "Product" && copy.name != "Directory")
                element.children.push_back(copy);
        }
    }
}
