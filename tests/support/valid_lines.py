"""For tests of what temz --json writes."""
import json
import sys

import jsonschema


def valid_lines(schema_path, path):
    """The objects of a file, a line each; ends the program unless all are valid by the schema."""
    with open(schema_path, encoding="utf-8") as file:
        schema = json.load(file)
    jsonschema.Draft7Validator.check_schema(schema)
    validator = jsonschema.Draft7Validator(schema)
    with open(path, encoding="utf-8", errors="strict", newline="\n") as file:
        lines = [json.loads(line) for line in file]
    for number, line in enumerate(lines, 1):
        for error in validator.iter_errors(line):
            sys.exit(f"Line {number}: {line}: {error.message}")
    return lines
