"""What Excel's rules give for a case, worked out once more; and what those would give that LibreOffice has instead."""
import dataclasses
import math
import re

from cases import TEXT_NUMBERS, TEXTS, Error, Raw, kind_of


@dataclasses.dataclass(frozen=True)
class Rules:
    """Where LibreOffice differs, each with what it does. Without any of them the rules are Excel's."""

    booleans: bool = False
    hyphens: bool = False
    close_numbers: bool = False
    powers: bool = False
    sums: bool = False
    empty_keys: bool = False
    error_keys: bool = False
    shown_texts: bool = False
    descending: bool = False
    subnormals: bool = False


REASONS = {
    "booleans": "booleans are numbers",
    "hyphens": "hyphens are marks like others in the order of texts",
    "close_numbers": "numbers within 2^-48 of each other are equal, in lookups too",
    "powers": "0^0 is 1; 0^-1 and powers that are too small are #NUM!; almost odd roots of negative numbers exist",
    "sums": "what is left of two numbers within 2^-48 of each other is 0",
    "empty_keys": "an empty key is not 0",
    "error_keys": "an error as key is Err:504",
    "shown_texts": "exact lookups of texts look at numbers, booleans and errors, too, as they are shown",
    "descending": "of equal cells in descending order the last is found",
    "subnormals": "numbers below the smallest normal one are none the less",
}


def number_of(value):
    kind = kind_of(value)
    if kind == "text":
        return TEXT_NUMBERS.get(value.lower(), Error("#VALUE!"))
    return 0.0 if kind == "empty" else float(value) if kind == "boolean" else value


def finite(number, rules):
    if math.isinf(number) or math.isnan(number):
        return Error("#NUM!")
    return 0.0 if abs(number) < 2.0 ** -1022 and not rules.subnormals else number


def power(base, exponent, rules):
    if base == 0 and exponent <= 0:
        if rules.powers:
            return 1.0 if exponent == 0 else Error("#NUM!")
        return Error("#NUM!" if exponent == 0 else "#DIV/0!")
    sign = 1.0
    if base < 0 and not exponent.is_integer():
        root = math.floor(1 / exponent + 0.5)
        if root % 2 == 1 and (are_close(1 / root, exponent) if rules.powers else 1 / root == exponent):
            base, sign = -base, -1.0
    try:
        number = sign * math.pow(base, exponent)
    except (OverflowError, ValueError):
        return Error("#NUM!")
    return Error("#NUM!") if rules.powers and base != 0 and abs(number) < 2.0 ** -1022 else number


def calculate(operator, left, right, rules):
    operands = [number_of(left), number_of(right)]
    # Excel's order of an error and a text that is no number is not known; here the error is the result.
    errors = [value for values in ((left, right), operands) for value in values if isinstance(value, Error)]
    if errors:
        return errors[0]
    left, right = operands
    if operator == "/":
        return Error("#DIV/0!") if right == 0 else finite(left / right, rules)
    if operator == "^":
        number = power(left, right, rules)
        return number if isinstance(number, Error) else finite(number, rules)
    if operator == "*":
        return finite(left * right, rules)
    if operator == "-":
        right = -right
    return 0.0 if rules.sums and are_close(left, -right) else finite(left + right, rules)


def text_place(text, rules):
    """The place of one of the texts that cases have, whatever its case."""
    if rules.hyphens and "-" in text:
        return TEXTS.index("coop" if len(text) > 2 else "&") - 0.5
    return [known.lower() for known in TEXTS].index(text.lower())


def are_close(left, right):
    difference = abs(left - right)
    if 0 in (left, right) or all(value.is_integer() and abs(value) < 2.0 ** 53 for value in (left, right)):
        return left == right
    return difference < abs(left) * 2.0 ** -48 and difference < abs(right) * 2.0 ** -48


def sort_key(value, rules=Rules()):
    """What Excel sorts a cell by that is not empty."""
    kind = kind_of(value)
    return (["number", "text", "boolean", "error"].index(kind),
            text_place(value, rules) if kind == "text" else 0 if kind == "error" else value)


def order_of(left, right, rules):
    """Below, at or above 0, for two cells that are neither empty nor errors."""
    if kind_of(left) == kind_of(right) == "number":
        if rules.close_numbers and are_close(left, right):
            return 0
    left, right = sort_key(left, rules), sort_key(right, rules)
    return (left > right) - (left < right)


def compare(operator, left, right, rules):
    for value in (left, right):
        if kind_of(value) == "error":
            return value
    zeros = {"text": "", "boolean": False}
    left, right = (zeros.get(kind_of(other), 0.0) if value is None else value
                   for value, other in ((left, right), (right, left)))
    if rules.booleans:
        left, right = (float(value) if kind_of(value) == "boolean" else value for value in (left, right))
    if kind_of(left) == kind_of(right) == "number" and not rules.close_numbers:
        left, right = float("%.14e" % left), float("%.14e" % right)
    order = order_of(left, right, rules)
    return {"=": order == 0, "<>": order != 0, "<": order < 0, "<=": order <= 0, ">": order > 0,
            ">=": order >= 0}[operator]


class Formula:
    """The formula of an arithmetic case or a comparison, calculated while it is read."""

    LEVELS = [("=", "<>", "<", "<=", ">", ">="), ("+", "-"), ("*", "/"), ("^",)]

    def __init__(self, case, rules):
        self.rules = rules
        self.pieces = [case.cells[(part[1], int(part[2:]))] if isinstance(part, Raw) and part[0] == "@" else part
                       for part in case.parts] + [Raw("")]

    def next_is(self, *pieces):
        return isinstance(self.pieces[0], Raw) and self.pieces[0] in pieces

    def level(self, depth=0):
        if depth == len(self.LEVELS):
            return self.signed()
        value = self.level(depth + 1)
        while self.next_is(*self.LEVELS[depth]):
            operator = self.pieces.pop(0)
            value = (calculate if depth else compare)(operator, value, self.level(depth + 1), self.rules)
        return value

    def signed(self):
        if self.next_is("-"):
            self.pieces.pop(0)
            return calculate("-", 0.0, self.signed(), self.rules)
        value = self.pieces.pop(0)
        if isinstance(value, Raw):  # a parenthesis
            value = self.level()
            self.pieces.pop(0)
        while self.next_is("%"):
            self.pieces.pop(0)
            value = calculate("/", value, 100.0, self.rules)
        return value


def fits(pattern, text):
    """Whether a text with Excel's wildcards stands for the whole text."""
    pieces = re.findall(r"~(.)|([*?])|([^~])", pattern, re.DOTALL)
    written = "".join({"*": ".*", "?": "."}.get(wild) or re.escape(quoted or plain) for quoted, wild, plain in pieces)
    return re.fullmatch(written, text, re.DOTALL | re.IGNORECASE) is not None


def shown(value):
    """A filled cell as a text."""
    if kind_of(value) == "number":
        return str(int(value)) if value.is_integer() and abs(value) < 1e20 else "%.15g" % value
    return str(value).upper() if kind_of(value) == "boolean" else value


def find(key, column, order, rules):
    """Where MATCH and VLOOKUP find the key, from 0; None where they do not."""
    if rules.booleans:
        key, *column = (float(value) if kind_of(value) == "boolean" else value for value in [key, *column])
    kind = kind_of(key)
    is_same = [kind_of(value) == kind for value in column]
    if order == 0:
        if kind == "text":
            hits = [(is_same[place] or rules.shown_texts and value is not None) and fits(key, shown(value))
                    for place, value in enumerate(column)]
        else:
            hits = [is_same[place] and order_of(value, key, rules) == 0 for place, value in enumerate(column)]
        return hits.index(True) if True in hits else None
    if order < 0:
        best = None
        for place in (place for place in range(len(column)) if is_same[place]):
            side = order_of(column[place], key, rules)
            if side < 0:
                break
            best = place
            if side == 0 and not rules.descending:
                break
        return best
    low, high = -1, len(column)
    while high - low > 1:
        middle = low + (high - low) // 2
        if not is_same[middle]:
            following = next((place for place in range(middle + 1, high) if is_same[place]), None)
            if following is None or following == high - 1 and order_of(key, column[following], rules) < 0:
                high = middle
                continue
            middle = following
        side = order_of(key, column[middle], rules)
        if side == 0:
            while middle + 1 < high and is_same[middle + 1] and order_of(key, column[middle + 1], rules) == 0:
                middle += 1
            return middle
        low, high = (low, middle) if side < 0 else (middle, high)
    return low if low >= 0 else None


def result_of(case, rules):
    """What the rules give for the case."""
    if not case.search:
        return Formula(case, rules).level()
    key, column, order, answers = case.search
    if kind_of(key) == "error":
        return Error("Err:504") if rules.error_keys else key
    if key is None:
        if rules.empty_keys:
            return Error("#N/A")
        key = 0.0
    place = find(key, column, order, rules)
    return Error("#N/A") if place is None else answers[place]
