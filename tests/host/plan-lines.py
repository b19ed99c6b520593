#!/usr/bin/env python3
"""Checks what temz plan --json wrote: plan-lines.py SCHEMA FILE KIND...

Every line is valid by the schema, the first is the plan and the last its end, and each KIND of step,
or kind of change such as change:file-added, stands there.
"""
import sys

from valid_lines import valid_lines


def main(schema_path, path, *wanted):
    lines = valid_lines(schema_path, path)
    events = [line["event"] for line in lines]
    if events != ["plan"] + ["step"] * (len(lines) - 2) + ["end"]:
        sys.exit("A plan is its header, its steps and its end.")
    if bool(lines[-1]["reason"]) != (lines[-1]["exitCode"] not in (0, 1)):
        sys.exit(f"What can't be carried out, and nothing else, has its reason: {lines[-1]}")
    steps = lines[1:-1]
    seen = {step["kind"] for step in steps}
    seen |= {f"change:{step['change']}" for step in steps if step["kind"] == "change"}
    seen.add(f"end:{lines[-1]['exitCode']}")
    missing = set(wanted) - seen
    if missing:
        sys.exit(f"Missing: {sorted(missing)} among {sorted(seen)}")


main(*sys.argv[1:])
