#!/usr/bin/env python3
"""Checks what temz --json wrote: json-lines.py SCHEMA FILE EVENT...

Every line is valid by the schema, the first is the start and the last the end, every action that
began has ended, and each EVENT, such as action-end:failed or end:1603, stands there.
"""
import sys

from valid_lines import valid_lines


def main(schema_path, path, *wanted):
    lines = valid_lines(schema_path, path)

    events = [line["event"] for line in lines]
    if events.count("start") != 1 or events[0] != "start":
        sys.exit("The first line, and no other, must be the start.")
    if events.count("end") != 1 or events[-1] != "end":
        sys.exit("The last line, and no other, must be the end.")
    numbers = {event: [line["number"] for line in lines if line["event"] == event]
               for event in ("action", "action-end")}
    if numbers["action"] != numbers["action-end"]:
        sys.exit(f"Actions that began and ended: {numbers}")

    without_run = lines[-1]["exitCode"] in (1618, 1619, 1620, 1622, 1639)
    if without_run != bool(lines[-1]["reason"]):
        sys.exit(f"A run that hasn't begun, and no other, has its reason at the end: {lines[-1]}")

    details = {"action-end": "fate", "end": "exitCode", "call": "group", "failure": "systemError"}
    seen = set(events) | {f"{line['event']}:{line[details[line['event']]]}"
                          for line in lines if line["event"] in details}
    missing = set(wanted) - seen
    if missing:
        sys.exit(f"Missing: {sorted(missing)} among {sorted(seen)}")


main(*sys.argv[1:])
