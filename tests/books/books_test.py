#!/usr/bin/python3
"""Holds recalculated books against LibreOffice, against single formulas, and against the books as they were.

    books_test.py QCALC BOOK_WRITER FOLDER
"""
import json
import pathlib
import re
import subprocess
import sys
import zipfile

sys.dont_write_bytecode = True
ROOT = pathlib.Path(__file__).parents[2]
sys.path += [str(ROOT / "tests/office"), str(ROOT / "tests/run")]

import uno

from closing import close
from session import desktop_of_office, open_book

DATA = ROOT / "samples/data/seattle-weather.csv"
LISTS = {"Excel": ROOT / "tests/books/excel.txt", "Addin": ROOT / "tests/books/addin.txt"}
ALWAYS = [("Calc/Formula/Load", "OOXMLRecalcMode", 0)]  # LibreOffice trusts what a book from elsewhere holds else


def formulas_of(path):
    """The formulas of a list with the row, from 1, and the size of what each fills."""
    row = 1
    for line in path.read_text().splitlines():
        if not line or line.startswith("#"):
            continue
        size, formula = re.fullmatch(r"(?:spill )?(?:(\d+x\d+) )?(.*)", line).groups()
        rows, columns = map(int, (size or "1x1").split("x"))
        yield formula, row, rows, columns
        row += rows


def values_at(cells, row, rows, columns):
    return [[cells.get(f"{'BCDEFGH'[across]}{row + down}") for across in range(columns)] for down in range(rows)]


def changed_parts(before, after):
    """The entries that differ."""
    with zipfile.ZipFile(before) as old, zipfile.ZipFile(after) as new:
        if old.namelist() != new.namelist():
            return ["the entries themselves"]
        return [name for name in old.namelist() if old.read(name) != new.read(name)]


class Calculator:
    def __init__(self, program):
        self.program = program

    def __call__(self, *arguments):
        """Status and all that it prints."""
        done = subprocess.run([self.program, *map(str, arguments)], stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              text=True, timeout=60)
        return done.returncode, done.stdout

    def differences(self, book):
        status, told = self("calc", book, "--check")
        return status, re.findall(r"^(\w+)!\w+: .*, the book has .*$", told, re.M), told

    def evaluated(self, formula):
        """What the formula gives, in rows; what is told of it, where it cannot be evaluated."""
        status, told = self("eval", "--load", f"Data={DATA}", "--format", "json", "=" + formula)
        if status != 0:
            return told
        value = json.loads(told)
        return value if isinstance(value, list) else [[value]]


def answers(qcalc, folder, written, converted):
    status, sheets, told = qcalc.differences(converted)
    yield "as LibreOffice has them", [sheet for sheet in sheets if sheet != "Addin"], [], told
    yield "told to differ", (status, "Addin" in sheets), (1, True), told

    values = folder / "values.json"
    status, told = qcalc("calc", written, "-o", values)
    yield "to JSON", status, 0, told
    cells = {sheet["name"]: sheet["cells"] for sheet in json.loads(values.read_text())["sheets"]}
    for formula, row, rows, columns in formulas_of(LISTS["Addin"]):
        if "_xll." in formula:
            alone = qcalc.evaluated(formula.replace("_xll.", ""))
            yield formula, values_at(cells["Addin"], row, rows, columns), alone, ""
    yield "what reads a spill", cells["Addin"]["B4"], "6precipitation", ""

    again = folder / "again.xlsx"
    status, told = qcalc("calc", written, "-o", again)
    yield "to a book", status, 0, told
    changed = [f"xl/worksheets/sheet{number}.xml" for number in (3, 4)]
    yield "nothing else changes", changed_parts(written, again), changed, ""
    status, sheets, told = qcalc.differences(again)
    yield "as written", (status, sheets), (0, []), told


def main():
    program, writer, folder = sys.argv[1], sys.argv[2], pathlib.Path(sys.argv[3]).resolve()
    folder.mkdir(parents=True, exist_ok=True)
    written, converted = folder / "functions.xlsx", folder / "converted.xlsx"
    subprocess.run([writer, "functions", DATA, *LISTS.values(), written], check=True)
    with desktop_of_office(ALWAYS) as desktop:
        book = open_book(desktop, written.as_uri())
        book.storeToURL(converted.as_uri(), (uno.createUnoStruct(
            "com.sun.star.beans.PropertyValue", "FilterName", 0, "Calc MS Excel 2007 XML", 0),))
        book.close(True)
    cases = list(answers(Calculator(program), folder, written, converted))
    close(cases)


main()
