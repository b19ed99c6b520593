#!/usr/bin/env python3
"""Holds what docs/deploy.md says of exit codes against the README's table of them.

codes.py FOLDER. Each section must have a table of codes, with every code of a run once, which tells
failures from what is none. The manifest there must say what its table does, and what the documents show of
a playbook stand in the one that is shipped.
"""
import pathlib
import re
import sys

# Of commands that run nothing.
NOT_OF_A_RUN = {1, 2}
# What deployment systems must tell apart.
KINDS = {0: "success", 3010: "restart", 1618: "again"}


def rows_of(text):
    """The rows of each table of codes, with the heading above it."""
    heading = ""
    tables = {}
    for line in re.sub(r"^```.*?^```$", "", text, flags=re.MULTILINE | re.DOTALL).splitlines():
        if line.startswith("#"):
            heading = line.lstrip("# ")
            inside = False
        elif line.startswith("| Code |"):
            tables[heading] = rows = []
            inside = True
        elif not line.startswith("|"):
            inside = False
        elif inside and not line.startswith("|-"):
            cells = [cell.strip() for cell in line.strip("|").split("|")]
            rows.append(([int(code) for code in re.findall(r"\d+", cells[0])], cells[1]))
    return tables


def unindented(text):
    return "\n".join(line.strip() for line in text.splitlines())


def main(folder):
    root = pathlib.Path(folder)
    readme = rows_of((root / "README.md").read_text())
    expected = sorted(code for rows in readme.values() for codes, _ in rows for code in codes
                      if code not in NOT_OF_A_RUN)
    wrong = []
    document = (root / "docs/deploy.md").read_text()
    tables = rows_of(document)
    sections = re.findall(r"^## (.*)$", document, re.MULTILINE)
    wrong += [f"{section}: no table of codes" for section in sections if section not in tables]
    for heading, rows in tables.items():
        found = sorted(code for codes, _ in rows for code in codes)
        if found != expected:
            wrong.append(f"{heading}: the codes are {found}, not {expected}")
        for codes, text in rows:
            kinds = {KINDS.get(code, "failure") for code in codes}
            if len(kinds) > 1:
                wrong.append(f"{heading}: {codes} aren't of one kind: {text}")
            # Who can't try again by itself takes another run for a failure.
            if kinds != {"again"} and ("fail" in text.lower()) != (kinds == {"failure"}):
                wrong.append(f"{heading}: {codes} are of the kind {kinds}, and it says: {text}")
    shown = {codes[0]: text for codes, text in tables["winget"] if "`" in text}
    written = {int(code): response for code, response in re.findall(
        r"InstallerReturnCode: (\d+)\n +ReturnResponse: (\w+)", document)}
    wrong += [f"winget: {code}: the manifest says {written.get(code)}, and the table {shown.get(code)}"
              for code in {*shown, *written} if f"`{written.get(code)}`" not in shown.get(code, "")]
    playbook = unindented((root / "deploy/ansible/rollout.yml").read_text())
    for page in ("docs/deploy.md", "deploy/ansible/README.md"):
        shown = re.findall(r"^```yaml\n(- name: .*?)^```$", (root / page).read_text(), re.MULTILINE | re.DOTALL)
        if not shown or not all(unindented(text) in playbook for text in shown):
            wrong.append(f"{page}: the playbook isn't deploy/ansible/rollout.yml")
    if wrong:
        print(*wrong, sep="\n", file=sys.stderr)
    return bool(wrong)


sys.exit(main(*sys.argv[1:]))
