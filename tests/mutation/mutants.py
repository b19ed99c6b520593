"""Makes mutants: copies of a source, each with one small fault in it."""

import bisect
import re
from dataclasses import dataclass

TOKEN = re.compile(
    r"""(?P<skip>//[^\n]*|/\*.*?\*/|^[ \t]*\#(?:[^\n\\]|\\.)*|R"\((?:.*?)\)"|\s+)
    |(?P<text>(?:u8|[LuU])?"(?:[^"\\\n]|\\.)*")
    |(?P<character>L?'(?:[^'\\\n]|\\.)+')
    |(?P<number>(?:0[xX][0-9a-fA-F']+|\d[\d']*)[uUlL]*)
    |(?P<word>[A-Za-z_]\w*)
    |(?P<sign><<=|>>=|<=>|->|::|\+\+|--|<<|>>|[-+*/%&|^=!<>]=|&&|\|\||.)""",
    re.DOTALL | re.MULTILINE | re.VERBOSE,
)

# What takes the place of a sign that stands between spaces. Elsewhere the same signs make up types.
BETWEEN_SPACES = {
    "+": "-", "-": "+", "*": "/", "/": "*", "%": "*", "&": "|", "|": "&", "<<": ">>", ">>": "<<",
    "+=": "-=", "-=": "+=", "|=": "&=", "&=": "|=",
    "==": "!=", "!=": "==", "<": "<=", "<=": "<", ">": ">=", ">=": ">",
    "&&": "||", "||": "&&",
}  # fmt: skip
WORDS = {"true": "false", "false": "true"}
# Statements that begin like this declare, or are no mutant of interest when they are dropped.
NOT_DROPPED = {
    "using", "static_assert", "namespace", "template", "class", "struct", "enum", "union", "public",
    "protected", "private", "extern", "if", "else", "for", "while", "do", "switch", "case", "default",
    "try", "catch", "return", "const", "constexpr", "auto", "static", "typedef", "friend",
}  # fmt: skip
# What the line behind it, which has no braces of its own, is told with.
HEADING = re.compile(r" *(?:(?:if|else if|for|while) \(.*\)|else)\n")
# Results that their type's default equals, and one that becomes it already.
ALREADY_DEFAULT = {"{}", "true", "false", "nullptr", "0", 'L""', "std::nullopt"}


@dataclass(frozen=True)
class Token:
    kind: str
    text: str
    start: int

    @property
    def end(self):
        return self.start + len(self.text)


@dataclass(frozen=True)
class Mutant:
    """Stands for the source in which the characters from start to end are replaced."""

    file: str
    start: int
    end: int
    replacement: str
    number: int  # of the line in which it begins
    line: str
    mutated: str

    def apply(self, source):
        return source[: self.start] + self.replacement + source[self.end :]

    def __str__(self):
        return f"{self.file} | {self.line} | {self.mutated}"


def tokens_of(source):
    return [
        Token(match.lastgroup, match.group(), match.start())
        for match in TOKEN.finditer(source)
        if match.lastgroup != "skip"
    ]


def one_line(text):
    return " ".join(text.split())


def other_text(literal):
    quote = literal.index('"')
    return f"{literal[: quote + 1]}~{literal[quote + 1 :]}"


def other_number(literal):
    digits = literal.rstrip("uUlL")
    value = int(digits.replace("'", ""), 16 if digits[:2] in ("0x", "0X") else 10)
    return f"{value + 1}{literal[len(digits):]}"


def closing(tokens, opening):
    """The index of the bracket that closes the one at an index."""
    depth = 0
    for index in range(opening, len(tokens)):
        depth += {"(": 1, ")": -1}.get(tokens[index].text, 0)
        if depth == 0:
            return index
    raise ValueError("a bracket isn't closed")


def token_changes(source, tokens):
    """What a token becomes, as (start, end, replacement)."""
    for index, token in enumerate(tokens):
        spaced = source[token.start - 1] == " " and source[token.end : token.end + 1] in (" ", "\n")
        replacement = None
        if token.kind == "text" and tokens[index - 1].text != "extern":
            replacement = other_text(token.text)
        elif token.kind == "character":
            replacement = "L'~'" if token.text[0] == "L" else "'~'"
        elif token.kind == "number":
            replacement = other_number(token.text)
        elif token.kind == "word":
            replacement = WORDS.get(token.text)
        elif token.text in ("++", "--"):
            replacement = "--" if token.text == "++" else "++"
        elif token.text == "!":
            replacement = ""
        elif spaced:
            replacement = BETWEEN_SPACES.get(token.text)
        if replacement is not None and replacement != token.text:
            yield token.start, token.end, replacement


def condition_changes(source, tokens):
    """Each condition turned round that declares nothing."""
    for index, token in enumerate(tokens[:-1]):
        if token.text in ("if", "while") and tokens[index + 1].text == "(":
            end = closing(tokens, index + 1)
            inner = {inner.text for inner in tokens[index + 2 : end]}
            if not inner & {"=", ";"}:
                start, stop = tokens[index + 1].end, tokens[end].start
                yield start, stop, f"!({source[start:stop]})"


def statement_changes(source, tokens):
    """Each statement within a function dropped, and each result replaced by its type's default."""
    begins = True
    for index, token in enumerate(tokens):
        indented = source[source.rfind("\n", 0, token.start) + 1 : token.start].strip() == ""
        if begins and indented and source[token.start - 1] == " " and token.text not in "{};:":
            end, depth = index, 0
            while end < len(tokens) and not (tokens[end].text == ";" and depth == 0):
                depth += {"(": 1, ")": -1, "{": 1, "}": -1}.get(tokens[end].text, 0)
                if depth < 0:
                    break
                end += 1
            if end < len(tokens) and tokens[end].text == ";" and depth == 0:
                if token.text == "return" and end - index > 1:
                    if source[tokens[index + 1].start : tokens[end].start] not in ALREADY_DEFAULT:
                        yield tokens[index + 1].start, tokens[end].start, "{}"
                elif token.text not in NOT_DROPPED:
                    yield token.start, tokens[end].start, ""
        begins = token.text in (";", "{", "}", ")", "else", ":")


def mutants_of(file, source):
    """All mutants of a source, in the order in which they stand in it."""
    tokens = tokens_of(source)
    lines = [0] + [match.end() for match in re.finditer("\n", source)]
    changes = {
        *token_changes(source, tokens),
        *condition_changes(source, tokens),
        *statement_changes(source, tokens),
    }
    made = []
    for start, end, replacement in sorted(changes):
        number = bisect.bisect_right(lines, start)
        last = bisect.bisect_right(lines, end) - 1
        line_end = lines[last + 1] if last + 1 < len(lines) else len(source)
        first = number - 1
        while first > 0 and HEADING.fullmatch(source, lines[first - 1], lines[first]):
            first -= 1
        before = source[lines[first] : line_end]
        offset = lines[first]
        after = before[: start - offset] + replacement + before[end - offset :]
        if "static_assert" in before:
            continue
        made.append(
            Mutant(file, start, end, replacement, number, one_line(before), one_line(after))
        )
    return made
