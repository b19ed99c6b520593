#!/usr/bin/env python3
"""Holds the documents against what is there.

documents.py links [FOLDER]    each relative link of the sources, or of what lies there, leads to a file, and to
                               a heading of it
documents.py site SDK FOLDER   the same of the site, built in the folder, as it stands in the SDK
documents.py blocks SDK FOLDER each block of code does what it is there for, in a tree made in the folder

A block that can't be run has a comment in front of it: <!-- not run: the reason -->
"""
import html.parser
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import urllib.parse
import xml.etree.ElementTree
from dataclasses import dataclass

ROOT = pathlib.Path(__file__).resolve().parents[2]
PAGES = ("README.md", "CONTRIBUTING.md", "CHANGELOG.md", "docs/*.md", "bindings/*/README.md", "deploy/*/README.md",
         "packaging/*/README.md")

# Blocks that another test carries out: their page, how they begin with their fence, and the test.
RUN_ELSEWHERE = (
    ("README.md", "```cmake", "tests/sdk/newcomer.sh"),
    ("README.md", "```sh", "tests/sdk/newcomer.sh"),
    ("deploy/ansible/README.md", "```yaml", "tests/deploy/codes.py"),
    ("docs/deploy.md", "```yaml", "tests/deploy/codes.py"),
    ("docs/deploy.md", "```yaml", "tests/deploy/winget.py"),
    ("docs/host-guide.md", "x86_64-w64-mingw32-", "tests/sdk/host-guide.sh"),
    ("docs/how-to.md", "```xml", "tests/host/HowToTest.cpp"),
    ("bindings/csharp/README.md", "```csharp", "bindings/csharp/test.sh"),
    ("bindings/csharp/README.md", "```sh", "tests/sdk/newcomer.sh"),
    ("bindings/go/README.md", "```go", "tests/sdk/newcomer.sh"),
    ("bindings/go/README.md", "```sh", "tests/sdk/newcomer.sh"),
    ("bindings/rust/README.md", "```rust", "tests/sdk/newcomer.sh"),
    ("bindings/rust/README.md", "```sh", "tests/sdk/newcomer.sh"),
    ("bindings/rust/README.md", "```toml", "tests/sdk/newcomer.sh"),
    ("packaging/nuget/README.md", "```c", "tests/sdk/nuget.sh"),
    ("packaging/nuget/README.md", "```sh", "tests/sdk/nuget.sh"),
)

failures = []


def fail(place, what):
    failures.append(f"{place}: {what}")


def pages(root=ROOT):
    found = sorted({path for pattern in PAGES for path in root.glob(pattern)})
    return [(path.relative_to(root).as_posix(), path.read_text(encoding="utf-8")) for path in found]


@dataclass
class Block:
    place: str
    language: str
    text: str
    reason: str


def split(name, markdown):
    """A page's blocks of code, and its other lines with their numbers."""
    blocks, prose = [], []
    open_block, fenced, reason, before = None, False, None, ""
    for number, line in enumerate(markdown.split("\n"), 1):
        if fenced and line == "```":
            open_block, fenced = None, False
        elif fenced:
            open_block.text += line + "\n"
        elif line.startswith("    ") and (open_block or not before):
            if not open_block:
                open_block = Block(f"{name}:{number}", "", "", reason)
                blocks.append(open_block)
            open_block.text += line[4:] + "\n"
            reason = None
        elif open_block and not line:
            open_block.text += "\n"
        elif line.startswith("```"):
            open_block, fenced = Block(f"{name}:{number}", line[3:], "", reason), True
            blocks.append(open_block)
            reason = None
        elif mark := re.fullmatch(r"<!-- not run: (.+) -->", line):
            open_block, reason = None, mark.group(1)
        elif line:
            if reason:
                fail(f"{name}:{number}", "A block stands right behind the mark that it isn't run.")
            open_block, reason = None, None
            prose.append((number, line))
        before = line
    if fenced or reason:
        fail(name, "The last block has no end, or the last mark no block.")
    return blocks, prose


def anchors(prose):
    """What a link may name of a page, by the rule that shows Markdown as pages do."""
    found = set()
    for _, line in prose:
        if heading := re.match(r"#+ (.*)", line):
            text = re.sub(r"[^\w\- ]", "", heading.group(1).lower()).replace(" ", "-")
            copies = sum(1 for one in found if re.fullmatch(re.escape(text) + r"(-\d+)?", one))
            found.add(f"{text}-{copies}" if copies else text)
    return found


def check_links(root=ROOT):
    split_pages = {name: split(name, markdown) for name, markdown in pages(root)}
    headings = {name: anchors(prose) for name, (_, prose) in split_pages.items()}
    count = 0
    for name, (_, prose) in split_pages.items():
        # A link's text may go on in the next line, its target doesn't.
        for number, line in prose:
            for target in re.findall(r"\]\(([^)\s]+)\)", re.sub(r"`[^`]*`", "", line)):
                path, _, anchor = target.partition("#")
                if "://" in path:
                    continue
                count += 1
                file = os.path.normpath(os.path.join(os.path.dirname(name), path)) if path else name
                if not (root / file).exists():
                    fail(f"{name}:{number}", f"There is no {file}.")
                elif anchor and anchor not in headings.get(file, ()):
                    fail(f"{name}:{number}", f"{file} has no heading #{anchor}.")
    return f"{count} links"


class Page(html.parser.HTMLParser):
    """What a page of the site refers to, what of that it loads, and the places in it."""

    def __init__(self, path):
        super().__init__()
        self.references, self.loaded, self.ids = [], [], set()
        self.settings = None
        self.feed(path.read_text(encoding="utf-8"))

    def handle_starttag(self, tag, attributes):
        attributes = dict(attributes)
        self.ids |= {attributes[key] for key in ("id", "name") if attributes.get(key)}
        for key in ("href", "src", "data", "action", "poster", "srcset"):
            if attributes.get(key):
                (self.references if tag == "a" else self.loaded).append(attributes[key])
        if attributes.get("id") == "__config":
            self.settings = ""

    def handle_data(self, data):
        if self.settings == "":
            self.settings = data
            self.loaded.append(json.loads(data)["search"])


def check_site(sdk, site):
    subprocess.run([ROOT / "scripts/docs.sh", site], check=True,
                   env={**os.environ, "PYTHONDONTWRITEBYTECODE": "1"})
    place = sdk / "share/doc"
    read = {path: Page(path) for path in sorted(site.rglob("*.html"))}
    loads = {path: page.loaded for path, page in read.items()}
    for sheet in site.rglob("*.css"):
        text = sheet.read_text(encoding="utf-8")
        loads[sheet] = re.findall(r"url\([\"']?([^)\"']+)", text) + re.findall(r"@import\s+[\"']([^\"']+)", text)

    def check(path, reference, loaded):
        parts = urllib.parse.urlsplit(reference)
        if parts.scheme == "data" or parts.scheme and not loaded:
            return
        if parts.scheme or parts.netloc:
            fail(path.relative_to(site), f"{reference} is loaded from a network.")
            return
        target = path
        if parts.path:
            target = pathlib.Path(os.path.normpath(path.parent / urllib.parse.unquote(parts.path)))
        if not target.is_relative_to(site):
            target = pathlib.Path(os.path.normpath(place / os.path.relpath(target, site)))
        if not target.exists():
            fail(path.relative_to(site), f"{reference} leads nowhere.")
        elif parts.fragment and target in read and parts.fragment not in read[target].ids:
            fail(path.relative_to(site), f"{reference} names no place of the page.")

    for path, references in loads.items():
        for reference in references:
            check(path, reference, loaded=True)
    for path, page in read.items():
        for reference in page.references:
            check(path, reference, loaded=False)
        if not page.settings:
            fail(path.relative_to(site), "The page has no search.")
    return f"{len(read)} pages"


class Tree:
    """What a reader has before him: the sources' scripts, a machine, and the SDK as dist."""

    def __init__(self, sdk, folder):
        self.sdk, self.folder = sdk, folder
        self.machine = folder / "build/wine/slot0"
        self.environment = {**os.environ, "PKG_CONFIG_PATH": str(sdk / "lib/pkgconfig"), "TEMZ_WINE_SLOTS": "1",
                            "TEMZ_WINE_HOME": str(folder / "build/wine")}
        shutil.rmtree(folder, ignore_errors=True)
        self.machine.parent.mkdir(parents=True)
        (folder / "scripts").mkdir()
        for script in ("common.sh", "wine-run.sh"):
            shutil.copy(ROOT / "scripts" / script, folder / "scripts")
        # What these would lay out is there.
        for script in ("setup.sh", "build.sh"):
            (folder / "scripts" / script).symlink_to("/bin/true")

    def __enter__(self):
        # The first program on a machine makes it, from this.
        self.of_prefix("make_prefix", self.machine.with_name("template"), os.environ)
        self.lay_out()
        if failure := self.run_temz('temz new --name "My Product" --payload payload --out install.xml'):
            sys.exit(failure)
        self.previous = self.folder / "build/previous"
        shutil.move(self.folder / "dist/bin", self.previous)
        return self

    def __exit__(self, *_):
        self.throw_machine_away()
        shutil.rmtree(self.machine.parent)

    def of_prefix(self, command, prefix, environment):
        subprocess.run(["bash", "-c", f'. "$1"; {command} "$2"', "bash", ROOT / "scripts/common.sh", prefix],
                       check=True, env=environment)

    def throw_machine_away(self):
        if self.machine.exists():
            self.of_prefix("stop_prefix", self.machine, self.environment)
            shutil.rmtree(self.machine)

    def lay_out(self):
        shutil.rmtree(self.folder / "dist", ignore_errors=True)
        shutil.copytree(self.sdk / "bin", self.folder / "dist/bin")
        payload = self.folder / "dist/bin/payload"
        shutil.copytree(self.sdk / "examples/how-to", payload / "scripts")
        shutil.copy(self.sdk / "examples/product/v1/payload/greeter-service.exe", payload / "my product.exe")

    def turn_page(self):
        """Each page begins on a new machine, with what it tells a reader to have."""
        self.throw_machine_away()
        self.lay_out()
        shutil.copytree(self.previous, self.folder / "dist/1.0")
        for file in ("examples/c/main.c", "examples/minimal/main.cpp", "host/SafeStart.cpp", "host/SafeStart.h",
                     "share/temz/install.xsd", "examples/product/v2/install.xml"):
            shutil.copy(self.sdk / file, self.folder)
        (self.folder / "hello.txt").write_text("Hello")

    def run(self, *command, folder="."):
        told = subprocess.run(command, cwd=self.folder / folder, env=self.environment, text=True,
                              errors="replace", stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT)
        return "" if told.returncode == 0 else f"It ends with {told.returncode}.\n{told.stdout}"

    def run_sh(self, text):
        return self.run("bash", "-euxc", text)

    def run_temz(self, text):
        """Command lines for Windows, one after the other, in the folder of temz.exe."""
        (self.folder / "dist/bin/commands.bat").write_text(
            "".join(f"{line}\nif errorlevel 1 exit /b 1\n" for line in text.splitlines()))
        return self.run(self.folder / "scripts/wine-run.sh", "cmd", "/c", "commands.bat", folder="dist/bin")

    def run_xml(self, text):
        """A script is written, and checked; a part of one can at least be read."""
        is_script = text.startswith(("<?", "<Script"))
        try:
            xml.etree.ElementTree.fromstring(text if is_script else f"<Part>{text}</Part>")
        except xml.etree.ElementTree.ParseError as error:
            return f"It can't be read: {error}"
        if not is_script:
            return ""
        (self.folder / "mine.xml").write_text(text, encoding="utf-8")
        return self.run_temz(r"temz check ..\..\mine.xml")

    def run_c(self, text):
        (self.folder / "shown.c").write_text(text)
        return self.run("x86_64-w64-mingw32-gcc", "-std=c11", "-Wall", "-Wextra", "-Werror", "-shared", "shown.c",
                        f"-I{self.sdk}/include", "-o", "shown.dll")

    def run_cmake(self, text):
        beginning = "cmake_minimum_required(VERSION 3.16)\nproject(shown)\n"
        (self.folder / "CMakeLists.txt").write_text(beginning + text)
        return self.run_sh(f"cmake -G Ninja -D CMAKE_TOOLCHAIN_FILE='{ROOT}/cmake/mingw-w64.cmake' "
                           f"-D TEMZ_DIR='{self.sdk}/lib/cmake/TEMZ' -B build/cmake && cmake --build build/cmake")


def kind(block):
    """The language of a block, which for one without a fence shows in its first word."""
    if block.language:
        return block.language
    if block.text.startswith("<"):
        return "xml"
    return "temz" if block.text.startswith("temz ") else "sh"


def check_blocks(sdk, folder):
    unused = set(RUN_ELSEWHERE)
    counts = {}
    with Tree(sdk, folder) as tree:
        for name, markdown in pages():
            blocks, _ = split(name, markdown)
            tree.turn_page()
            for block in blocks:
                start = f"```{block.language}" if block.language else block.text
                elsewhere = [row for row in RUN_ELSEWHERE if row[0] == name and start.startswith(row[1])]
                unused -= set(elsewhere)
                what = kind(block)
                if block.reason:
                    what = "not run"
                elif elsewhere:
                    what = "elsewhere"
                elif run := getattr(tree, f"run_{what}", None):
                    if failure := run(block.text):
                        fail(block.place, failure)
                else:
                    fail(block.place, f"No test carries {what} out. Does another do so, or why can't it be run?")
                counts[what] = counts.get(what, 0) + 1
    for row in unused:
        fail(row[0], f"There is no block that begins with {row[1]}.")
    for page, _, test in RUN_ELSEWHERE:
        if not (ROOT / test).is_file():
            fail(page, f"There is no {test}.")
    return ", ".join(f"{count} {what}" for what, count in sorted(counts.items()))


def main(what, *folders):
    check = {"links": check_links, "site": check_site, "blocks": check_blocks}[what]
    looked_at = check(*[pathlib.Path(folder).resolve() for folder in folders])
    for failure in failures:
        print(failure, file=sys.stderr)
    print(f"{looked_at}; {len(failures)} failures")
    sys.exit(1 if failures else 0)


main(*sys.argv[1:])
