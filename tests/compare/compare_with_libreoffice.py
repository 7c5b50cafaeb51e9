#!/usr/bin/python3
"""Holds the headless calculator against LibreOffice on random formulas.

    apt-get install --no-install-recommends libreoffice-calc-nogui python3-uno
    ./dev build native
    tests/compare/compare_with_libreoffice.py [--cases N] [--seed N] [--qcalc PROGRAM] [--show]

Arithmetic, comparisons, MATCH and VLOOKUP, a quarter of the cases each, their operands in cells or in the formula. Every
case is worked out a third time from Excel's rules (rules.py), which the host must meet in each. Where LibreOffice
differs, a reason is a rule of its own that, put in place of Excel's, gives just what LibreOffice gives; only its
searches in cells that are out of order or of several kinds, and its choice among errors, are not rebuilt. Prints the
cases by kind and the differences by reason; ends with status 1 if one is left without. Not part of the tests:
LibreOffice is large, and where the two differ, Excel is the judge.
"""
import argparse
import collections
import dataclasses
import math
import os
import pathlib
import subprocess
import sys

sys.dont_write_bytecode = True  # before what stands beside this script

from cases import Error, Maker, kind_of, literal
from libreoffice import ask_libreoffice
from rules import REASONS, Rules, result_of, sort_key

UNSORTED = "cells out of order or of several kinds are searched by ways of its own"
ANOTHER_ERROR = "of several errors another one is the result"
NOT_EXCELS, NOT_EXPLAINED = "NOT EXCEL'S RULE", "NOT EXPLAINED"


def read_literal(text):
    if text.startswith('"'):
        return text[1:-1].replace('""', '"')
    if text in ("TRUE", "FALSE"):
        return text == "TRUE"
    return Error(text) if text.startswith("#") else None if text == "empty" else float(text)


def ask_host(cases, program):
    """The host's result of each case."""
    lines = []
    for number, case in enumerate(cases):
        lines += [f"set {column}{row} = {literal(value)}" for column, row, value in case.placed_cells(number)]
        lines += ["eval " + case.formula(number), "print"]
    ran = subprocess.run([program, "run", "-"], input="\n".join(lines) + "\n", text=True, capture_output=True,
                         env={**os.environ, "LC_ALL": "C.UTF-8"}, check=False)
    results = ran.stdout.splitlines()[:-1]
    if len(results) != len(cases):
        sys.exit(f"the host gave {len(results)} results of {len(cases)}\n{ran.stderr[:2000]}")
    return [read_literal(result) for result in results]


def are_same(case, left, right):
    """Whether two results are: powers may differ in their last bits."""
    if kind_of(left) == kind_of(right) == "number" and "^" in case.parts:
        return math.isclose(left, right, rel_tol=1e-12)
    return kind_of(left) == kind_of(right) and left == right


def is_plainly_sorted(case):
    """Whether the cells are of one kind and in the order in which they are searched."""
    _, column, order, _ = case.search
    if None in column or len({kind_of(value) for value in column}) > 1:
        return False
    return column == sorted(column, key=sort_key, reverse=order < 0)


def reason_for(case, host, other):
    """Why LibreOffice's result is not the host's; None when nothing tells."""
    names = [field.name for field in dataclasses.fields(Rules)]
    for name in names:
        if are_same(case, result_of(case, Rules(**{name: True})), other):
            return REASONS[name]
    if are_same(case, result_of(case, Rules(**dict.fromkeys(names, True))), other):
        return "several of these at once"
    if case.search:
        return UNSORTED if case.search[2] != 0 and not is_plainly_sorted(case) else None
    return ANOTHER_ERROR if kind_of(host) == kind_of(other) == "error" else None


def main():
    options = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    options.add_argument("--cases", type=int, default=5000)
    options.add_argument("--seed", type=int, default=1)
    options.add_argument("--qcalc", default=pathlib.Path(__file__).resolve().parents[2] / "build/native/bin/qcalc")
    options.add_argument("--show", action="store_true", help="print every case that differs")
    chosen = options.parse_args()
    cases = Maker(chosen.seed, sort_key).cases(chosen.cases)
    host, other = ask_host(cases, chosen.qcalc), ask_libreoffice(cases)
    differences, left = collections.Counter(), 0
    for number, case in enumerate(cases):
        reason = None
        if not are_same(case, host[number], result_of(case, Rules())):
            reason = NOT_EXCELS
        elif not are_same(case, host[number], other[number]):
            reason = reason_for(case, host[number], other[number]) or NOT_EXPLAINED
        if reason is None:
            continue
        differences[case.kind, reason] += 1
        left += reason in (NOT_EXCELS, NOT_EXPLAINED)
        if chosen.show or reason in (NOT_EXCELS, NOT_EXPLAINED):
            results = [literal(result) for result in (host[number], other[number], result_of(case, Rules()))]
            cells = {column + str(row): literal(value) for column, row, value in case.placed_cells(number)}
            print("{}: {}\n  host {}, LibreOffice {}, Excel's rules {}".format(reason, case.formula(number), *results))
            print("  with", ", ".join(f"{place} {value}" for place, value in cells.items()) or "no cells")
    for kind, count in collections.Counter(case.kind for case in cases).items():
        print(f"{kind}: {count} cases, {sum(n for (k, _), n in differences.items() if k == kind)} differences")
        for (_, reason), times in sorted(item for item in differences.items() if item[0][0] == kind):
            print(f"  {times:5} {reason}")
    return 1 if left else 0


if __name__ == "__main__":
    sys.exit(main())
