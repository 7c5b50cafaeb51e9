#!/usr/bin/python3
"""Holds the companion against its definitions: how it is packed, and what its functions give in LibreOffice.

    companion_test.py QuillmereVba.xlam

Every case runs twice, in rows and, on a sheet with rows and columns exchanged, in columns.
"""
import csv
import pathlib
import re
import struct
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True
ROOT = pathlib.Path(__file__).parents[2]
sys.path += [str(ROOT / "companion"), str(ROOT / "tests/office"), str(ROOT / "tests/run")]

import uno

from closing import close
from session import desktop_of_office, open_book
from vba_project import compressed, encrypted

MODULE = "QuillmereWorkbook"
VALUE = "Error 2015"  # how LibreOffice shows what CVErr makes of xlErrValue


def table(name):
    """A table of companion_cases.h, as pairs of texts in its order."""
    written = (pathlib.Path(__file__).parent / "companion_cases.h").read_text()
    lines = re.search(rf'{name} = R"\((.*?)\n\)";', written, re.S)[1].strip()
    return [tuple(map(str.strip, case.split(" -> "))) for case in re.split(r" \| |\n", lines)]


CELLS = {place: float(content) if content.isdigit() else content for place, content in table("kCompanionCells")}
HIDDEN = [int(line) for line, _ in table("kCompanionHidden")]
GAPS = {}
for asked, result in table("kCompanionCases"):
    GAPS.setdefault(asked.split()[0], {})[asked.split()[1]] = result
# Texts on the sheet that EVAL looks at, and what it gives as LibreOffice evaluates: references alone.
TEXTS = {"A1": "=B1", "A2": " =B1", "A3": "B1:B2", "A4": "B1,B2", "A5": "=1+", "A6": " = ", "B1": "found", "B2": "too",
         "C1": 2.5, "C3": "=" + " " * 254 + "B1", "C4": "=" + " " * 253 + "B1"}
EVALUATED = {"A1": "found", "A2": "found", "A3": "found", "A4": VALUE, "A5": VALUE, "A6": VALUE, "C1": "2.5",
             "C3": VALUE, "C4": "found", "D1": VALUE, "A1:A2": VALUE}


def decompressed(data):
    """MS-OVBA 2.4.1.3, by the letter."""
    result, at = bytearray(), 1
    while at < len(data):
        header, = struct.unpack_from("<H", data, at)
        start, end, at = len(result), at + (header & 0xFFF) + 3, at + 2
        while at < end:
            flags, at = data[at], at + 1
            for bit in range(8):
                if at < end and flags >> bit & 1:
                    token, = struct.unpack_from("<H", data, at)
                    wide = max(4, (len(result) - start - 1).bit_length())
                    for _ in range((token & 0xFFFF >> wide) + 3):
                        result.append(result[-(token >> 16 - wide) - 1])
                    at += 2
                elif at < end:
                    result.append(data[at])
                    at += 1
    return bytes(result)


def packing(xlam, source):
    """The examples that the format's description publishes; long texts; the add-in made again elsewhere."""
    project = "{917DED54-440B-4FD1-A5C1-74ACF261E600}"
    yield "CMG", encrypted(bytes(4), 0x07, project), "0705D8E3D8EDDBF1DBF1DBF1DBF1"
    yield "DPB", encrypted(bytes(1), 0x0E, project), "0E0CD1ECDFF4E7F5E7F5E7"
    yield "GC", encrypted(b"\xff", 0x15, project), "1517CAF1D6F9D7F9D706"
    yield "no copies", compressed(b"abcdefghijklmnopqrstuv.").hex(), \
        "0119b000616263646566676800696a6b6c6d6e6f70007172737475762e"
    yield "one copy", compressed(b"a" * 73).hex(), "0103b002614500"
    for text in (source.encode(), bytes(9000), bytes(at * at % 251 for at in range(4096))):
        yield "decompressed", decompressed(compressed(text)), text
    yield "smaller", len(compressed(source.encode())) < len(source) / 2, True
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run([sys.executable, ROOT / "companion/make_xlam.py", folder], check=True)
        yield "made again", (pathlib.Path(folder) / "QuillmereVba.xlam").read_bytes() == xlam.read_bytes(), True


def exchanged(reference):
    """Rows for columns: B9 is I2, 1:2 is A:B."""
    def one(match):
        letters, digits = match.groups()
        column = 0
        for letter in letters:
            column = 26 * column + ord(letter) - 64
        return (column_letters(int(digits)) if digits else "") + (str(column) if letters else "")
    return re.sub(r"([A-Z]*)(\d*)", one, reference)


def column_letters(number):
    return column_letters((number - 1) // 26) + chr(65 + (number - 1) % 26) if number else ""


class Book:
    """The companion as LibreOffice has loaded it, with sheets put in; formulas are asked on the companion's own."""

    def __init__(self, book):
        self.book, self.modules = book, book.BasicLibraries.getByName("QuillmereCompanion")

    def add_sheet(self, name, cells):
        self.book.Sheets.insertNewByName(name, 0)
        sheet = self.book.Sheets.getByName(name)
        for place, content in cells.items():
            cell = sheet.getCellRangeByName(place)
            if str(content).startswith("{"):
                cell.setArrayFormula(content[1:-1])
            elif name == "texts" and isinstance(content, str):
                cell.String = content
            else:
                cell.Formula = content
        return sheet

    def add_weather(self):
        """Daily records of four years, of which a filter shows the days of rain."""
        rows = list(csv.reader((ROOT / "samples/data/seattle-weather.csv").open()))
        block = self.add_sheet("weather", {}).getCellRangeByPosition(1, 2, len(rows[0]), len(rows) + 1)
        block.setDataArray(tuple(map(tuple, rows)))
        rain = block.createFilterDescriptor(True)
        rain.ContainsHeader = True
        equal = uno.Enum("com.sun.star.sheet.FilterOperator", "EQUAL")
        rain.setFilterFields((uno.createUnoStruct("com.sun.star.sheet.TableFilterField", 0, len(rows[0]) - 1, equal,
                                                  False, 0.0, "rain"),))
        block.filter(rain)
        return len(rows), max(at for at, row in enumerate(rows, 1) if row[-1] == "rain")

    def ask(self, function, sheet, reference):
        """As a cell of the book gets it; several areas, which its formulas do not hand over, from a macro."""
        formula = f"={function}vba({f'${sheet}.' if sheet else ''}{reference})"
        if "," in reference:
            asking = f'Asked = {function}vba(ThisWorkbook.Sheets("{sheet}").Range("{reference}"))'
            self.put_module("Asking", f"Option VBASupport 1\nFunction Asked() As Variant\n{asking}\nEnd Function\n")
            formula = "=Asked()"
        cell = self.book.Sheets.getByName("Sheet1").getCellByPosition(0, 0)
        cell.Formula = formula
        # 1 is com.sun.star.sheet.FormulaResult.VALUE, of truth values too.
        return f"{cell.Value:g}" if cell.FormulaResultType2 == 1 else cell.String

    def put_module(self, name, source):
        if self.modules.hasByName(name):
            self.modules.removeByName(name)
        self.modules.insertByName(name, source)


def answers(book):
    """What the functions give, and what they should."""
    gaps = book.add_sheet("gaps", CELLS)
    across = book.add_sheet("across", {exchanged(place): content for place, content in CELLS.items()})
    for line in HIDDEN:
        gaps.Rows.getByIndex(line - 1).IsVisible = across.Columns.getByIndex(line - 1).IsVisible = False
    gaps.getCellRangeByName("D2:D5").merge(True)
    across.getCellRangeByName("B4:E4").merge(True)
    book.add_sheet("empty", {})
    for function, cases in GAPS.items():
        in_columns = function.replace("ROWS", "COLS")
        for reference, expected in cases.items():
            mirrored = exchanged(reference)
            yield f"{function} {reference}", book.ask(function, "gaps", reference), str(expected)
            yield f"{in_columns} {mirrored}", book.ask(in_columns, "across", mirrored), str(expected)
        for empty in dict.fromkeys((function, in_columns)):
            yield f"{empty}, empty sheet", book.ask(empty, "empty", "A1:Z9"), "0"
            yield f"{empty}, no reference", book.ask(empty, None, "3"), VALUE
    days, last_rain = book.add_weather()
    for function, reference, expected in [
            ("COUNTROWS", "B:G", days + 2), ("COUNTROWS", "B3", days), ("COUNTCONTIGROWS", "B3", last_rain),
            ("COUNTCONTIGROWS", "B1", 0), ("COUNTCONTIGCOLS", "B5:G9", 6), ("COUNTCONTIGCOLS", "A5", 0),
            ("COUNTCOLS", "4:4", 7), ("COUNTUSEDROWS", "A3", days)]:
        yield f"weather, {function} {reference}", book.ask(function, "weather", reference), str(expected)

    # LibreOffice has no Value2, and knows no caller: the texts are looked at from their own sheet.
    source = book.modules.getByName(MODULE)
    yield "EVAL uses Value2", source.count(".Value2"), 1
    book.put_module(MODULE, source.replace(".Value2", ".Value"))
    book.add_sheet("texts", TEXTS)
    for _ in range(20):  # nothing is left under way by evaluations that fail
        book.ask("EVAL", "texts", "A5")
    for reference, expected in EVALUATED.items():
        yield f"EVAL {reference}", book.ask("EVAL", "texts", reference), expected


def main():
    xlam = pathlib.Path(sys.argv[1]).resolve()
    source = (ROOT / "companion" / f"{MODULE}.bas").read_text()
    cases = list(packing(xlam, source))
    with desktop_of_office([("Common/Security/Scripting", "MacroSecurityLevel", 0)]) as desktop:
        book = Book(open_book(desktop, xlam.as_uri(), MacroExecutionMode=4, FilterName="Calc MS Excel 2007 VBA XML"))
        loaded = book.modules.getByName(MODULE).split("\n", 2)[2].rstrip()  # two lines that LibreOffice puts before it
        cases.append(("the loaded source", loaded, source.split("\n", 1)[1].rstrip()))
        cases += answers(book)
        book.book.close(True)
    close(cases)


if __name__ == "__main__":
    main()
