#!/usr/bin/env python3
"""Writes Quillmere's companion, the add-in of macro-language functions, from the modules beside this script:
QuillmereVba.xlam, and each module as Excel's editor imports it.

    make_xlam.py FOLDER

The same sources give the same bytes, wherever and whenever.
"""
import pathlib
import sys
import zipfile

sys.dont_write_bytecode = True  # before what stands beside this script

from compound_file import compound_file
from vba_project import vba_project

TITLE = "Quillmere V4 companion"
DESCRIPTION = "Counts rows and columns, evaluates texts and finds formulas for the workbook functions of Quillmere V4"
PROJECT = "QuillmereCompanion"
PROJECT_ID = "{61D8C03D-95A2-4CB2-AC44-9A21F9CD7270}"

DECLARATION = '<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\n'
MAIN = "http://schemas.openxmlformats.org/spreadsheetml/2006/main"
PACKAGE = "http://schemas.openxmlformats.org/package/2006"
OFFICE_LINKS = "http://schemas.openxmlformats.org/officeDocument/2006/relationships"
MACRO_LINKS = "http://schemas.microsoft.com/office/2006/relationships"
SHEET_TYPES = "application/vnd.openxmlformats-officedocument.spreadsheetml"


def links(*targets):
    """A part of links: to each target, by type, as rId1, rId2 and so on."""
    lines = "".join(f'<Relationship Id="rId{place}" Type="{kind}" Target="{target}"/>'
                    for place, (kind, target) in enumerate(targets, 1))
    return f'<Relationships xmlns="{PACKAGE}/relationships">{lines}</Relationships>'


def parts():
    """The parts of the package that are XML, by name."""
    types = {"/xl/workbook.xml": "application/vnd.ms-excel.addin.macroEnabled.main+xml",
             "/xl/worksheets/sheet1.xml": f"{SHEET_TYPES}.worksheet+xml",
             "/xl/styles.xml": f"{SHEET_TYPES}.styles+xml",
             "/docProps/core.xml": "application/vnd.openxmlformats-package.core-properties+xml"}
    overrides = "".join(f'<Override PartName="{name}" ContentType="{kind}"/>' for name, kind in types.items())
    return {
        "[Content_Types].xml":
            f'<Types xmlns="{PACKAGE}/content-types">'
            '<Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/>'
            '<Default Extension="bin" ContentType="application/vnd.ms-office.vbaProject"/>'
            f'<Default Extension="xml" ContentType="application/xml"/>{overrides}</Types>',
        "_rels/.rels": links((f"{OFFICE_LINKS}/officeDocument", "xl/workbook.xml"),
                             (f"{PACKAGE}/relationships/metadata/core-properties", "docProps/core.xml")),
        # What Excel's list of add-ins shows.
        "docProps/core.xml":
            f'<cp:coreProperties xmlns:cp="{PACKAGE}/metadata/core-properties"'
            ' xmlns:dc="http://purl.org/dc/elements/1.1/">'
            f"<dc:title>{TITLE}</dc:title><dc:description>{DESCRIPTION}</dc:description></cp:coreProperties>",
        "xl/workbook.xml":
            f'<workbook xmlns="{MAIN}" xmlns:r="{OFFICE_LINKS}"><workbookPr codeName="ThisWorkbook"/>'
            '<sheets><sheet name="Sheet1" sheetId="1" r:id="rId1"/></sheets></workbook>',
        "xl/_rels/workbook.xml.rels": links((f"{OFFICE_LINKS}/worksheet", "worksheets/sheet1.xml"),
                                            (f"{OFFICE_LINKS}/styles", "styles.xml"),
                                            (f"{MACRO_LINKS}/vbaProject", "vbaProject.bin")),
        "xl/styles.xml":
            f'<styleSheet xmlns="{MAIN}"><fonts count="1"><font><sz val="11"/><name val="Calibri"/></font></fonts>'
            '<fills count="2"><fill><patternFill patternType="none"/></fill>'
            '<fill><patternFill patternType="gray125"/></fill></fills><borders count="1"><border>'
            '<left/><right/><top/><bottom/><diagonal/></border></borders>'
            '<cellStyleXfs count="1"><xf numFmtId="0" fontId="0" fillId="0" borderId="0"/></cellStyleXfs>'
            '<cellXfs count="1"><xf numFmtId="0" fontId="0" fillId="0" borderId="0" xfId="0"/></cellXfs></styleSheet>',
        "xl/worksheets/sheet1.xml":
            f'<worksheet xmlns="{MAIN}"><sheetPr codeName="Sheet1"/><sheetData/></worksheet>',
    }


def write_xlam(target, modules):
    """Writes the add-in with these modules, source by name."""
    project = compound_file(vba_project(PROJECT, PROJECT_ID, TITLE, modules))
    contents = {name: (DECLARATION + text).encode() for name, text in parts().items()} | {"xl/vbaProject.bin": project}
    with zipfile.ZipFile(target, "w") as package:
        for name, content in contents.items():
            entry = zipfile.ZipInfo(name, (1980, 1, 1, 0, 0, 0))
            entry.create_system = 0  # whatever system this is
            package.writestr(entry, content, zipfile.ZIP_STORED)  # libraries differ in how they deflate


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    folder = pathlib.Path(sys.argv[1])
    folder.mkdir(parents=True, exist_ok=True)
    modules = {}
    for path in sorted(pathlib.Path(__file__).parent.glob("*.bas")):
        modules[path.stem] = source = path.read_text(encoding="ascii").replace("\n", "\r\n")
        (folder / path.name).write_bytes(source.encode("ascii"))
    write_xlam(folder / "QuillmereVba.xlam", modules)


if __name__ == "__main__":
    main()
