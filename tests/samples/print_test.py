#!/usr/bin/python3
"""Opens the sample workbooks in LibreOffice and prints them: every heading is there, and no column is too narrow.

    print_test.py FOLDER

LibreOffice calculates array formulas when it opens a workbook, and knows none of the add-in's functions. So what is looked
at is a copy without formulas, beside the workbook as it is, which only has to open. What was printed stays in FOLDER.
"""
import pathlib
import re
import subprocess
import sys
import tempfile
import tomllib
import zipfile

sys.dont_write_bytecode = True
ROOT = pathlib.Path(__file__).parents[2]
sys.path.append(str(ROOT / "tests/run"))

from closing import close


def values_alone(book, out):
    with zipfile.ZipFile(book) as old, zipfile.ZipFile(out, "w", zipfile.ZIP_DEFLATED) as new:
        for name in old.namelist():
            content = old.read(name)
            if name.startswith("xl/worksheets/sheet"):
                content = re.sub(rb"<f( [^>]*)?(/>|>[^<]*</f>)", b"", content)
            new.writestr(name, content)


def printed(folder, books):
    """The workbooks as PDF in the folder; what LibreOffice says."""
    folder.mkdir(parents=True, exist_ok=True)
    with tempfile.TemporaryDirectory() as profile:
        done = subprocess.run(["soffice", f"-env:UserInstallation=file://{profile}", "--headless", "--convert-to", "pdf",
                               "--outdir", folder, *books], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                              timeout=500)
    return done.stdout


def words_of(pdf):
    return " ".join(subprocess.run(["pdftotext", "-layout", pdf, "-"], capture_output=True, text=True).stdout.split())


def answers(folder):
    books = sorted((ROOT / "samples").glob("*.xlsx"))
    copies = [folder / "copies" / book.name for book in books]
    (folder / "copies").mkdir(parents=True, exist_ok=True)
    for book, copy in zip(books, copies):
        values_alone(book, copy)
    told = printed(folder / "opened", books) + printed(folder, copies)
    for book in books:
        yield f"{book.name} opens", (folder / "opened" / f"{book.stem}.pdf").exists(), True, told
        words = words_of(folder / f"{book.stem}.pdf")
        described = tomllib.loads((ROOT / f"samples/books/{book.stem}.toml").read_text())
        headings = [described["title"]] + [example["heading"] for sheet in described["sheet"]
                                           for example in sheet.get("example", [])]
        yield f"{book.name} shows", [text for text in headings if text not in words], [], told
        yield f"{book.name} has no unknown name and no cell too narrow", re.findall(r"#NAME\?|###+", words.replace(
            "Without it Excel shows #NAME?", "")), [], told


def main():
    close(list(answers(pathlib.Path(sys.argv[1]).resolve())))


main()
