#!/usr/bin/env python3
"""Checks the manifests for winget that a page shows: each by its schema, all against each other, and the
switches against what the page's table says that a host is given.

winget.py PAGE
"""
import json
import pathlib
import re
import sys

import yaml
from jsonschema import Draft7Validator

TYPES = ("version", "defaultLocale", "installer")


def manifests_in(page):
    """Each with the file name in front of it, and the schema that its first line names for editors."""
    shown = re.findall(r"^`([^`\n]+)`:\n\n```yaml\n# yaml-language-server: \$schema=(\S+)\n(.*?)^```$", page,
                       re.MULTILINE | re.DOTALL)
    return [(file, schema, yaml.safe_load(text)) for file, schema, text in shown]


def switches_in(page):
    """What stands in the table's second column."""
    table = re.search(r"^\| .* \| Your host is given \|.*\n((?:\|.*\n)+)", page, re.MULTILINE).group(1)
    return {switch for row in table.splitlines() for switch in re.findall(r"`(--\w+)", row.split("|")[2])}


def file_name(manifest):
    """By which winget wants to find it."""
    middle = {"version": "", "installer": ".installer",
              "defaultLocale": f".locale.{manifest.get('PackageLocale')}"}[manifest["ManifestType"]]
    return f"{manifest['PackageIdentifier']}{middle}.yaml"


def main(page):
    schema = json.loads(pathlib.Path(__file__).with_name("winget.schema.json").read_text())
    Draft7Validator.check_schema(schema)
    text = pathlib.Path(page).read_text()
    manifests = manifests_in(text)
    by_type = {manifest["ManifestType"]: manifest for _, _, manifest in manifests}
    assert tuple(by_type) == TYPES, f"The manifests are {', '.join(by_type)}"
    wrong = []
    for file, named, manifest in manifests:
        kind = manifest["ManifestType"]
        rules = {"definitions": schema["definitions"], "$ref": f"#/definitions/manifest/{kind}"}
        wrong += [f"{file}: {'/'.join(map(str, error.path))}: {error.message}"
                  for error in Draft7Validator(rules).iter_errors(manifest)]
        if file != file_name(manifest):
            wrong.append(f"{file}: it is to be named {file_name(manifest)}")
        expected = f"https://aka.ms/winget-manifest.{kind}.{manifest['ManifestVersion']}.schema.json"
        if named != expected:
            wrong.append(f"{file}: its schema is {expected}")
    for key in ("PackageIdentifier", "PackageVersion", "ManifestVersion"):
        if len({manifest[key] for manifest in by_type.values()}) > 1:
            wrong.append(f"The manifests differ in {key}")
    if by_type["version"]["DefaultLocale"] != by_type["defaultLocale"]["PackageLocale"]:
        wrong.append("The default locale isn't that of the texts")
    given = {value.split()[0] for value in by_type["installer"]["InstallerSwitches"].values()}
    if given != switches_in(text):
        wrong.append(f"A host is given {sorted(given)}, and the table says {sorted(switches_in(text))}")
    if wrong:
        print(*wrong, sep="\n", file=sys.stderr)
    return bool(wrong)


sys.exit(main(*sys.argv[1:]))
