#!/usr/bin/python3
"""Writes Quillmere's help from what the build says of the functions: html/, the static site, Quillmere4.chm, which
Excel opens at a function's help id, and Quillmere4.intellisense.xml, the argument help while typing. The pictures of
families come from the sample workbooks.

The same sources give the same bytes, wherever and whenever. With the packages fp-utils and python3-openpyxl.
"""
import argparse
import pathlib
import sys

sys.dont_write_bytecode = True  # before what stands beside this script

from chm_file import write_chm
from function_pages import Help
from html_site import write_site
from intellisense import write_intellisense
from page_bodies import TOUR, Bodies
from sheet_picture import pictures

CHM = "Quillmere4.chm"


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--functions", type=pathlib.Path, required=True, help="Quillmere4_functions.json of the build")
    parser.add_argument("--samples", type=pathlib.Path, required=True, help="the folder of sample workbooks")
    parser.add_argument("--out", type=pathlib.Path, required=True, help="the folder that is written to")
    asked = parser.parse_args()
    book = Help(asked.functions)
    drawn = {family.name: pictures(asked.samples, family.name, {function.name for function in family.functions})
             for family in book.families}
    bodies = Bodies(book, drawn | {TOUR: pictures(asked.samples, TOUR, set())})
    asked.out.mkdir(parents=True, exist_ok=True)
    write_site(asked.out / "html", book, bodies)
    write_intellisense(asked.out / "Quillmere4.intellisense.xml", book.functions, CHM)
    write_chm(asked.out / CHM, book, bodies)


if __name__ == "__main__":
    main()
