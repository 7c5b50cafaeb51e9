#!/usr/bin/python3
"""Puts together what a user installs: the files in a folder, the same as a zip, and what the setup program is made of.

    make_package.py --library BIN --companion FOLDER --help-pages FOLDER --samples FOLDER --out OUT

Writes OUT/Quillmere4-<version>.zip, its files to OUT/files, and OUT/files.nsh, which quillmere.nsi includes. BIN has
Quillmere4.xll, and beside it Quillmere4_functions.json, which says the version. SOURCE_DATE_EPOCH, in seconds since
1970, is the time of all files; the same input gives the same bytes.
"""
import argparse
import json
import os
import pathlib
import re
import shutil
import time
import zipfile

OWN = pathlib.Path(__file__).parent
DOCS = pathlib.Path("/usr/share/doc")
EARLIEST = 315532800  # 1980, before which a zip has no times


def boost_licence():
    """The licence of Boost alone: the package's file goes through every other file of Boost as well."""
    text = (DOCS / "libboost1.81-dev/copyright").read_text(encoding="utf-8")
    licence = re.search(r"^License: BSL-1\.0\n( Boost Software License - .*?)\n(?=\S|\n\S)", text, re.M | re.S)[1]
    return re.sub(r"^ \.?", "", licence, flags=re.M) + "\n"


def licences():
    """The licences of what is linked into the add-in, by file name, as Debian's packages have them."""
    return {
        "Boost.txt": boost_licence(),
        "GCC.txt": (DOCS / "gcc-mingw-w64-base/copyright").read_text(encoding="utf-8"),
        "GPL-3.txt": pathlib.Path("/usr/share/common-licenses/GPL-3").read_text(encoding="utf-8"),
        "MinGW-w64.txt": (DOCS / "mingw-w64-x86-64-dev/copyright").read_text(encoding="utf-8"),
        "Licences.txt": (OWN / "Licences.txt").read_text(encoding="utf-8"),
    }


def contents(library, companion, help_pages, samples):
    """What is in the package: of each file's name there what it holds, in the order of the names."""
    files = {"Quillmere4.xll": library / "Quillmere4.xll",
             "Quillmere4.chm": help_pages / "Quillmere4.chm",
             "Quillmere4.intellisense.xml": help_pages / "Quillmere4.intellisense.xml",
             "QuillmereVba.xlam": companion / "QuillmereVba.xlam",
             "companion/QuillmereWorkbook.bas": companion / "QuillmereWorkbook.bas"}
    files |= {f"samples/{path.name}": path for path in samples.glob("*.xlsx")}
    html = help_pages / "html"
    files |= {f"help/{path.relative_to(html).as_posix()}": path for path in html.rglob("*") if path.is_file()}
    held = {name: path.read_bytes() for name, path in files.items()}
    if "help/index.html" not in held:
        raise SystemExit(f"{html} has no index.html, which the Start menu leads to")
    # Written here with plain line ends, and read in Windows' own editor.
    texts = {name: (OWN / name).read_text(encoding="utf-8") for name in ("Install.txt", "companion/Import.txt")}
    texts |= {f"licences/{name}": text for name, text in licences().items()}
    held |= {name: text.replace("\n", "\r\n").encode() for name, text in texts.items()}
    strange = [name for name in held if not re.fullmatch(r"[A-Za-z0-9_.,/+-]+", name)]
    if strange:
        raise SystemExit(f"names that the setup program would have to quote: {strange}")
    return dict(sorted(held.items()))


def write_zip(target, held, seconds):
    with zipfile.ZipFile(target, "w") as package:
        for name, content in held.items():
            entry = zipfile.ZipInfo(name, time.gmtime(seconds)[:6])
            entry.create_system = 0  # whatever system this is
            package.writestr(entry, content, zipfile.ZIP_DEFLATED, 9)


def write_files(folder, held, seconds):
    shutil.rmtree(folder, ignore_errors=True)
    for name, content in held.items():
        path = folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)
        os.utime(path, (seconds, seconds))


def setup_lists(folder, held, version):
    """What the setup program is told: the version, the size in kilobytes, which files it installs and removes."""
    parents = sorted({str(parent) for name in held for parent in pathlib.PurePosixPath(name).parents})
    installing, removing = [], []
    for parent in parents:
        target = str(pathlib.PureWindowsPath("$INSTDIR", parent))
        names = [name for name in held if str(pathlib.PurePosixPath(name).parent) == parent]
        installing += [f'SetOutPath "{target}"'] + [f'File "{folder.resolve() / name}"' for name in names]
        removing = [f'Delete "{target}\\{pathlib.PurePath(name).name}"' for name in names] + \
            [f'RMDir "{target}"'] * (parent != ".") + removing
    return "\n".join([f"!define VERSION {version}", f"!define SIZE {sum(map(len, held.values())) // 1024}",
                      "!macro InstallFiles", *installing, "!macroend",
                      "!macro RemoveFiles", *removing, "!macroend"]) + "\n"


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    for name in ("library", "companion", "help-pages", "samples", "out"):
        parser.add_argument(f"--{name}", type=pathlib.Path, required=True)
    given = parser.parse_args()
    held = contents(given.library, given.companion, given.help_pages, given.samples)
    version = json.loads((given.library / "Quillmere4_functions.json").read_text(encoding="utf-8"))["version"]
    seconds = max(int(os.environ.get("SOURCE_DATE_EPOCH", EARLIEST)), EARLIEST)
    given.out.mkdir(parents=True, exist_ok=True)
    write_zip(given.out / f"Quillmere4-{version}.zip", held, seconds)
    write_files(given.out / "files", held, seconds)
    (given.out / "files.nsh").write_text(setup_lists(given.out / "files", held, version), encoding="utf-8")


if __name__ == "__main__":
    main()
