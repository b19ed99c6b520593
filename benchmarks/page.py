"""Writes what was measured into the documents: a table, a plot, and what the README says of them."""
import datetime
import math
import pathlib
import platform
import re
import subprocess

ROOT = pathlib.Path(__file__).resolve().parents[1]
README = ROOT / "README.md"
PAGE = ROOT / "docs/performance.md"
PLOT = PAGE.with_suffix(".svg")
BEGIN, END = "<!-- measured: written by scripts/bench.sh --write -->\n", "<!-- end of what was measured -->\n"

# The lines of the plot: their names, their benchmarks, and the class of their colours.
LINES = (("load", "load/engine", "engine"), ("LoadFile of its parser", "load/parser", "bare"),
         ("walk", "walk", "walk"))


def described_machine():
    """Model and system, and nothing that names this one."""
    cpus = pathlib.Path("/proc/cpuinfo")
    if not cpus.exists():
        return f"{platform.processor()}; {platform.system()} {platform.version()}"
    model = re.search(r"model name\s*: (.*)", cpus.read_text()).group(1)
    wine = subprocess.run(["wine", "--version"], capture_output=True, text=True).stdout.split()[0]
    kernel = platform.release().split("-")[0]
    return f"{model}, one processor of it; Linux {kernel}, {wine.replace('wine-', 'Wine ')}"


def write(headings, lines, machine, sizes):
    """Puts what was measured where the pages have it."""
    table = "\n".join("| " + " | ".join(cells) + " |" for cells in
                      (headings, ["---"] + ["---:"] * (len(headings) - 2) + ["---"], *lines))
    replace(PAGE, f"Measured on {datetime.date.today().isoformat()}: {described_machine()}. Each time is the "
                  f"median of {machine.repetitions}.\n\n{table}\n")
    longer, later = asked_figures(machine.medians)
    replace(README, f"Installing 2,000 small files takes {longer:.2f} times as long as the calls for it alone, and a "
                    f"host starts {later:.0f} ms later\nfor the engine; [docs/performance.md](docs/performance.md) "
                    "has all figures.\n")
    PLOT.write_text(plot(machine.medians, sizes), encoding="utf-8")


def replace(page, text):
    """The text comes between the two marks of a page."""
    before, rest = page.read_text(encoding="utf-8").split(BEGIN)
    page.write_text(f"{before}{BEGIN}\n{text}\n{END}{rest.split(END)[1]}", encoding="utf-8")


def asked_figures(medians):
    """What a user asks: how much longer an installation takes, and how many milliseconds later it begins."""
    return (medians["install/engine/2000/2048"] / medians["install/bare/2000/2048"],
            max(0, medians["start/engine"] - medians["start/bare"]) * 1000)


WIDTH, HEIGHT = 720, 360
LEFT, RIGHT, TOP, BOTTOM = 56, 500, 56, 312

STYLE = """
text { font: 14px sans-serif; fill: #24292f }
.title { font-weight: bold }
.ground { fill: #ffffff }
.grid { stroke: #d0d7de }
polyline { fill: none; stroke-width: 2.5 }
.engine { stroke: #0969da } circle.engine { fill: #0969da }
.bare { stroke: #8c4a00; stroke-dasharray: 7 4 } circle.bare { fill: #8c4a00 }
.walk { stroke: #1a7f37 } circle.walk { fill: #1a7f37 }
@media (prefers-color-scheme: dark) {
text { fill: #e6edf3 }
.ground { fill: #0d1117 }
.grid { stroke: #30363d }
.engine { stroke: #58a6ff } circle.engine { fill: #58a6ff }
.bare { stroke: #e3a14d } circle.bare { fill: #e3a14d }
.walk { stroke: #56d364 } circle.walk { fill: #56d364 }
}
"""


def plot(medians, sizes):
    """Microseconds for each element against the elements of the script, whose numbers grow tenfold."""
    points = {name: [(size, medians[f"{name}/{size}"] * 1e6) for size in sizes] for _, name, _ in LINES}
    top = nice_ceiling(max(cost for line in points.values() for _, cost in line))

    def x(size):
        return LEFT + 24 + (RIGHT - LEFT - 48) * math.log(size / sizes[0]) / math.log(sizes[-1] / sizes[0])

    def y(cost):
        return BOTTOM - (BOTTOM - TOP) * cost / top

    def text(left, upper, words, anchor="middle", kind=""):
        return f'<text x="{left:.0f}" y="{upper:.0f}" text-anchor="{anchor}"{kind}>{words}</text>'

    parts = [f'<rect class="ground" width="{WIDTH}" height="{HEIGHT}" rx="6"/>',
             text(LEFT, 28, "Microseconds for each element of a script", "start", ' class="title"')]
    for step in range(5):
        cost = top * step / 4
        parts.append(f'<line class="grid" x1="{LEFT}" x2="{RIGHT}" y1="{y(cost):.1f}" y2="{y(cost):.1f}"/>')
        parts.append(text(LEFT - 8, y(cost) + 5, f"{cost:g}", "end"))
    parts += [text(x(size), BOTTOM + 22, f"{size:,}") for size in sizes]
    parts.append(text((LEFT + RIGHT) / 2, BOTTOM + 42, "elements of the script"))
    lowest = HEIGHT
    # The names stand at the ends of the lines, from below to above, one line apart at least.
    for words, name, kind in sorted(LINES, key=lambda line: points[line[1]][-1][1]):
        line = points[name]
        path = " ".join(f"{x(size):.1f},{y(cost):.1f}" for size, cost in line)
        parts.append(f'<polyline class="{kind}" points="{path}"/>')
        parts += [f'<circle class="{kind}" cx="{x(size):.1f}" cy="{y(cost):.1f}" r="3.5"/>' for size, cost in line]
        lowest = min(y(line[-1][1]) + 5, lowest - 20)
        parts.append(text(RIGHT + 4, lowest, f"{words}, {line[-1][1]:.2f}", "start"))
    body = "\n".join(parts)
    return (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" role="img" '
            f'aria-label="Microseconds for each element of a script against its size">\n'
            f"<style>{STYLE}</style>\n{body}\n</svg>\n")


def nice_ceiling(value):
    """The next of 1, 2, 4, 6, 8 times a power of ten."""
    power = 10 ** math.floor(math.log10(value))
    return next(factor * power for factor in (1, 2, 4, 6, 8, 10) if factor * power >= value)
