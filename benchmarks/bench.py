#!/usr/bin/env python3
"""Compares the engine with its yardsticks and prints one table; scripts/bench.sh prepares all it needs.

A row measures two works by turns, several times each, and compares their medians. It is measured again
when the figures of one work lie too far apart, or when the ratio is over its bound; a bound that is
broken every time fails the whole.
"""

import argparse
import dataclasses
import json
import pathlib
import re
import statistics
import subprocess
import sys

REPETITIONS = 7
ATTEMPTS = 3
# The slowest to the fastest of the times of one work.
WIDEST_SPREAD = 1.4

SIZES = {"files": 2000, "large": 200 * 2**20, "few": 1000, "more": 10_000, "many": 100_000}
SHORT_SIZES = {"files": 40, "large": 2**20, "few": 100, "more": 200, "many": 400}


@dataclasses.dataclass
class Row:
    """Two works, by the names of their benchmarks, and the most that the first may take of the second."""

    work: str
    ours: str
    yardstick: str
    bound: float = None  # without one the ratio is only told

    def measure(self, machine):
        times = machine.times([self.ours, self.yardstick])
        return Result(times[self.ours], times[self.yardstick])


@dataclasses.dataclass
class Result:
    """What each repetition took, in seconds."""

    ours: list
    yardstick: list

    @property
    def ratio(self):
        return statistics.median(self.ours) / statistics.median(self.yardstick)

    @property
    def spread(self):
        return max(max(times) / min(times) for times in (self.ours, self.yardstick))

    @property
    def cells(self):
        return [text_of_time(statistics.median(times)) for times in (self.ours, self.yardstick)]


ROWS = [
    Row("a process that makes a context and frees it : an empty one", "start/engine", "start/bare", 1.15),
]


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

    def run(self, program, *arguments):
        command = [*self.runner, str(self.folder / program), *arguments]
        done = subprocess.run(command, cwd=self.folder, capture_output=True, stdin=subprocess.DEVNULL)
        if done.returncode != 0:
            sys.exit(f"{program} {' '.join(arguments)} has failed:\n{(done.stdout + done.stderr).decode()}")

    def times(self, names):
        """The seconds for each item of what the benchmarks of these names handle, once a repetition."""
        out = self.folder / "out.json"
        self.run("temz_bench.exe",
                 "--benchmark_filter=^(" + "|".join(map(re.escape, names)) + ")(/[a-z_]+)?$",
                 f"--benchmark_repetitions={self.repetitions}",
                 "--benchmark_enable_random_interleaving=true",
                 f"--benchmark_min_time={self.minimum}",
                 "--benchmark_out=out.json", "--benchmark_out_format=json")
        times = {name: [] for name in names}
        for run in json.loads(out.read_text())["benchmarks"]:
            if run.get("error_occurred"):
                sys.exit(f"{run['name']}: {run['error_message']}")
            if run["run_type"] == "iteration":
                name = next(name for name in names if re.match(re.escape(name) + r"(/[a-z_]+)?$", run["run_name"]))
                times[name].append(1 / run["items_per_second"])
        return times


def judged(row, machine):
    """The last result of a row, and what is said of it."""
    broken = 0
    for _ in range(1 if machine.short else ATTEMPTS):
        result = row.measure(machine)
        is_over = row.bound is not None and result.ratio > row.bound
        broken += is_over
        if not is_over and result.spread <= WIDEST_SPREAD:
            break
    if row.bound is None:
        return result, "told"
    if is_over:
        return result, "BROKEN" if broken == ATTEMPTS else "over"
    return result, "holds" if result.spread <= WIDEST_SPREAD else "holds, unsteady"


HEADINGS = ["Work", "Engine", "Yardstick", "Ratio", "Spread", "Bound", ""]


def cells_of(row, result, verdict):
    bound = "" if row.bound is None else f"≤ {row.bound:g}"
    return [row.work, *result.cells, f"{result.ratio:.2f}", f"{result.spread:.2f}", bound, verdict]


def print_line(cells):
    print(f"{cells[0]:<74}{cells[1]:>10}{cells[2]:>11}{cells[3]:>7}{cells[4]:>8}{cells[5]:>8}  {cells[6]}", flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("folder", type=pathlib.Path, help="where the programs stand")
    parser.add_argument("--runner", action="append", default=[], help="what runs a program")
    parser.add_argument("--only", default="", metavar="PATTERN")
    parser.add_argument("--short", action="store_true")
    parser.add_argument("--write", action="store_true")
    arguments = parser.parse_args()

    machine = Machine(arguments.folder, arguments.runner, arguments.short)
    rows = [row for row in ROWS if re.search(arguments.only, row.work)]
    print_line(HEADINGS)
    failed = False
    for row in rows:
        result, verdict = judged(row, machine)
        print_line(cells_of(row, result, verdict))
        failed = failed or verdict == "BROKEN"
    return 1 if failed or not rows else 0


if __name__ == "__main__":
    sys.exit(main())
