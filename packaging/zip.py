"""Packs a folder into a zip archive whose bytes depend on nothing but names and contents."""
import pathlib
import sys
import zipfile

# The earliest time that the format has.
TIME = (1980, 1, 1, 0, 0, 0)
REGULAR_FILE = 0o100644 << 16


def pack(folder, archive, top):
    files = sorted(path for path in folder.rglob("*") if path.is_file())
    with zipfile.ZipFile(archive, "w") as out:
        for path in files:
            name = pathlib.PurePosixPath(top, path.relative_to(folder).as_posix())
            entry = zipfile.ZipInfo(str(name), TIME)
            entry.external_attr = REGULAR_FILE
            entry.compress_type = zipfile.ZIP_DEFLATED
            out.writestr(entry, path.read_bytes(), compresslevel=9)


if __name__ == "__main__":
    if len(sys.argv) not in (3, 4):
        sys.exit("usage: zip.py FOLDER ARCHIVE [TOP]: TOP is the folder in the archive, none for its root")
    pack(pathlib.Path(sys.argv[1]), sys.argv[2], sys.argv[3] if len(sys.argv) == 4 else "")
