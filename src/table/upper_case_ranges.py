#!/usr/bin/env python3
"""Writes upper_case_ranges.inc beside this script, from UnicodeData.txt of Debian's package unicode-data.

    ./upper_case_ranges.py [UnicodeData.txt]

Runs of units whose capitals lie equally far off are one line: first and last unit, step, distance to the capital.
Left out are the units beyond the basic plane, and the two (dotless i, long s) whose capital is a plain letter: the
simple case mapping of Windows leaves them alone too.
"""
import pathlib
import sys

source = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else "/usr/share/unicode/UnicodeData.txt")
capitals = {}
for line in source.read_text(encoding="ascii").splitlines():
    fields = line.split(";")
    unit, capital = int(fields[0], 16), fields[12]
    if capital and unit <= 0xFFFF and int(capital, 16) <= 0xFFFF and not (unit > 0x7F and int(capital, 16) <= 0x7F):
        capitals[unit] = int(capital, 16)

ranges = []  # [first, last, step, distance]
for unit, capital in sorted(capitals.items()):
    distance = capital - unit
    if ranges and ranges[-1][3] == distance:
        first, last, step, _ = ranges[-1]
        gap = unit - last
        if gap == step or (first == last and gap <= 2):
            ranges[-1][1], ranges[-1][2] = unit, gap
            continue
    ranges.append([unit, unit, 1, distance])

with open(pathlib.Path(__file__).with_name("upper_case_ranges.inc"), "w", encoding="ascii") as out:
    out.write("// Written by upper_case_ranges.py: first unit, last unit, step, distance to the capital.\n// clang-format off\n")
    for first, last, step, distance in ranges:
        out.write(f"{{0x{first:04X}, 0x{last:04X}, {step}, {distance}}},\n")
    out.write("// clang-format on\n")
