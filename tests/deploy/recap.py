#!/usr/bin/env python3
"""Compares what Ansible tells of machines with what they hold.

recap.py RESULT FLEET HOLDER, where the standard input has a line for each machine: its name, its recap,
which is "unasked" when its batch had no turn, the content of its files, the value in its registry, and
what its failure says.
"""
import json
import pathlib
import re
import sys

FILES = ("first.txt", "tool.exe", "late.exe")


def recap_of(machine, stats, results):
    if machine not in stats:
        return "unasked"
    result = results[machine]
    counted = stats[machine]
    told = "failed" if result.get("failed") else "changed" if result["changed"] else "ok"
    recap = "failed" if counted["failures"] else "changed" if counted["changed"] else "ok"
    if told != recap:
        return f"{told}, and {recap} in the recap"
    return "restart" if result["restart_needed"] and told == "changed" else told


def content_of(path, holder):
    if path.is_symlink():
        return "full"
    if not path.exists():
        return "absent"
    data = path.read_bytes()
    return "holder" if data == holder else data.decode().split()[-1]


def value_of(prefix):
    """The value of the product from the registry's file, which has a text without an end as bytes."""
    section = re.search(r"^\[Software\\\\Fleet\].*?(?=^\[|\Z)", (prefix / "system.reg").read_text("latin-1"),
                        re.MULTILINE | re.DOTALL)
    value = section and re.search(r'^"Version"=(?:"(.*)"|hex\(1\):(.*))$', section.group(), re.MULTILINE)
    if not value:
        return "absent"
    return value[1] or bytes.fromhex(value[2].replace(",", "")).decode("utf-16-le")


def main(result_file, fleet, holder_file):
    told = json.loads(pathlib.Path(result_file).read_text())
    results = {machine: result for play in told["plays"] for task in play["tasks"]
               for machine, result in task["hosts"].items() if result.get("action") == "temz_run"}
    holder = pathlib.Path(holder_file).read_bytes()
    wrong = 0
    for line in sys.stdin:
        machine, *expected, message = (*line.rstrip("\n").split(None, 6), "")[:7]
        prefix = pathlib.Path(fleet) / machine
        found = [recap_of(machine, told["stats"], results),
                 *(content_of(prefix / "drive_c/Fleet" / name, holder) for name in FILES),
                 "?" if expected[-1] == "?" else value_of(prefix)]
        text = results.get(machine, {}).get("msg", "")
        if found != expected or message not in text:
            wrong = 1
            print(f"{machine}: {' '.join(found)}: {text}\n  and not {line}", file=sys.stderr)
    missing = set(results) ^ set(told["stats"])
    if missing:
        print(f"not asked: {missing}", file=sys.stderr)
    return wrong or bool(missing)


sys.exit(main(*sys.argv[1:]))
