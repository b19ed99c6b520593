"""Tells which lines and branches of the product no test has run, and what is to be said about these.

Reads what gcov says of each object of the build given as argument. Branches are those at which the
source decides; the ways on which only an exception leads are set apart, and so are lines and branches
that only run behind one. Each other line or branch that wasn't run must stand in uncovered.txt with the
reason, and each entry there must be of one that wasn't.
"""

import re
import subprocess
import sys
from collections import Counter, defaultdict
from dataclasses import dataclass, field
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
ROOMS = ["src", "trace", "capi", "author", "host"]
GCOV = "x86_64-w64-mingw32-gcov-posix"
LISTED = Path(__file__).with_name("uncovered.txt")
# As gcov counts what wasn't run, and what wasn't but only could be behind an exception.
NOT_RUN = {"#####", "$$$$$"}
ONLY_BY_EXCEPTION = {"=====", "%%%%%"}
# Here it is decided by what was thrown.
CATCH = "} catch ("
# Nothing is decided here: where a scope is left in more ways than by its end, g++ chooses behind its
# destructors on which of them it goes on.
END_OF_SCOPE = "}"

SOURCE = re.compile(r"\s*-:\s+0:Source:(.*)")
LINE = re.compile(r"\s*([^\s:]+):\s*(\d+):")
BLOCK = re.compile(r"\s*([^\s:]+):\s*(\d+)-block\s+\d+")
BRANCH = re.compile(r"branch\s+\d+ (?:taken (\d+)|never executed)(.*)")


@dataclass
class Source:
    """What was run of a source, whichever objects it is compiled into."""

    text: list
    lines: dict = field(default_factory=dict)  # number of the line -> whether it was run
    branches: dict = field(default_factory=dict)  # (number, ways, block, way) -> whether it was taken
    set_apart: set = field(default_factory=set)


@dataclass
class Block:
    number: int
    only_by_exception: bool
    ways: list = field(default_factory=list)


def keep(source, blocks):
    """Takes over the decisions of one copy of a line: that of one instance of a template, say."""
    decisions = [block for block in blocks if len(block.ways) > 1]
    # Where all else on its line has gone each way, only an exception leads to a decision never reached.
    all_else = all(all(block.ways) for block in decisions if any(block.ways))
    for index, block in enumerate(decisions):
        by_exception = block.only_by_exception or CATCH in source.text[block.number - 1]
        by_exception = by_exception or (all_else and source.lines.get(block.number) and not any(block.ways))
        for way, taken in enumerate(block.ways):
            key = (block.number, len(decisions), index, way)
            if not taken and (by_exception or source.text[block.number - 1] == END_OF_SCOPE):
                source.set_apart.add(key)
            else:
                source.branches[key] = source.branches.get(key, False) or taken


def source_of(name, sources):
    """The source of a name in a report, which may begin at the root or at the build; none where it isn't ours."""
    name = re.sub(r"^(?:\.\.?/)+", "", name)
    if name.split("/")[0] not in ROOMS:
        return None
    if name not in sources:
        lines = (ROOT / name).read_text().splitlines()
        sources[name] = Source([" ".join(line.split()) for line in lines])
    return sources[name]


def read(report, sources):
    """Reads gcov's report on one object."""
    source, blocks = None, []

    def finish():
        if source:
            keep(source, blocks)
        blocks.clear()

    for line in report.splitlines():
        if match := SOURCE.match(line):
            finish()
            source = source_of(match.group(1), sources)
        elif source is None:
            continue
        elif match := BLOCK.match(line):
            blocks.append(Block(int(match.group(2)), match.group(1) in ONLY_BY_EXCEPTION))
        elif match := LINE.match(line):
            finish()
            count, number = match.group(1).rstrip("*"), int(match.group(2))
            if count in ONLY_BY_EXCEPTION:
                source.set_apart.add((number,))
            elif count != "-":
                source.lines[number] = source.lines.get(number, False) or count not in NOT_RUN
        elif match := BRANCH.match(line):
            if blocks and "(throw)" not in match.group(2):
                blocks[-1].ways.append(int(match.group(1) or 0) > 0)
    finish()


def read_objects(build):
    sources = {}
    for room in ROOMS:
        for notes in sorted((build / room).rglob("*.gcno")):
            answer = subprocess.run(
                [GCOV, "-a", "-b", "-c", "-t", notes], cwd=build, capture_output=True, text=True
            )
            if answer.returncode != 0:
                sys.exit(answer.stderr)
            read(answer.stdout, sources)
    return sources


def not_run(sources):
    """The lines and branches that weren't run: (file, kind, text of the line) -> numbers of the lines."""
    found = defaultdict(set)
    for name, source in sources.items():
        for number, run in source.lines.items():
            if not run:
                found[name, "line", source.text[number - 1]].add(number)
        for (number, *_), taken in source.branches.items():
            # A line that wasn't run has said so of its branches.
            if not taken and source.lines.get(number, True):
                found[name, "branch", source.text[number - 1]].add(number)
    return found


def listed():
    """The entries of the list: (file, kind, text of the line) -> how many lines of that text."""
    entries = Counter()
    for line in LISTED.read_text().splitlines():
        if line and not line.startswith("#"):
            name, kind, rest = line.split(" | ", 2)
            text, _reason = rest.rsplit(" | ", 1)
            entries[name, kind, text] += 1
    return entries


def share(part, whole):
    return f"{part:6} of {whole:6} {100 * part / whole if whole else 100:6.2f} %"


def print_figures(sources):
    print(f"{'':8} {'lines':>26}   {'branches':>26}   set apart")
    for room in [*ROOMS, "all"]:
        chosen = [s for name, s in sources.items() if room in (name.split("/")[0], "all")]
        lines = [run for source in chosen for run in source.lines.values()]
        branches = [taken for source in chosen for taken in source.branches.values()]
        apart = sum(len(source.set_apart) for source in chosen)
        print(
            f"{room:8} {share(sum(lines), len(lines))}   "
            f"{share(sum(branches), len(branches))}   {apart:9}"
        )


def main():
    rooms = sys.argv[2:] or ROOMS
    sources = read_objects(Path(sys.argv[1]).resolve())
    print_figures(sources)
    found = {key: n for key, n in not_run(sources).items() if key[0].split("/")[0] in rooms}
    known = {key: n for key, n in listed().items() if key[0].split("/")[0] in rooms}
    wrong = 0
    for key in sorted(found.keys() | known.keys()):
        numbers, count = sorted(found.get(key, ())), known.get(key, 0)
        if len(numbers) != count:
            wrong += 1
            print(f"{' | '.join(key)}: {len(numbers)} not run, {numbers}, and {count} listed")
    print(f"{', '.join(rooms)}: {sum(known.values())} lines and branches are listed with their reason.")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
