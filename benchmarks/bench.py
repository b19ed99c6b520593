#!/usr/bin/env python3
"""Compares the engine with its yardsticks and prints one table; scripts/bench.sh prepares all it needs.

A row measures two works by turns, several times each, and compares their medians. It is measured again
when the figures of one work lie too far apart, or when the ratio is over its bound; a bound that is
broken every time fails the whole.
"""

import argparse
import dataclasses
import pathlib
import re
import shutil
import statistics
import sys

import page
from machine import Machine

ATTEMPTS = 3
# The slowest to the fastest of the times of one work.
WIDEST_SPREAD = 1.4
BROKEN = "BROKEN"

SIZES = {"files": 2000, "large": 200 * 2**20, "large_text": "200 MiB", "few": 1000, "more": 10_000, "many": 100_000,
         "conditions": 50_000, "fewVariables": 50, "manyVariables": 5000}
SHORT_SIZES = {"files": 40, "large": 2**20, "large_text": "1 MiB", "few": 100, "more": 100, "many": 1000,
               "conditions": 500, "fewVariables": 5, "manyVariables": 50}


@dataclasses.dataclass
class Result:
    """What a row has given: the figure that its bound is for, how far the times that it comes from lie
    apart, and the two works in words."""

    figure: float
    spread: float
    ours: str
    yardstick: str


@dataclasses.dataclass
class Timed:
    """Two works, by the names of their benchmarks, and the most that the first may take of the second;
    of works of different sizes, for each of the items that they handle."""

    work: str
    ours: str
    yardstick: str
    bound: float = None  # without one the ratio is only told
    tool: str = None  # that makes an installer of the payload

    def measure(self, machine):
        if self.tool:
            machine.make_installer(self.tool, *self.yardstick.split("/")[-2:])
        both = machine.times([self.ours, self.yardstick])
        medians = [statistics.median(times) for times in both]
        return Result(medians[0] / medians[1], max(max(times) / min(times) for times in both),
                      *map(text_of_time, medians))


@dataclasses.dataclass
class Grown(Timed):
    """The same work on a large and on a small document, each by the names of its benchmark and of a bare
    look at the document. The large one lies in memory where the small one lies in the processor, so
    for each item the work may take more by what the look does."""

    tree: tuple = ("", "")

    def measure(self, machine):
        all_times = machine.times([self.ours, self.yardstick, *self.tree])
        large, small, far, near = map(statistics.median, all_times)
        return Result((large - max(far - near, 0)) / small, max(max(times) / min(times) for times in all_times),
                      f"{text_of_time(large)} - {text_of_time(far)} + {text_of_time(near)}", text_of_time(small))


@dataclasses.dataclass
class Counted:
    """A figure that is the same on every machine: a test tells it, in so many parts of one."""

    work: str
    test: str
    bound: float
    parts: int = 1
    tool = None

    def measure(self, machine):
        return Result(machine.figures()[self.test] / self.parts, 1, "", "")


def of_files(work, name, bound):
    return Timed(work, f"{name}/engine/{{files}}/2048", f"{name}/bare/{{files}}/2048", bound)


def of_large(work, name, bound):
    return Timed(work, f"{name}/engine/1/{{large}}", f"{name}/bare/1/{{large}}", bound)


def of_others(payload, size):
    for name, program, tool, bound in (("NSIS", "nsis", "makensis", None), ("msiexec", "msiexec", "wixl", None),
                                       ("xcopy", "xcopy", None, 1)):
        yield Timed(f"{payload}, whole process : {name}", f"process/engine/{size}", f"process/{program}/{size}",
                    bound, tool)


ROWS = [
    of_files("install of {files:,} files of 2 KiB in 20 directories : bare calls", "install", 1.03),
    of_files("upgrade of them : bare calls", "upgrade", 1.03),
    of_files("uninstall of them, no folder for the log : bare calls with the told line", "uninstall", 1.08),
    of_files("uninstall of them, with the log : bare calls with the told line", "loggedUninstall", 1.03),
    of_large("one file of {large_text}, whole process : CopyFileW", "process", 1.05),
    of_large("one file of {large_text}, inside : CopyFileW", "install", 1.02),
    Timed("a process that makes a context and frees it : an empty one", "start/engine", "start/bare", 1.15),
    *(Timed(f"load of {{{size}:,}} elements : LoadFile of TinyXML", f"load/engine/{{{size}}}",
            f"load/parser/{{{size}}}", 1.05) for size in ("few", "more", "many")),
    Counted("peak memory of load and run, {many:,} elements, less the table : LoadFile",
            "CostTest.LoadAndRunHoldLittleMoreThanTheParser", 1.02, parts=1000),
    Counted("allocations for a visited Caution", "VisitCostTest.CautionStaysWithinItsAllocations", 6),
    Counted("allocations for a visited Condition", "VisitCostTest.ConditionStaysWithinItsAllocations", 12),
    Counted("allocations for a visited File", "VisitCostTest.FileStaysWithinItsAllocations", 15),
    Counted("allocations for a visited ComponentRef over two directory chains of 8",
            "VisitCostTest.ReferenceOverTwoChainsOfDirectoriesStaysWithinItsAllocations", 60),
    *(Grown(f"walk of {{{size}:,}} elements, time for each, less what the bare tree takes more : of {{few:,}}",
            f"walk/{{{size}}}", "walk/{few}", 1.05, tree=(f"tree/{{{size}}}", "tree/{few}"))
      for size in ("more", "many")),
    Timed("{conditions:,} Conditions over {manyVariables:,} variables : over {fewVariables}",
          "conditions/{conditions}/{manyVariables}", "conditions/{conditions}/{fewVariables}", 1.05),
    Timed("evaluation of OS_BIT E 64 AND ( ! Flag OR Count GE 3 ) : by muParser",
          "evaluation/engine", "evaluation/muparser", 0.2),
    Timed("a line of the log : open, seek, write, close", "log/engine", "log/bare", 1.05),
    Timed("a line of the log without its folder : an open that fails",
          "absentLog/engine", "absentLog/bare", 1.05),
    *of_others("{files:,} files of 2 KiB", "{files}/2048"),
    *of_others("one file of {large_text}", "1/{large}"),
]


def sized(row, sizes):
    """A row with the sizes in place of their names."""
    texts = {name: text.format(**sizes) for name, text in vars(row).items() if isinstance(text, str)}
    if isinstance(row, Grown):
        texts["tree"] = tuple(name.format(**sizes) for name in row.tree)
    return dataclasses.replace(row, **texts)


def text_of_time(seconds):
    for factor, unit in ((1, "s"), (1e3, "ms"), (1e6, "µs")):
        if seconds * factor >= 1:
            return f"{seconds * factor:.3g} {unit}"
    return f"{seconds * 1e9:.3g} ns"


def judged(row, machine):
    """The last result of a row, and what is said of it."""
    if machine.short:
        return row.measure(machine), "told"
    broken = 0
    for _ in range(ATTEMPTS):
        result = row.measure(machine)
        is_over = row.bound is not None and result.figure > row.bound
        broken += is_over
        if not is_over and result.spread <= WIDEST_SPREAD:
            break
    if row.bound is None:
        return result, "told"
    if broken == ATTEMPTS:
        return result, BROKEN
    return result, "over, unsteady" if is_over else "holds" if result.spread <= WIDEST_SPREAD else "holds, unsteady"


def can_be_measured(row, machine):
    """A short run does without the tools that make other installers."""
    return not row.tool or not machine.short and shutil.which(row.tool)


HEADINGS = ["Work", "Engine", "Yardstick", "Figure", "Spread", "Bound", "Verdict"]


def cells_of(row, result, verdict):
    bound = "" if row.bound is None else f"≤ {row.bound:g}"
    if isinstance(row, Counted):
        return [row.work, "", "", f"{result.figure:.{2 if row.parts > 1 else 0}f}", "", bound, verdict]
    return [row.work, result.ours, result.yardstick, f"{result.figure:.2f}", f"{result.spread:.2f}", bound, verdict]


def print_line(cells):
    print(f"{cells[0]:<76}{cells[1]:>10}{cells[2]:>11}{cells[3]:>7}{cells[4]:>8}{cells[5]:>8}  {cells[6]}", flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("folder", type=pathlib.Path, help="where the programs stand")
    parser.add_argument("--runner", action="append", default=[], help="what runs a program")
    parser.add_argument("--only", default="", metavar="PATTERN")
    parser.add_argument("--short", action="store_true")
    parser.add_argument("--write", action="store_true")
    arguments = parser.parse_args()

    if arguments.write and (arguments.only or arguments.short):
        parser.error("only a whole run is written")

    machine = Machine(arguments.folder, arguments.runner, arguments.short)
    sizes = SHORT_SIZES if arguments.short else SIZES
    rows = [sized(row, sizes) for row in ROWS if can_be_measured(row, machine)]
    lines = []
    print_line(HEADINGS)
    for row in rows:
        if re.search(arguments.only, row.work):
            lines.append(cells_of(row, *judged(row, machine)))
            print_line(lines[-1])
    if arguments.write:
        page.write(HEADINGS, lines, machine, [sizes[name] for name in ("few", "more", "many")])
    return 0 if lines and all(line[-1] != BROKEN for line in lines) else 1


if __name__ == "__main__":
    sys.exit(main())
