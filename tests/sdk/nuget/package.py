#!/usr/bin/env python3
"""Looks at a package for NuGet, as it was made and as a client has installed it.

package.py parts ARCHIVE       each part has a type, and what the package refers to is there
package.py definitions FOLDER  the item definitions of the targets as properties, for who knows no such items
"""
import pathlib
import sys
import xml.etree.ElementTree as xml
import zipfile

TYPES = "{http://schemas.openxmlformats.org/package/2006/content-types}"
RELATIONSHIPS = "{http://schemas.openxmlformats.org/package/2006/relationships}"
MANIFEST = "{http://schemas.microsoft.com/packaging/2013/05/nuspec.xsd}"
PROJECT = "{http://schemas.microsoft.com/developer/msbuild/2003}"


def check_parts(archive):
    with zipfile.ZipFile(archive) as package:
        parts = set(package.namelist())
        types = xml.fromstring(package.read("[Content_Types].xml"))
        relationships = xml.fromstring(package.read("_rels/.rels"))
        metadata = xml.fromstring(package.read("temz.nuspec")).find(f"{MANIFEST}metadata")
    known = {"." + one.get("Extension") for one in types.findall(f"{TYPES}Default")}
    used = {pathlib.PurePosixPath(part.replace("/.", "/x.")).suffix for part in parts - {"[Content_Types].xml"}}
    assert used == known, (used, known)
    for one in relationships.findall(f"{RELATIONSHIPS}Relationship"):
        assert one.get("Target")[1:] in parts, one.get("Target")
    assert metadata.find(f"{MANIFEST}readme").text in parts
    name = "{}.{}.nupkg".format(*(metadata.find(MANIFEST + word).text for word in ("id", "version")))
    assert pathlib.Path(archive).name == name, name


def write_definitions(folder):
    xml.register_namespace("", PROJECT[1:-1])
    project = xml.Element(f"{PROJECT}Project", ToolsVersion="4.0")
    properties = xml.SubElement(project, f"{PROJECT}PropertyGroup")
    targets = xml.parse(pathlib.Path(folder, "temz.targets"))
    for one in targets.findall(f"{PROJECT}ItemDefinitionGroup/*/*"):
        xml.SubElement(properties, one.tag).text = one.text.replace("%(", "$(")
    xml.ElementTree(project).write(pathlib.Path(folder, "definitions.props"), encoding="utf-8")


{"parts": check_parts, "definitions": write_definitions}[sys.argv[1]](sys.argv[2])
