#include "hostile/ScriptFuzz.h"

#include <algorithm>
#include <map>

#include "author/schema/AttributeWords.h"
#include "author/schema/ScriptGrammar.h"
#include "support/Text.h"

namespace {

constexpr const char* names[] = {
    "A", "B", "N", "T", "C", "APPLICATIONROOTDIRECTORY", "WindowsFolder", "OS_BIT", "a.txt", ""};
constexpr const char* textParts[] = {"[A]",
                                     "[B]",
                                     "[WindowsFolder]",
                                     "[",
                                     "]",
                                     "#T",
                                     "#N",
                                     "#A",
                                     "##",
                                     "#[",
                                     "#]",
                                     "#",
                                     "text",
                                     "\\",
                                     "/",
                                     "..",
                                     " ",
                                     ":",
                                     "*",
                                     "%1",
                                     "\xC3\xA4",
                                     "7",
                                     "-1",
                                     "&#65;",
                                     "&",
                                     "&lt;",
                                     "\"",
                                     "|",
                                     "Software\\Temz"};
constexpr const char* expressionParts[] = {
    "N",  "T", "C", "A",  "OS_BIT", "1",   "0",  "-7", "2147483648", "(", ")",  "=", "E",
    "NE", "G", "L", "GE", "LE",     "AND", "OR", "!",  "=",          "",  "\t", "X"};
constexpr const char* junk[] = {"<",    ">",         "/",   "\"",      "'",  "=",   "&",
                                ";",    "#",         "[",   "]",       "!",  "-",   "<!--",
                                "-->",  "<![CDATA[", "]]>", "<?xml?>", "&#", "&#x", "\xEF\xBB\xBF",
                                "\xF0", "\xC3",      " ",   "\n",      "</", "/>"};

const std::map<std::wstring, ElementShape>& shapes() {
    static const std::map<std::wstring, ElementShape> all = [] {
        std::map<std::wstring, ElementShape> byName;
        for (ElementShape& shape : scriptShapes())
            byName.emplace(shape.name, std::move(shape));
        return byName;
    }();
    return all;
}

/// Writes an element as its shape has it, or not quite.
class ScriptWriter {
public:
    explicit ScriptWriter(Random& random) : random(random) {}

    std::string script() {
        write(random.pick(std::vector<std::wstring>{scriptShapes().front().name}), 0);
        return std::move(text);
    }

private:
    void write(const std::wstring& shapeName, int depth) {
        const ElementShape& shape = shapes().at(random.percent(2) ? any() : shapeName);
        const std::string name = narrow(shape.element);
        text += "<" + name;
        for (const ElementShape::Attribute& attribute : shape.attributes)
            if (random.percent(attribute.required ? 97 : 40))
                writeAttribute(shape.element, attribute.name);
        text += ">";
        for (const ElementShape::Child& child : shape.children)
            for (size_t count = countOf(child, depth); count > 0; --count)
                write(child.shape, depth + 1);
        text += "</" + name + ">\n";
    }

    std::wstring any() {
        return std::next(shapes().begin(), static_cast<ptrdiff_t>(random.below(shapes().size())))
            ->first;
    }

    size_t countOf(const ElementShape::Child& child, int depth) {
        if (child.once)
            return random.percent(97) ? 1 : random.below(3);
        if (depth > 8 || text.size() > 20'000)
            return 0;
        return random.percent(depth < 2 ? 60 : 18) ? 1 + random.below(2) : 0;
    }

    void writeAttribute(const std::wstring& element, const std::wstring& attribute) {
        text += " " + narrow(attribute) + "=\"";
        const WordList* words = wordsOf(element, attribute);
        if (words && random.percent(90))
            text += narrow(random.pick(words->words()));
        else if (attribute == L"Expression")
            writeParts(expressionParts, " ", 8);
        else if (attribute == L"Id" && random.percent(95))
            text += random.pick(names);
        else
            writeParts(textParts, "", 4);
        text += "\"";
    }

    template <class Parts>
    void writeParts(const Parts& parts, const char* between, size_t most) {
        const std::string first = text;
        for (size_t count = random.below(most); count > 0; --count) {
            const std::string part = random.pick(parts);
            for (size_t times = random.percent(1) ? random.below(600) : 1; times > 0; --times)
                text += part == "\"" ? "&quot;" + std::string(between) : part + between;
        }
    }

    Random& random;
    std::string text;
};

}  // namespace

std::string ScriptFuzz::make(uint32_t number) const {
    Random random(number);
    std::string script =
        seeds.empty() || random.percent(60) ? ScriptWriter(random).script() : random.pick(seeds);
    return random.percent(40) ? script : changed(std::move(script), random);
}

std::string ScriptFuzz::changed(std::string script, Random& random) const {
    for (size_t count = 1 + random.below(4); count > 0; --count) {
        const size_t at = random.below(script.size() + 1);
        const size_t length = std::min(random.below(40), script.size() - at);
        switch (random.below(6)) {
            case 0:
                script.erase(at, length);
                break;
            case 1:
                script.insert(at, script.substr(random.below(script.size() + 1), length));
                break;
            case 2:
                script.insert(at, random.pick(junk));
                break;
            case 3:
                if (at < script.size())
                    script[at] = static_cast<char>(random.below(256));
                break;
            case 4: {
                const std::string& other = seeds.empty() ? script : random.pick(seeds);
                script = script.substr(0, at) + other.substr(random.below(other.size() + 1));
                break;
            }
            default: {
                const std::string part = script.substr(at, length);
                for (size_t times = random.below(30); times > 0; --times)
                    script.insert(at, part);
            }
        }
    }
    return script;
}
