"""Random formulas with the cells that they look at."""
import random
import re

BLOCK = 20  # rows that a case has for its cells
ERRORS = ["#N/A", "#DIV/0!", "#VALUE!", "#REF!", "#NAME?", "#NUM!", "#NULL!"]
# In Excel's order.
TEXTS = ["", "&", "1", "10", "5", "9", "a", "-a", "Ab", "b", "coop", "co-op", "coops", "cote", "coté", "côte", "côté",
         "e", "é", "Élan", "elbow", "Émile", "ss", "ß", "true", "zoé", "Жук", "я"]
# Those of sorted cells: an empty text cannot be read from a book.
WORDS = [text for text in TEXTS if text and "-" not in text and text not in ("ss", "ß")]
# What Excel takes these for; an empty text and words are no numbers.
TEXT_NUMBERS = {"5": 5.0, "-2.5": -2.5, "1e3": 1000.0, " 7 ": 7.0, "1,000": 1000.0, "30%": 0.3, "$5": 5.0, ".5": 0.5,
                "2002-03-23": 37338.0, "12:00": 0.5, "1/2/2003": 37623.0}
NUMBERS = [0.0, 1.0, 2.0, 3.0, 7.0, 10.0, 0.1, 0.2, 0.3, 0.5, 1.1, 1.14, 2.25, 100.0, 1e3, 12345.678, 1e-3, 1e15, 1e-15,
           1e100, 1e300, 1e-300, 999999999999999.0, 0.1 + 0.2, 1 + 14 * 0.01, 1 / 3, 1e15 + 1, 4.35, 1e20]


class Error(str):
    """An error value, by its name."""


class Raw(str):
    """A piece of a formula as it is; @A3 stands for a cell of the case."""


def kind_of(value):
    return ("boolean" if isinstance(value, bool) else "error" if isinstance(value, Error) else "text"
            if isinstance(value, str) else "empty" if value is None else "number")


def literal(value):
    """A value as formulas and scripts write it."""
    kind = kind_of(value)
    if kind == "text":
        return '"' + value.replace('"', '""') + '"'
    return {"empty": "empty", "boolean": str(value).upper(), "error": value}.get(kind) or repr(value).upper()


class Case:
    """A formula, made of values and what stands between them; `cells` has the values of its cells by their column and
    their row in the block. `search` is what a lookup looks for, where, in which order and for which answers."""

    def __init__(self, kind, parts, cells, search=None):
        self.kind, self.parts, self.cells, self.search = kind, parts, cells, search

    def formula(self, number, separator=","):
        """As the case of that number, from 0, has it."""
        base = number * BLOCK + 1
        written = (part.replace(",", separator) if isinstance(part, Raw) else literal(part) for part in self.parts)
        return "=" + re.sub(r"@([A-Z])(\d+)", lambda cell: f"{cell[1]}{base + int(cell[2])}", "".join(written))

    def placed_cells(self, number):
        """Column, row and value of its cells, as the case of that number."""
        return [(column, number * BLOCK + 1 + row, value) for (column, row), value in self.cells.items()]


class Maker:
    """Random cases, the same ones for a seed. `sort_key` is what Excel sorts cells by."""

    def __init__(self, seed, sort_key):
        self.random, self.sort_key = random.Random(seed), sort_key

    def cases(self, count):
        makers = [self.arithmetic_case, self.comparison_case, self.match_case, self.vlookup_case]
        return [makers[i % len(makers)]() for i in range(count)]

    def chance(self, percent):
        return self.random.randrange(100) < percent

    def number(self):
        number = self.random.choice(NUMBERS)
        if self.chance(30):
            number = round(self.random.uniform(-1000, 1000), self.random.randrange(6))
        if self.chance(15):
            number *= 1 + self.random.choice([-8, -1, 1, 2, 30]) * 2.0 ** -52
        return -number if number and self.chance(20) else number

    def text(self, texts):
        text = self.random.choice(texts)
        return self.random.choice([text, text.upper(), text.lower()]) if self.chance(30) and text != "ß" else text

    def operand(self, cells, texts, percent_numbers):
        value = self.number()
        if not self.chance(percent_numbers):
            value = self.random.choice([True, False, None, Error(self.random.choice(ERRORS))]
                                       + [self.text(texts) for _ in range(4)])
        kind = kind_of(value)
        # A formula writes 15 digits, and no empty operand; a book holds no empty text.
        if kind == "empty" or kind == "number" and float("%.15g" % value) != value or value != "" and self.chance(40):
            cells[("D", len(cells))] = value
            return [Raw(f"@D{len(cells) - 1}")]
        return [Raw("-"), -value] if kind == "number" and value < 0 else [value]

    def expression(self, cells, depth):
        if depth == 0 or self.chance(20):
            return self.operand(cells, list(TEXT_NUMBERS) + ["", "a"], 80)
        if self.chance(15):
            return [Raw("-"), *self.expression(cells, depth - 1)]
        if self.chance(8):
            return [Raw("("), *self.expression(cells, depth - 1), Raw(")"), Raw("%")]
        return self.operation(cells, depth)

    def operation(self, cells, depth):
        left, operator = self.expression(cells, depth - 1), Raw(self.random.choice("+-*/^"))
        parts = [*left, operator, *self.expression(cells, depth - 1)]
        return [Raw("("), *parts, Raw(")")] if self.chance(50) else parts

    def arithmetic_case(self):
        cells = {}
        return Case("arithmetic", self.operation(cells, 3), cells)

    def comparison_case(self):
        cells = {}
        percent_numbers = self.random.choice([5, 5, 50, 95])
        left, right = (self.operand(cells, TEXTS, percent_numbers) for _ in range(2))
        if percent_numbers == 95 and self.chance(30):
            right = [Raw("("), *self.operation(cells, 1), Raw(")")]
        return Case("comparison", left + [Raw(self.random.choice(["=", "<>", "<", "<=", ">", ">="]))] + right, cells)

    def search(self, orders):
        """A column, in order where it is searched by order, but for some in ascending order; and a key."""
        order = self.random.choice(orders)
        kinds = self.random.choice(["n", "n", "t", "t", "nt", "ntbe"])
        draw = {"n": self.number, "t": lambda: self.text(WORDS), "b": lambda: self.chance(50),
                "e": lambda: self.random.choice([None, Error("#N/A")])}
        column = [draw[self.random.choice(kinds)]() for _ in range(1 + self.random.randrange(12))]
        if order == -1 or order == 1 and self.chance(85):
            filled = sorted((value for value in column if value is not None), key=self.sort_key, reverse=order < 0)
            column = filled + [None] * (len(column) - len(filled))
        key = self.random.choice(column) if self.chance(60) else self.random.choice([self.number(), self.text(WORDS)])
        if order == 0 and kind_of(key) == "text" and self.chance(40):
            key = self.random.choice([key[0] + "*", "*" + key[-1], "?" + key[1:], "~" + key, "*", "?"])
        return key, column, order

    def lookup(self, kind, orders, answers_of, ending):
        key, column, order = self.search(orders)
        answers = answers_of(column)
        cells = {("A", row): value for row, value in enumerate(column)}
        cells.update({("B", row): value for row, value in enumerate(answers)} if kind == "VLOOKUP" else {})
        is_cell = kind_of(key) in ("number", "empty")
        if is_cell:
            cells[("D", 0)] = key
        parts = [Raw(kind + "("), Raw("@D0") if is_cell else key, Raw(ending(len(column) - 1, order))]
        return Case(kind, parts, cells, (key, column, order, answers))

    def match_case(self):
        return self.lookup("MATCH", [0, 0, 1, -1], lambda column: [float(place + 1) for place in range(len(column))],
                           lambda last, order: f",@A0:@A{last},{order})")

    def vlookup_case(self):
        return self.lookup("VLOOKUP", [0, 1], lambda column: [self.number() if self.chance(70) else self.text(WORDS)
                                                              for _ in column],
                           lambda last, order: f",@A0:@B{last},2,{'TRUE' if order else 'FALSE'})")
