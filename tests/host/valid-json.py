#!/usr/bin/env python3
"""Checks a file of JSON by a schema: valid-json.py SCHEMA FILE [lines]

With `lines`, each line of the file is an object of its own.
"""
import json
import sys

import jsonschema


def main(schema_path, path, *lines):
    with open(schema_path, encoding="utf-8") as file:
        schema = json.load(file)
    with open(path, encoding="utf-8", errors="strict", newline="\n") as file:
        objects = [json.loads(line) for line in file] if lines else [json.load(file)]
    if not objects:
        sys.exit(f"{path} is empty.")
    validator = jsonschema.Draft7Validator(schema)
    for number, value in enumerate(objects, 1):
        for error in validator.iter_errors(value):
            sys.exit(f"{path}:{number}: {'/'.join(map(str, error.path))}: {error.message}")


main(*sys.argv[1:])
