"""How Excel shows a value of a cell, for the number formats that sample workbooks use."""
import datetime
import decimal
import re

NO_DATE = datetime.datetime(1899, 12, 30)
GENERAL_DIGITS = 10  # as many as General shows in a column of ordinary width
DATE_PARTS = {"yyyy": "%Y", "yy": "%y", "mmmm": "%B", "mmm": "%b", "mm": "%m", "m": "%m", "dd": "%d", "d": "%d",
              "hh": "%H", "h": "%H", "ss": "%S"}


def shown(value, number_format="General"):
    """The text of a value: None, a bool, a number, a date or time of openpyxl, or a text. ValueError for a format that
    is not known here."""
    if value is None:
        return ""
    if isinstance(value, bool):
        return str(value).upper()
    if isinstance(value, str):
        return value
    first = number_format.split(";")[0]
    plain = re.sub(r'"[^"]*"|\\.|\[[^\]]*\]', "", first)
    if isinstance(value, (datetime.date, datetime.time)) or re.search("[ymdhs]", plain):
        return shown_date(value, first)
    if plain in ("General", "@"):
        return general(value)
    return shown_number(value, first)


def general(value):
    """As in a cell without a format: no more digits than have room, and an exponent where those do not do."""
    if value == int(value) and abs(value) < 1e11:
        return str(int(value))
    if 1e-4 <= abs(value) < 1e10:
        whole = len(str(int(abs(value))))
        return f"{value:.{max(GENERAL_DIGITS - whole, 0)}f}".rstrip("0").rstrip(".")
    mantissa, exponent = f"{value:.5E}".split("E")
    return f"{mantissa.rstrip('0').rstrip('.')}E{exponent}"


def shown_number(value, number_format):
    """By a format of zeros: 0, 0.00, #,##0, 0%, with texts in quotes around it."""
    match = re.fullmatch(r'(?P<before>(?:"[^"]*"|\\.|\$)*)(?P<whole>[#0,]+)(?P<decimals>\.[0#]+)?(?P<percent>%)?'
                         r'(?P<after>(?:"[^"]*"|\\.)*)', number_format)
    if not match:
        raise ValueError(f"no number format that is known here: {number_format}")
    decimals = match["decimals"] or ""
    exact = decimal.Decimal(repr(value)).scaleb(2 if match["percent"] else 0)
    rounded = exact.quantize(decimal.Decimal(1).scaleb(-max(len(decimals) - 1, 0)), decimal.ROUND_HALF_UP)
    text = f"{rounded:{',' if ',' in match['whole'] else ''}f}"
    for _ in range(decimals.count("#")):
        text = text.removesuffix("0").removesuffix(".")
    return unquoted(match["before"]) + text + (match["percent"] or "") + unquoted(match["after"])


def unquoted(text):
    return re.sub(r'"([^"]*)"|\\(.)', r"\1\2", text)


def shown_date(value, number_format):
    if isinstance(value, (int, float)):
        value = NO_DATE + datetime.timedelta(seconds=round(value * 86400))
    if isinstance(value, datetime.time):
        value = datetime.datetime.combine(NO_DATE, value)
    result, last = [], ""
    for match in re.finditer(r'"[^"]*"|\\.|y+|m+|d+|h+|s+|.', number_format):
        part = match[0]
        if part in DATE_PARTS:
            is_minute = part in ("m", "mm") and (last.startswith("h") or number_format.startswith(":s", match.end()))
            text = value.strftime("%M" if is_minute else DATE_PARTS[part])
            result.append(text.lstrip("0") or "0" if len(part) == 1 else text)
            last = part
        else:
            result.append(unquoted(part))
    return "".join(result)
