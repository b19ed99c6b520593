"""Brings the pages that stand beside docs/ into the site, and leads links between all of them there."""
import pathlib
import re

from mkdocs.structure.files import File

ROOT = pathlib.Path(__file__).resolve().parents[2]
BESIDE = ("README.md", "CONTRIBUTING.md", "CHANGELOG.md")
# Where the site stands in the SDK, seen from there.
SDK = "../../"


def on_files(files, config):
    beside = [(name, ROOT) for name in BESIDE]
    for name, folder in [*beside, ("site.css", pathlib.Path(__file__).parent)]:
        files.append(File(name, str(folder), config["site_dir"], config["use_directory_urls"]))
    return files


def on_page_markdown(markdown, page, **_):
    folder = pathlib.PurePosixPath("." if page.file.src_path in BESIDE else "docs")

    def lead(match):
        text, target = match.groups()
        if "://" in target or target.startswith("#"):
            return match.group(0)
        path, mark, place = target.partition("#")
        parts = []
        for part in (folder / path).parts:
            parts = parts[:-1] if part == ".." else [*parts, part]
        if parts[0] == "docs":
            parts = parts[1:]
        elif "/".join(parts) not in BESIDE:
            return f'<a href="{SDK}{"/".join(parts)}">{text}</a>'
        return f"[{text}]({'/'.join(parts)}{mark}{place})"

    return re.sub(r"\[([^][]+)\]\(([^)\s]+)\)", lead, markdown)
