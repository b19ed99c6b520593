#!/usr/bin/env python3
"""Checks what temz verify --json wrote: verify-lines.py SCHEMA FILE EXIT-CODE EVENT...

Every line is valid by the schema, the first is the start and the last the end, which tells the exit
code and counts the differences, and the EVENTs, such as difference:left, are those that stand there.
"""
import sys

from valid_lines import valid_lines


def main(schema_path, path, exit_code, *wanted):
    lines = valid_lines(schema_path, path)

    events = [line["event"] for line in lines]
    if events[0] != "start" or events[-1] != "end" or len(set(events[1:-1]) & {"start", "end"}):
        sys.exit("The first line must be the start and the last the end, and no other.")
    end = lines[-1]
    if end["exitCode"] % 256 != int(exit_code):
        sys.exit(f"The exit code is {exit_code}, and {end['exitCode']} is told.")
    if bool(end["reason"]) != (len(lines) == 2):
        sys.exit(f"A verification that hasn't begun, and no other, has its reason: {end}")
    for what in ("left", "changed", "lost"):
        if end[what] != sum(line.get("what") == what for line in lines):
            sys.exit(f"{what} is counted wrong.")
    details = {"run": "mode", "difference": "what"}
    seen = {line["event"] + (f":{line[details[line['event']]]}" if line["event"] in details else "")
            for line in lines[1:-1]}
    if seen != set(wanted):
        sys.exit(f"{sorted(seen)} in place of {sorted(wanted)}")


main(*sys.argv[1:])
