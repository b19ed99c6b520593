"""Writes what is inside the SDK, with versions and licences, as an SPDX 2.3 document."""
import hashlib
import json
import pathlib
import re
import subprocess
import sys

FORMAT = "SPDX-2.3"
# The document depends on the SDK alone, so it has the same time in each build.
CREATED = "1970-01-01T00:00:00Z"


def debian(package):
    """The version of an installed package, without Debian's own additions."""
    command = ["dpkg-query", "-W", "-f", "${Version}", package]
    return re.split("[-+]", subprocess.run(command, check=True, capture_output=True, text=True).stdout)[0]


# How a file has what others have written, and which files do.
ENGINES = "STATIC_LINK", ("bin/TEMZ.dll", "bin/TEMZC.dll").__contains__
BINARIES = "STATIC_LINK", lambda name: name.endswith((".dll", ".exe"))
SITE = "CONTAINS", lambda name: name.startswith("share/doc/")

# Name, version, licence, owner.
COMPONENTS = (
    ("TinyXML", lambda: "2.6.2", "Zlib", "Lee Thomason", ENGINES),
    ("libstdc++ and libgcc", lambda: debian("gcc-mingw-w64-base"), "GPL-3.0-or-later WITH GCC-exception-3.1",
     "Free Software Foundation, Inc.", BINARIES),
    ("mingw-w64 runtime", lambda: debian("mingw-w64-x86-64-dev"), "ZPL-2.1",
     "the mingw-w64 project", BINARIES),
    ("gdtoa", lambda: debian("mingw-w64-x86-64-dev"), "SMLNJ", "Lucent Technologies", BINARIES),
    ("winpthreads", lambda: debian("mingw-w64-x86-64-dev"), "MIT AND BSD-3-Clause",
     "the mingw-w64 project", BINARIES),
    ("Material for MkDocs", lambda: debian("mkdocs-material"), "MIT", "Martin Donath", SITE),
)


def checksums(data):
    return [{"algorithm": name.upper(), "checksumValue": hashlib.new(name, data).hexdigest()}
            for name in ("sha1", "sha256")]


def package(identifier, name, version, licence, owner, **more):
    return {
        "SPDXID": identifier, "name": name, "versionInfo": version,
        "downloadLocation": "NOASSERTION", "filesAnalyzed": False,
        "licenseConcluded": licence, "licenseDeclared": licence,
        "copyrightText": f"Copyright {owner}", **more,
    }


def describe(folder, version):
    names = sorted(path.relative_to(folder).as_posix() for path in folder.rglob("*") if path.is_file())
    files = [{"SPDXID": f"SPDXRef-File-{number}", "fileName": f"./{name}",
              "checksums": checksums((folder / name).read_bytes()),
              "licenseConcluded": "NOASSERTION", "copyrightText": "NOASSERTION"}
             for number, name in enumerate(names)]
    sums = sorted(file["checksums"][0]["checksumValue"] for file in files)
    code = hashlib.sha1("".join(sums).encode()).hexdigest()

    product = package("SPDXRef-TEMZ", "TEMZ", version, "MIT", "(c) 2026 The TEMZ authors",
                      licenseInfoFromFiles=["NOASSERTION"],
                      packageVerificationCode={"packageVerificationCodeValue": code})
    product["filesAnalyzed"] = True
    packages = [product]
    relations = [("SPDXRef-DOCUMENT", "DESCRIBES", "SPDXRef-TEMZ")]
    relations += [("SPDXRef-TEMZ", "CONTAINS", file["SPDXID"]) for file in files]
    for number, (name, version_of, licence, owner, (how, has)) in enumerate(COMPONENTS):
        identifier = f"SPDXRef-Package-{number}"
        packages.append(package(identifier, name, version_of(), licence, owner))
        relations += [(file["SPDXID"], how, identifier)
                      for file, path in zip(files, names) if has(path)]
    return {
        "spdxVersion": FORMAT, "dataLicense": "CC0-1.0", "SPDXID": "SPDXRef-DOCUMENT",
        "name": f"temz-{version}-win64",
        "documentNamespace": f"https://spdx.org/spdxdocs/temz-{version}-win64-{code}",
        "creationInfo": {"created": CREATED, "creators": ["Organization: The TEMZ authors"]},
        "packages": packages, "files": files,
        "relationships": [{"spdxElementId": one, "relationshipType": how, "relatedSpdxElement": other}
                          for one, how, other in relations],
    }


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit("usage: spdx.py FOLDER VERSION")
    print(json.dumps(describe(pathlib.Path(sys.argv[1]), sys.argv[2]), indent=1, ensure_ascii=False))
