#!/usr/bin/python3
"""Writes the list of functions by families that stands between two marks in README.md anew, from what the build says of
the functions.

    readme_list.py Quillmere4_functions.json README.md
"""
import pathlib
import sys

sys.dont_write_bytecode = True  # before what stands beside this script

from function_pages import Help

BEGIN, END = "<!-- the list of functions: written by ./dev golden -->\n", "<!-- its end -->\n"


def listed(book):
    rows = "".join(f"| {family.title} | {' '.join(f'`{function.name}`' for function in family.functions)} |\n"
                   for family in book.families)
    return f"| family | functions |\n| --- | --- |\n{rows}"


def with_list(text, book):
    """The README's text with the list of a Help between the marks."""
    begin, end = text.index(BEGIN) + len(BEGIN), text.index(END)
    return text[:begin] + listed(book) + text[end:]


def main():
    functions, readme = map(pathlib.Path, sys.argv[1:])
    text = readme.read_text(encoding="utf-8")
    readme.write_text(with_list(text, Help(functions)), encoding="utf-8")


if __name__ == "__main__":
    main()
