"""LibreOffice as a calculator: cells and formulas go in, the values of the formulas come out."""
import os
import pathlib
import subprocess
import sys
import tempfile
import time

import uno

from cases import BLOCK, Error, kind_of, literal

# Texts that are numbers are taken for numbers, as Excel takes them.
SETTINGS = """<?xml version="1.0" encoding="UTF-8"?>
<oor:items xmlns:oor="http://openoffice.org/2001/registry"><item oor:path="/org.openoffice.Office.Calc/Formula/Syntax">
<prop oor:name="StringConversion"><value>3</value></prop></item></oor:items>"""


def ask_libreoffice(cases):
    """LibreOffice's result of each case. It is asked over its own interface, since what it writes has 15 digits."""
    with tempfile.TemporaryDirectory() as name:
        profile = pathlib.Path(name)
        (profile / "user").mkdir()
        (profile / "user/registrymodifications.xcu").write_text(SETTINGS)
        office = subprocess.Popen(["soffice", f"-env:UserInstallation={profile.as_uri()}", "--headless", "--norestore",
                                   f"--accept=pipe,name={profile.name};urp;"],
                                  stderr=subprocess.DEVNULL, env={**os.environ, "LC_ALL": "C.UTF-8"})
        try:
            desktop = connect(f"uno:pipe,name={profile.name};urp;StarOffice.ComponentContext")
            book = desktop.loadComponentFromURL("private:factory/scalc", "_blank", 0, ())
            book.Wildcards = book.IgnoreCase = True
            results = calculate_in(book.Sheets.getByIndex(0), cases)
            book.close(True)
            desktop.terminate()
        finally:
            office.wait(60)
    return results


def connect(address):
    local = uno.getComponentContext()
    resolver = local.ServiceManager.createInstanceWithContext("com.sun.star.bridge.UnoUrlResolver", local)
    for _ in range(600):
        try:
            context = resolver.resolve(address)
            return context.ServiceManager.createInstanceWithContext("com.sun.star.frame.Desktop", context)
        except uno.getClass("com.sun.star.connection.NoConnectException"):
            time.sleep(0.1)
    sys.exit("LibreOffice does not answer")


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
