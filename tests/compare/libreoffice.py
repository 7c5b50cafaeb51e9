"""LibreOffice as a calculator: cells and formulas go in, the values of the formulas come out."""
import pathlib
import sys

sys.path.append(str(pathlib.Path(__file__).parents[1] / "office"))

from cases import BLOCK, Error, kind_of, literal
from session import desktop_of_office, open_book

# Texts that are numbers are taken for numbers, as Excel takes them.
SETTINGS = [("Calc/Formula/Syntax", "StringConversion", 3)]


def ask_libreoffice(cases):
    """LibreOffice's result of each case. It is asked over its own interface, since what it writes has 15 digits."""
    with desktop_of_office(SETTINGS) as desktop:
        book = open_book(desktop, "private:factory/scalc")
        book.Wildcards = book.IgnoreCase = True
        results = calculate_in(book.Sheets.getByIndex(0), cases)
        book.close(True)
    return results


def calculate_in(sheet, cases):
    """The cells of the cases go to the columns A to E, the formulas to F."""
    data = [[""] * 5 for _ in range(len(cases) * BLOCK)]
    placed = [(ord(column) - ord("A"), row - 1, value) for number, case in enumerate(cases)
              for column, row, value in case.placed_cells(number)]
    for column, row, value in placed:
        data[row][column] = value if kind_of(value) in ("number", "text") else ""
    sheet.getCellRangeByPosition(0, 0, 4, len(data) - 1).setDataArray(tuple(map(tuple, data)))
    for column, row, value in placed:
        if kind_of(value) in ("boolean", "error"):
            sheet.getCellByPosition(column, row).Formula = "=" + literal(value)
    formulas = sheet.getCellRangeByPosition(5, 0, 5, len(cases) - 1)
    formulas.setFormulaArray(tuple((case.formula(number, ";"),) for number, case in enumerate(cases)))
    return [read_result(formulas.getCellByPosition(0, number), case.kind) for number, case in enumerate(cases)]


def read_result(cell, kind):
    if cell.getError() != 0:
        return Error(cell.String)
    if cell.FormulaResultType2 == 1:  # com.sun.star.sheet.FormulaResult.VALUE, of booleans too
        return bool(cell.Value) if kind == "comparison" else cell.Value
    return cell.String
