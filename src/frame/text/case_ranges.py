#!/usr/bin/env python3
"""Writes upper_case_ranges.inc and lower_case_ranges.inc beside this script, from UnicodeData.txt of Debian's package
unicode-data.

    ./case_ranges.py [UnicodeData.txt]

Runs of units whose counterparts lie equally far off are one line: first and last unit, step, distance to the
counterpart. Only pairs count, a capital and a small letter that are each other's simple mapping, as in the mapping of
Windows: the Kelvin sign, whose small letter is the k of K, is left alone. So are the units beyond the basic plane.
"""
import pathlib
import sys

source = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else "/usr/share/unicode/UnicodeData.txt")
capitals = {}
small_letters = {}
for line in source.read_text(encoding="ascii").splitlines():
    fields = line.split(";")
    unit = int(fields[0], 16)
    if unit > 0xFFFF:
        continue
    for mapping, field in ((capitals, fields[12]), (small_letters, fields[13])):
        if field:
            mapping[unit] = int(field, 16)


def write_ranges(name, mapping, inverse):
    ranges = []  # [first, last, step, distance]
    for unit, counterpart in sorted(mapping.items()):
        if inverse.get(counterpart) != unit:
            continue
        distance = counterpart - unit
        if ranges and ranges[-1][3] == distance:
            first, last, step, _ = ranges[-1]
            gap = unit - last
            if gap == step or (first == last and gap <= 2):
                ranges[-1][1], ranges[-1][2] = unit, gap
                continue
        ranges.append([unit, unit, 1, distance])
    with open(pathlib.Path(__file__).with_name(name), "w", encoding="ascii") as out:
        out.write("// Written by case_ranges.py: first unit, last unit, step, distance to the counterpart.\n")
        out.write("// clang-format off\n")
        for first, last, step, distance in ranges:
            out.write(f"{{0x{first:04X}, 0x{last:04X}, {step}, {distance}}},\n")
        out.write("// clang-format on\n")


write_ranges("upper_case_ranges.inc", capitals, small_letters)
write_ranges("lower_case_ranges.inc", small_letters, capitals)
