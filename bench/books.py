#!/usr/bin/python3
"""How long a book of 1,000,000 cells takes, read and written back, here and in LibreOffice.

    books.py QCALC BOOK_WRITER FOLDER
"""
import pathlib
import subprocess
import sys
import time

sys.dont_write_bytecode = True
sys.path.append(str(pathlib.Path(__file__).parents[1] / "tests/office"))

import uno

from session import desktop_of_office, open_book

SHAPES = {"long": (100_000, 10), "wide": (1_000, 1_000)}


def seconds(work):
    start = time.monotonic()
    result = work()
    return time.monotonic() - start, result


def store(book, path):
    book.storeToURL(path.as_uri(), (uno.createUnoStruct(
        "com.sun.star.beans.PropertyValue", "FilterName", 0, "Calc MS Excel 2007 XML", 0),))


def main():
    qcalc, writer, folder = sys.argv[1], sys.argv[2], pathlib.Path(sys.argv[3]).resolve()
    folder.mkdir(parents=True, exist_ok=True)
    with desktop_of_office([]) as desktop:
        for shape, size in SHAPES.items():
            path, out = folder / f"{shape}.xlsx", folder / f"{shape}-out.xlsx"
            subprocess.run([writer, "cells", *map(str, size), path], check=True)
            reading, book = seconds(lambda: open_book(desktop, path.as_uri()))
            writing, _ = seconds(lambda: store(book, out))
            book.close(True)
            # qcalc's start, its reading and its calculating count.
            both, _ = seconds(lambda: subprocess.run([qcalc, "calc", path, "-o", out], check=True))
            print(f"{shape}: LibreOffice reads in {reading:.2f} s and writes in {writing:.2f} s; "
                  f"qcalc reads, calculates and writes in {both:.2f} s", flush=True)


main()
