#!/usr/bin/env python3
"""Compares the engine with its yardsticks and prints one table; scripts/bench.sh prepares all it needs.

A row measures two works by turns, several times each, and compares their medians. It is measured again
when the figures of one work lie too far apart, or when the ratio is over its bound; a bound that is
broken every time fails the whole.
"""

import argparse
import dataclasses
import json
import os
import pathlib
import re
import statistics
import subprocess
import sys
import uuid

REPETITIONS = 7
ATTEMPTS = 3
# The slowest to the fastest of the times of one work.
WIDEST_SPREAD = 1.4

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
    for tool, program, bound in (("makensis", "nsis", None), ("wixl", "msiexec", None), (None, "xcopy", 1)):
        yield Timed(f"{payload}, whole process : {program}", f"process/engine/{size}",
                    f"process/{program}/{size}", bound, tool)


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
    *(Timed(f"walk of {{{size}:,}} elements, time for each : of {{few:,}}", f"walk/{{{size}}}", "walk/{few}", 1.05)
      for size in ("more", "many")),
    Timed("{conditions:,} Conditions over {manyVariables:,} variables : over {fewVariables}",
          "conditions/{conditions}/{manyVariables}", "conditions/{conditions}/{fewVariables}", 1.05),
    Timed("evaluation of OS_BIT E 64 AND ( ! Flag OR Count GE 3 ) : by muParser",
          "evaluation/engine", "evaluation/muparser", 0.2),
    Timed("a line of the log : open, seek, write, flush, close", "log/engine", "log/bare", 1.05),
    Timed("a line of the log without its folder : an open that fails",
          "absentLog/engine", "absentLog/bare", 1.05),
    *of_others("{files:,} files of 2 KiB", "{files}/2048"),
    *of_others("one file of {large_text}", "1/{large}"),
]


def sized(row, sizes):
    """A row with the sizes in place of their names."""
    texts = {name: text.format(**sizes) for name, text in vars(row).items() if isinstance(text, str)}
    return dataclasses.replace(row, **texts)


def text_of_time(seconds):
    for factor, unit in ((1, "s"), (1e3, "ms"), (1e6, "µs")):
        if seconds * factor >= 1:
            return f"{seconds * factor:.3g} {unit}"
    return f"{seconds * 1e9:.3g} ns"


class Machine:
    """The folder that the programs stand in, and how they are run and for how long."""

    def __init__(self, folder, runner, short):
        self.folder = folder
        self.runner = runner
        self.short = short
        self.repetitions = 1 if short else REPETITIONS
        self.minimum = 0.001 if short else 0.1  # seconds
        self.counted = None

    def run(self, program, *arguments):
        command = [*self.runner, str(self.folder / program), *arguments]
        environment = dict(os.environ) if self.short else {**os.environ, "TEMZ_WHOLE_SWEEPS": "1"}
        done = subprocess.run(command, cwd=self.folder, env=environment, capture_output=True,
                              stdin=subprocess.DEVNULL)
        return done.returncode, (done.stdout + done.stderr).decode(errors="replace")

    def times(self, names):
        """For each benchmark of these names the seconds for each item that it handles, once a repetition."""
        choice = "|".join(names)
        status, output = self.run(
            "temz_bench.exe", f"--benchmark_filter=^({choice})(/[a-z_]+)?$",
            f"--benchmark_repetitions={self.repetitions}", "--benchmark_enable_random_interleaving=true",
            f"--benchmark_min_time={self.minimum}", "--benchmark_out=out.json",
            "--benchmark_out_format=json")
        written = (self.folder / "out.json").read_text()
        if status != 0 or not written:
            sys.exit(f"The benchmarks {choice} have failed:\n{output}")
        runs = json.loads(written)["benchmarks"]
        for run in runs:
            if run.get("error_occurred"):
                sys.exit(f"{run['name']}: {run['error_message']}")
        return [[1 / run["items_per_second"] for run in runs
                 if run["run_type"] == "iteration" and re.fullmatch(name + "(/[a-z_]+)?", run["run_name"])]
                for name in names]

    def make_installer(self, tool, count, size):
        """Has a tool make an installer of the payload, beside it, of which nothing is compressed."""
        self.run("temz_bench.exe", "payload", count, size)
        name = f"payload-{count}-{size}"
        source, text, options = {
            "makensis": (f"{name}.nsi", nsis_script, ["-V1"]),
            "wixl": (f"{name}.wxs", wix_source, ["-a", "x64", "-o", f"{name}.msi"]),
        }[tool]
        (self.folder / source).write_text(text(self.folder / name))
        subprocess.run([tool, *options, source], cwd=self.folder, check=True)

    def figures(self):
        """What the tests have counted, by their names. They fail when it is more than they promise."""
        if self.counted is None:
            status, output = self.run("temz_allocation_tests.exe", "--gtest_filter=*CostTest.*",
                                      "--gtest_output=json:out.json")
            if status != 0:
                sys.exit(output)
            suites = json.loads((self.folder / "out.json").read_text())["testsuites"]
            self.counted = {f"{suite['name']}.{test['name']}": int(test["figure"])
                            for suite in suites for test in suite["testsuite"] if "figure" in test}
        return self.counted


def nsis_script(payload):
    return f"""Unicode true
Target amd64-unicode
OutFile "{payload.name}.exe"
InstallDir "$TEMP"
SetCompress off
RequestExecutionLevel user
Section
  SetOutPath "$INSTDIR"
  File /r "{payload.name}/*"
SectionEnd
"""


def wix_source(payload):
    directories, references = [], []
    for number, directory in enumerate(sorted(payload.iterdir())):
        files = "".join(
            f"<File Id='F{number}.{place}' Name='{file.name}' Source='{file.relative_to(payload.parent)}'/>"
            for place, file in enumerate(sorted(directory.iterdir())))
        guid = uuid.uuid5(uuid.NAMESPACE_OID, f"{payload.name}/{directory.name}")
        directories.append(f"<Directory Id='D{number}' Name='{directory.name}'>"
                           f"<Component Id='C{number}' Guid='{guid}' Win64='yes'>{files}</Component></Directory>")
        references.append(f"<ComponentRef Id='C{number}'/>")
    code = uuid.uuid5(uuid.NAMESPACE_OID, payload.name)
    return f"""<?xml version="1.0" encoding="utf-8"?>
<Wix xmlns="http://schemas.microsoft.com/wix/2006/wi">
<Product Id="{code}" UpgradeCode="{code}" Name="{payload.name}" Version="1.0.0" Manufacturer="TEMZ" Language="1033">
<Package InstallerVersion="200" Compressed="yes" InstallScope="perMachine"/>
<Media Id="1" Cabinet="payload.cab" EmbedCab="yes" CompressionLevel="none"/>
<Directory Id="TARGETDIR" Name="SourceDir"><Directory Id="ProgramFiles64Folder">
<Directory Id="INSTALLDIR" Name="{payload.name}">{"".join(directories)}</Directory></Directory></Directory>
<Feature Id="All" Level="1">{"".join(references)}</Feature>
</Product></Wix>
"""


def judged(row, machine):
    """The last result of a row, and what is said of it."""
    if row.bound is None or machine.short:
        return row.measure(machine), "told"
    broken = 0
    for _ in range(ATTEMPTS):
        result = row.measure(machine)
        is_over = result.figure > row.bound
        broken += is_over
        if not is_over and result.spread <= WIDEST_SPREAD:
            break
    if broken == ATTEMPTS:
        return result, "BROKEN"
    return result, "over once" if is_over else "holds" if result.spread <= WIDEST_SPREAD else "holds, unsteady"


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

    machine = Machine(arguments.folder, arguments.runner, arguments.short)
    sizes = SHORT_SIZES if arguments.short else SIZES
    rows = [sized(row, sizes) for row in ROWS]
    rows = [row for row in rows if re.search(arguments.only, row.work) and not (arguments.short and row.tool)]
    print_line(HEADINGS)
    failed = False
    for row in rows:
        result, verdict = judged(row, machine)
        print_line(cells_of(row, result, verdict))
        failed = failed or verdict == "BROKEN"
    return 1 if failed or not rows else 0


if __name__ == "__main__":
    sys.exit(main())
