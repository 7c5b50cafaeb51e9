#!/usr/bin/python3
"""Holds the sample workbooks against their descriptions: written and calculated anew they are the same, and every formula
is stored as Excel wants it, fills the cells that it should and gives no error but where one is meant.

    samples_test.py SAMPLE_WRITER QCALC FUNCTIONS.json FOLDER
"""
import json
import pathlib
import re
import subprocess
import sys
import tomllib
import xml.etree.ElementTree as ElementTree
import zipfile

sys.dont_write_bytecode = True
ROOT = pathlib.Path(__file__).parents[2]
sys.path.append(str(ROOT / "tests/run"))

from closing import close

SPREADSHEET = "{http://schemas.openxmlformats.org/spreadsheetml/2006/main}"
NEEDS_COMPANION = re.compile(r"(COUNT(USED|CONTIG)?(ROWS|COLS)2|HASFORMULA2|EVAL2|\w+vba)$")
BROKEN = '''title = "A"
introduction = []
try = []
sources = []
[[sheet]]
name = "Data"
about = ""
widths = []
data = "missing.csv"
'''


def run(*command):
    done = subprocess.run([str(word) for word in command], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                          cwd=ROOT, timeout=120)
    return done.returncode, done.stdout


def write(writer, description, out):
    return run(writer, "--functions", "src/functions", "--data", "samples/data", description, out)


def calls(formula):
    """The names that a formula calls, with "_xll." where it stands before them."""
    return re.findall(r"[A-Za-z_][\w.]*(?=\()", re.sub(r'"[^"]*"', '""', formula))


def sheet_cells(book, number):
    """The cells of a sheet by their names; its formulas are stored in the file's own way."""
    sheet = ElementTree.fromstring(book.read(f"xl/worksheets/sheet{number}.xml"))
    return {cell.get("r"): cell for cell in sheet.iter(SPREADSHEET + "c")}


def cell_names(area):
    first, last = (re.fullmatch(r"([A-Z])(\d+)", name).groups() for name in (area.split(":") * 2)[:2])
    return {chr(column) + str(row) for column in range(ord(first[0]), ord(last[0]) + 1)
            for row in range(int(first[1]), int(last[1]) + 1)}


def formulas(described, path, functions):
    """What is stored for the results of a description, and what should be."""
    with zipfile.ZipFile(path) as book:
        for number, sheet in enumerate(described["sheet"], 2):  # the first sheet is the introduction
            cells = sheet_cells(book, number)
            errors = {name for name, cell in cells.items() if cell.get("t") == "e"}
            results = [result for example in sheet.get("example", []) for result in example["result"]]
            for result in results:
                where = f"{path.name}, {sheet['name']}!{result['fills']}"
                cell = cells[result["fills"].split(":")[0]]
                formula = cell.find(SPREADSHEET + "f")
                yield where, "=" + formula.text.replace("_xll.", ""), result["formula"]
                called = calls(formula.text)
                ours = [name for name in called if name.removeprefix("_xll.") in functions]
                yield where, [name for name in ours if not name.startswith("_xll.")], []
                yield where, [name for name in called if NEEDS_COMPANION.search(name)], []
                if ours:
                    yield where, (cell.get("cm"), formula.get("t"), formula.get("ref")), ("1", "array", result["fills"])
                has_error = bool(errors & cell_names(result["fills"]))
                yield f"{where} has an error", has_error, result.get("errors", False)
                errors -= cell_names(result["fills"])
            yield f"{path.name}, {sheet['name']}: errors elsewhere", errors, set()
        yield f"{path.name}: marks of spilling", b"XLDAPR" in book.read("xl/metadata.xml"), True


def answers(writer, qcalc, functions, folder):
    descriptions = sorted((ROOT / "samples/books").glob("*.toml"))
    yield "each workbook is described", sorted(path.stem for path in (ROOT / "samples").glob("*.xlsx")), \
        [path.stem for path in descriptions]
    for description in descriptions:
        kept, again = ROOT / "samples" / f"{description.stem}.xlsx", folder / f"{description.stem}.xlsx"
        yield f"{again.name} is written", write(writer, description.relative_to(ROOT), again), (0, "")
        yield f"{again.name} is calculated", run(qcalc, "calc", again, "-o", again)[0], 0
        yield f"{again.name} is the same again", again.read_bytes() == kept.read_bytes(), True
        yield from formulas(tomllib.loads(description.read_text()), kept, functions)
    broken = folder / "broken.toml"
    for text, told in [(BROKEN, "broken.toml:5: error: samples/data/missing.csv"),
                       (BROKEN + 'date = "x"\n', "broken.toml:10: error: unknown key 'date' in a sheet"),
                       (BROKEN.replace('"missing.csv"', ""), "broken.toml:9: error: ")]:
        broken.write_text(text)
        status, output = write(writer, broken, folder / "broken.xlsx")
        yield f"told: {told}", (status, told in output, (folder / "broken.xlsx").exists()), (1, True, False)


def main():
    writer, qcalc, pages, folder = sys.argv[1:]
    folder = pathlib.Path(folder).resolve()
    folder.mkdir(parents=True, exist_ok=True)
    functions = {page["name"] for page in json.loads(pathlib.Path(pages).read_text())["functions"]}
    close(list(answers(writer, qcalc, functions, folder)))


main()
