"""Breaks the engine in one place at a time, and tells which of these mutants no test notices.

Each mutant's object is compiled from a copy of its source, linked in place of the engine's own into the
test programs, and run by one after the other of these until a test fails. The programs run in Wine
prefixes of this script's own, of which none has a drive that leads to the machine's files: what a broken
engine deletes is gone from there alone. A prefix in which a test has failed is made anew.
"""

import argparse
import json
import os
import random
import re
import shutil
import signal
import subprocess
import sys
import threading
import time
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass, field
from pathlib import Path

from mutants import mutants_of

ROOT = Path(__file__).resolve().parents[2]
BUILD = ROOT / "build/release"
WORK = ROOT / "build/mutants"
EQUIVALENT = Path(__file__).with_name("equivalent.txt")


@dataclass
class Program:
    """A test program, and the binary beside it or itself into which the engine's objects are linked."""

    target: str  # what is linked anew, as the build names it
    binary: Path
    tests: Path
    link: str = ""
    seconds: float = 0


PROGRAMS = [
    Program("temz_unit_tests", Path("tests/temz_unit_tests.exe"), Path("tests/temz_unit_tests.exe")),
    Program(
        "temz_allocation_tests",
        Path("tests/allocation/temz_allocation_tests.exe"),
        Path("tests/allocation/temz_allocation_tests.exe"),
    ),
    Program("TEMZ", Path("src/TEMZ.dll"), Path("tests/endtoend/temz_endtoend_tests.exe")),
]
# A mutant that takes this many times what the sound program takes hangs.
PATIENCE = 6
LEAST_PATIENCE = 60


def commands_of(target):
    answer = subprocess.run(
        ["ninja", "-C", BUILD, "-t", "commands", target], check=True, capture_output=True, text=True
    )
    return [line for line in answer.stdout.splitlines() if not line.startswith("ninja:")]


def compile_commands():
    """How each source of the engine is compiled, without what only the build itself needs of it."""
    commands = {}
    for entry in json.loads((BUILD / "compile_commands.json").read_text()):
        file = os.path.relpath(entry["file"], ROOT)
        if file.startswith("src/") and "temz_engine.dir" in entry["command"]:
            compiler, arguments = re.search(r"(\S*g\+\+\S*) (.*) -o ", entry["command"]).groups()
            commands[file] = f"{compiler} {arguments} -w -O0 -g0 -iquote {(ROOT / file).parent}"
    return commands


def object_of(file):
    return f"src/CMakeFiles/temz_engine.dir/{file.removeprefix('src/')}.obj"


def suites_beside(file):
    """The tests that bear the source's name: they run first, since they are most likely to fail."""
    source = Path(file)
    suites = set()
    for test in (ROOT / "tests" / source.parent.name).glob(f"{source.stem}*Test.cpp"):
        suites |= set(re.findall(r"^(?:TYPED_)?TEST(?:_[FP])?\((\w+),", test.read_text(), re.MULTILINE))
    return sorted(suites)


class Machine:
    """A Wine prefix of its own, with the test programs on its drive C:."""

    def __init__(self, number):
        self.folder = WORK / f"machine{number}"
        self.home = self.folder / "wine"
        self.prefix = self.home / "slot0"
        self.environment = {
            **os.environ, "TEMZ_WINE_HOME": str(self.home), "TEMZ_WINE_SLOTS": "1",
            "WINEPREFIX": str(self.prefix),
        }  # fmt: skip
        self.home.mkdir(parents=True, exist_ok=True)
        template = self.home / "template"
        if not template.exists():
            template.symlink_to(WORK / "template")
        self.renew()

    def renew(self):
        self.stop()
        shutil.rmtree(self.prefix, ignore_errors=True)
        subprocess.run(["cp", "-a", "--reflink=auto", WORK / "template", self.prefix], check=True)
        for program in PROGRAMS:
            self.install(program, BUILD / program.binary)

    def stop(self):
        if self.prefix.exists():
            subprocess.run(["wineserver", "-k"], env=self.environment, capture_output=True)
            subprocess.run(["wineserver", "-w"], env=self.environment, capture_output=True)

    def place_of(self, program):
        return self.prefix / "drive_c/tests" / program.target

    def install(self, program, binary):
        """Puts a binary, and what it needs beside itself, in its place."""
        place = self.place_of(program)
        if not place.exists():
            place.mkdir(parents=True)
            for neighbour in (BUILD / program.tests).parent.iterdir():
                if neighbour.suffix in (".dll", ".exe"):
                    shutil.copy(neighbour, place)
        shutil.copy(binary, place / program.binary.name)

    def run(self, program, patience, suites=()):
        """What the first test that fails says, or nothing."""
        place = self.place_of(program)
        command = [ROOT / "scripts/wine-run.sh", place / program.tests.name]
        command += ["--gtest_brief=1", "--gtest_fail_fast"]
        if suites:
            command.append("--gtest_filter=" + ":".join(f"{s}.*:*/{s}.*" for s in suites))
        process = subprocess.Popen(
            command, cwd=place, env=self.environment, stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, start_new_session=True,
        )  # fmt: skip
        try:
            output, _ = process.communicate(timeout=patience)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            self.stop()
            process.communicate()
            return f"{program.target} hangs"
        if process.returncode == 0:
            return ""
        failed = re.search(rb"\[  FAILED  \] (\S+?),? ", output)
        return failed.group(1).decode() if failed else f"{program.target} ends with {process.returncode}"


@dataclass
class Outcome:
    mutant: object
    killer: str
    seconds: float


@dataclass
class Hunt:
    """Takes mutants from a list until enough of them have been tried."""

    mutants: list
    count: int
    compile: dict
    outcomes: list = field(default_factory=list)
    taken: int = 0
    tried: int = 0
    lock: threading.Lock = field(default_factory=threading.Lock)

    def next(self):
        with self.lock:
            if self.tried == self.count or self.taken == len(self.mutants):
                return None
            self.taken += 1
            self.tried += 1
            return self.mutants[self.taken - 1]

    def work(self, number):
        machine = Machine(number)
        try:
            while mutant := self.next():
                begin = time.monotonic()
                killer = self.killer_of(mutant, machine)
                with self.lock:
                    if killer is None:  # it doesn't compile: another takes its turn
                        self.tried -= 1
                        continue
                    outcome = Outcome(mutant, killer, time.monotonic() - begin)
                    self.outcomes.append(outcome)
                    print(
                        f"{len(self.outcomes):4} {outcome.seconds:5.1f} s  "
                        f"{mutant.file}:{mutant.number}  {killer or 'SURVIVES: ' + mutant.mutated}",
                        flush=True,
                    )
        finally:
            machine.stop()

    def killer_of(self, mutant, machine):
        """The test that notices the mutant; nothing where none does, and None where none can."""
        source = machine.folder / Path(mutant.file).name
        source.write_text(mutant.apply((ROOT / mutant.file).read_text()))
        object_file = source.with_suffix(".obj")
        compiled = subprocess.run(
            f"{self.compile[mutant.file]} -o {object_file} -c {source}", shell=True, cwd=BUILD,
            capture_output=True,
        )  # fmt: skip
        if compiled.returncode != 0:
            return None
        killer = ""
        for program in PROGRAMS:
            binary = machine.folder / program.binary.name
            link = program.link.replace(object_of(mutant.file), str(object_file))
            link = link.replace(f"-o {program.binary} ", f"-o {binary} ")
            if subprocess.run(link, shell=True, cwd=BUILD, capture_output=True).returncode != 0:
                return None
            machine.install(program, binary)
            patience = max(LEAST_PATIENCE, PATIENCE * program.seconds)
            beside = suites_beside(mutant.file) if program is PROGRAMS[0] else ()
            if beside:
                killer = machine.run(program, patience, beside)
            killer = killer or machine.run(program, patience)
            if killer:
                machine.renew()
                return killer
            machine.install(program, BUILD / program.binary)
        return killer


def prepare():
    """The template of all prefixes, and how each program is linked and how long it takes."""
    template = WORK / "template"
    if not (template / "ready").exists():
        shutil.rmtree(template, ignore_errors=True)
        WORK.mkdir(parents=True, exist_ok=True)
        subprocess.run(["cp", "-a", ROOT / "build/wine/template", template], check=True)
        (template / "dosdevices/z:").unlink()
    for program in PROGRAMS:
        link = commands_of(program.target)[-1]
        # What a build does after linking, and the library of imports, stay away.
        program.link = re.sub(r" && .*$", "", link.removeprefix(": && "))
        program.link = re.sub(r"-Wl,--out-implib,\S+", "", program.link)
    machine = Machine(0)
    for program in PROGRAMS:
        begin = time.monotonic()
        if failure := machine.run(program, 1200):
            sys.exit(f"The sound engine fails a test: {failure}")
        program.seconds = time.monotonic() - begin
        print(f"{program.tests.name}: {program.seconds:.1f} s without a mutant", flush=True)
    machine.stop()


def equivalents(mutants):
    """The mutants that are known to behave like the engine, with the reason of each."""
    names = {str(mutant) for mutant in mutants}
    known = {}
    for line in EQUIVALENT.read_text().splitlines():
        if line and not line.startswith("#"):
            name, reason = line.rsplit(" | ", 1)
            if name not in names:
                sys.exit(f"{EQUIVALENT.name}: nothing becomes this: {name}")
            known[name] = reason
    return known


def main():
    parser = argparse.ArgumentParser(prog="scripts/mutate.sh", description=__doc__)
    parser.add_argument("count", nargs="?", type=int, default=500, help="how many mutants (500)")
    parser.add_argument("seed", nargs="?", type=int, default=1, help="which of them are taken (1)")
    parser.add_argument("--file", default="", help="only sources whose path contains this")
    parser.add_argument("--jobs", type=int, default=os.cpu_count(), help="how many at once")
    parser.add_argument("--list", action="store_true", help="only tell which are taken")
    arguments = parser.parse_args()

    commands = compile_commands()
    mutants = [
        mutant for file in sorted(commands) for mutant in mutants_of(file, (ROOT / file).read_text())
    ]
    known = equivalents(mutants)
    mutants = [mutant for mutant in mutants if arguments.file in mutant.file]
    random.Random(arguments.seed).shuffle(mutants)
    if arguments.list:
        print("\n".join(f"{mutant.number:4} {mutant}" for mutant in mutants[: arguments.count]))
        return 0

    prepare()
    hunt = Hunt(mutants, arguments.count, commands)
    with ThreadPoolExecutor(arguments.jobs) as pool:
        for worker in [pool.submit(hunt.work, number) for number in range(arguments.jobs)]:
            worker.result()

    survivors = [outcome.mutant for outcome in hunt.outcomes if not outcome.killer]
    equivalent = [mutant for mutant in survivors if str(mutant) in known]
    wrong = [o for o in hunt.outcomes if o.killer and str(o.mutant) in known]
    print(
        f"{len(hunt.outcomes)} mutants of {len(mutants)}, {hunt.taken - len(hunt.outcomes)} didn't compile: "
        f"{len(hunt.outcomes) - len(survivors)} killed, {len(survivors)} survive, "
        f"{len(equivalent)} of these are known to be equivalent."
    )
    for outcome in wrong:
        print(f"isn't equivalent, says {outcome.killer}: {outcome.mutant}")
    for mutant in survivors:
        if mutant not in equivalent:
            print(f"survives at line {mutant.number}: {mutant}")
    return 1 if wrong or len(survivors) > len(equivalent) else 0


if __name__ == "__main__":
    sys.exit(main())
