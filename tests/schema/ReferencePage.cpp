#include "ReferencePage.h"

#include <algorithm>
#include <map>
#include <sstream>
#include <vector>

#include "author/schema/ElementTexts.h"
#include "author/schema/ScriptGrammar.h"
#include "elements/Vocabulary.h"
#include "support/Text.h"

namespace {

using Lines = std::vector<std::string>;

const std::string childrenHead = "| Element | May hold |";
const std::string attributesHead = "| Attribute | Required | Meaning |";
const std::string rule2 = "|---|---|";
const std::string rule3 = "|---|---|---|";

std::string code(const std::string& word) {
    return "`" + word + "`";
}

/// Words on lines as long as those of the page.
Lines wrapped(const std::string& text) {
    constexpr size_t width = 102;
    Lines lines;
    std::istringstream words(text);
    for (std::string word; words >> word;)
        if (!lines.empty() && lines.back().size() + 1 + word.size() <= width)
            lines.back() += " " + word;
        else
            lines.push_back(word);
    return lines;
}

Lines childrenTable() {
    Lines lines{childrenHead, rule2};
    for (const ElementKind* kind : motionKinds()) {
        std::string children;
        for (const wchar_t* child : kind->children)
            children += (children.empty() ? "" : ", ") + code(narrow(child));
        if (!children.empty())
            lines.push_back("| " + code(narrow(kind->name)) + " | " + children + " |");
    }
    lines.push_back("| any other in the sequence | nothing |");
    return lines;
}

/// All shapes of one element.
std::vector<ElementShape> shapesOf(const std::string& element) {
    std::vector<ElementShape> shapes = scriptShapes();
    std::erase_if(shapes,
                  [&](const ElementShape& shape) { return narrow(shape.element) != element; });
    return shapes;
}

bool isReferredTo(const std::string& element) {
    return element == narrow(directoryKind.name) ||
           std::any_of(
               motionReferences().begin(), motionReferences().end(),
               [&](const auto& reference) { return element == narrow(reference.target->name); });
}

std::string requirement(const std::string& element, const std::wstring& attribute) {
    size_t places = 0;
    size_t required = 0;
    for (const ElementShape& shape : shapesOf(element))
        for (const ElementShape::Attribute& one : shape.attributes)
            if (one.name == attribute) {
                ++places;
                required += one.required;
            }
    if (required > 0)
        return required == places ? "yes" : "outermost";
    return attribute == idAttribute ? "for references" : "no";
}

/// An `Id` is told of only where something asks for it.
Lines attributesTable(const std::string& element) {
    Lines lines{attributesHead, rule3};
    const ElementShape shape = shapesOf(element).front();
    for (const auto& [name, required] : shape.attributes)
        if (name != idAttribute || required || isReferredTo(element))
            lines.push_back("| " + code(narrow(name)) + " | " + requirement(element, name) + " | " +
                            narrow(textOf(std::wstring(element.begin(), element.end()), name)) +
                            " |");
    return lines;
}

/// The elements that a heading such as "### `Variable`, `VariableConst`" names.
Lines elementsIn(const std::string& heading) {
    Lines names;
    if (!heading.starts_with("### `"))
        return names;
    for (size_t start = 0; (start = heading.find('`', start)) != std::string::npos;) {
        const size_t end = heading.find('`', start + 1);
        names.push_back(heading.substr(start + 1, end - start - 1));
        start = end + 1;
    }
    return names;
}

Lines linesOf(const std::string& page) {
    Lines lines;
    std::istringstream stream(page);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

}  // namespace

std::string renewedPage(const std::string& page) {
    std::string renewed;
    const auto put = [&](const Lines& lines) {
        for (const std::string& line : lines)
            renewed += line + "\n";
    };
    const Lines lines = linesOf(page);
    const auto blockEnd = [&](size_t index) {
        return static_cast<size_t>(
            std::find(lines.begin() + static_cast<ptrdiff_t>(index), lines.end(), "") -
            lines.begin());
    };
    Lines elements;
    for (size_t index = 0; index < lines.size(); ++index) {
        if (lines[index].starts_with('#'))
            elements = elementsIn(lines[index]);
        Lines block;
        if (lines[index] == childrenHead)
            block = childrenTable();
        else if (lines[index] == attributesHead)
            block = attributesTable(elements.front());
        else if (index >= 2 && elements.size() == 1 && elementsIn(lines[index - 2]) == elements)
            block = wrapped(narrow(textOf({elements[0].begin(), elements[0].end()})));
        if (block.empty()) {
            put({lines[index]});
        } else {
            put(block);
            index = blockEnd(index) - 1;
        }
    }
    return renewed;
}
