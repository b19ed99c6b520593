"""Where the programs of the benchmarks stand, and how they are run."""
import json
import os
import re
import statistics
import subprocess
import sys

import installers

REPETITIONS = 11


class Machine:
    """The folder that the programs stand in, and how they are run and for how long."""

    def __init__(self, folder, runner, short):
        self.folder = folder
        self.runner = runner
        self.short = short
        self.repetitions = 1 if short else REPETITIONS
        self.minimum = 0.001 if short else 0.1  # seconds
        self.counted = None
        self.medians = {}  # of all that was timed, by the names of the benchmarks

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
        times = [[1 / run["items_per_second"] for run in runs
                  if run["run_type"] == "iteration" and re.fullmatch(name + "(/[a-z_]+)?", run["run_name"])]
                 for name in names]
        self.medians |= {name: statistics.median(of) for name, of in zip(names, times)}
        return times

    def make_installer(self, tool, count, size):
        """Has a tool make an installer of the payload, beside it, of which nothing is compressed."""
        self.run("temz_bench.exe", "payload", count, size)
        name = f"payload-{count}-{size}"
        source, text, options = {
            "makensis": (f"{name}.nsi", installers.nsis_script, ["-V1"]),
            "wixl": (f"{name}.wxs", installers.wix_source, ["-a", "x64", "-o", f"{name}.msi"]),
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
