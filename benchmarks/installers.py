"""What other programs make installers of: a folder of folders of files."""
import uuid


def nsis_script(payload):
    return f"""Unicode true
Target amd64-unicode
OutFile "{payload.name}.exe"
InstallDir "$TEMP"
SetCompress off
RequestExecutionLevel user
Section
  SetOutPath "$INSTDIR"
  File /r "{payload.name}/*"
SectionEnd
"""


def wix_source(payload):
    """One component for each file, as its makers advise."""
    def identifier(*parts):
        return uuid.uuid5(uuid.NAMESPACE_OID, "/".join(parts))

    directories, references = [], []
    for number, directory in enumerate(sorted(payload.iterdir())):
        components = []
        for place, file in enumerate(sorted(directory.iterdir())):
            components.append(f"<Component Id='C{number}.{place}' Guid='{identifier(*file.parts[-3:])}' Win64='yes'>"
                              f"<File Id='F{number}.{place}' Source='{'/'.join(file.parts[-3:])}' KeyPath='yes'/>"
                              "</Component>")
            references.append(f"<ComponentRef Id='C{number}.{place}'/>")
        directories.append(f"<Directory Id='D{number}' Name='{directory.name}'>{''.join(components)}</Directory>")
    code = identifier(payload.name)
    return f"""<?xml version="1.0" encoding="utf-8"?>
<Wix xmlns="http://schemas.microsoft.com/wix/2006/wi">
<Product Id="{code}" UpgradeCode="{code}" Name="{payload.name}" Version="1.0.0" Manufacturer="TEMZ" Language="1033">
<Package InstallerVersion="200" Compressed="yes" InstallScope="perMachine"/>
<Media Id="1" Cabinet="payload.cab" EmbedCab="yes"/>
<Directory Id="TARGETDIR" Name="SourceDir"><Directory Id="ProgramFiles64Folder">
<Directory Id="INSTALLDIR" Name="{payload.name}">{"".join(directories)}</Directory></Directory></Directory>
<Feature Id="All" Level="1">{"".join(references)}</Feature>
</Product></Wix>
"""
