"""Tables that look like a piece of a worksheet: of a sample workbook, and of an example's result."""
import html
import re
import tomllib

import openpyxl
from openpyxl.utils import get_column_letter, range_boundaries

from number_formats import shown

LOADED_PREFIX = re.compile(r"_xl(?:l|fn|ws|pm)\.")
# Pixels of one digit, which columns are measured by, of a wide letter, and of what is around them.
DIGIT, LETTER, PADDING = 8, 9.5, 8
GAP = 28  # of a column that is empty
NUMBERS = 36  # of that of the row numbers
MOST_FORMULAS = 3  # above a picture
REFERENCE = re.compile(r"\$?\b([A-Z]{1,3})\$?(\d+)\b")


class Cell:
    """What is drawn of one cell: `kind` is "text", "number", "truth" or "error"."""

    def __init__(self, value, number_format="General"):
        self.text, self.style, self.is_result, self.is_formula = shown(value, number_format), "", False, False
        self.is_bold = self.wraps = False
        self.kind = "number"
        if isinstance(value, bool):
            self.kind = "truth"
        elif value is None or isinstance(value, str):
            self.kind = "error" if re.fullmatch(r"#[A-Z/0]+[!?]?|#N/A", value or "") else "text"

    def html(self, has_room):
        """The cell; a text goes on over the next cell if that leaves it room, as in Excel."""
        classes = [self.kind] if self.kind != "text" else []
        classes += [name for name, holds in [("bold", self.is_bold), ("filled", self.style), ("result", self.is_result),
                                             ("formula", self.is_formula), ("wraps", self.wraps),
                                             ("over", has_room and self.kind == "text" and self.text)] if holds]
        written = f' class="{" ".join(classes)}"' if classes else ""
        return f'<td{written}{self.style}>{html.escape(self.text, quote=False)}</td>'


def sheet(rows, first_column, formulas, caption, widths=None):
    """A figure of rows of Cells, by their numbers: under a bar for each of the formulas, pairs of the place of a cell,
    as the number of its row and its place in that, and what it holds. The caption is HTML; widths are pixels of the
    columns."""
    letters = [get_column_letter(first_column + place) for place in range(len(next(iter(rows.values()))))]
    bars = ""
    for (row, column), formula in formulas:
        rows[row][column].is_formula = True
        bars += (f'<div class="bar"><span class="at">{letters[column]}{row}</span><span class="fx">fx</span>'
                 f"<code>{html.escape(formula, quote=False)}</code></div>\n")
    columns = "".join(f'<col style="width:{width}px">' for width in [NUMBERS, *widths]) if widths else ""
    fixed = f' fixed" style="width:{NUMBERS + sum(widths)}px' if widths else ""
    head = "".join(f'<th scope="col">{letter}</th>' for letter in letters)
    body = "".join(
        f'<tr><th scope="row">{number}</th>'
        + "".join(cell.html(all(not other.text for other in cells[place + 1:place + 2]))
                  for place, cell in enumerate(cells)) + "</tr>\n"
        for number, cells in rows.items())
    return (f'<figure class="sheet">\n{bars}<div class="grid" tabindex="0" role="group" aria-label="Cells">'
            f'<table class="cells{fixed}"><colgroup>{columns}</colgroup>\n<thead><tr><td></td>{head}</tr></thead>\n'
            f"<tbody>\n{body}</tbody></table></div>\n<figcaption>{caption}</figcaption>\n</figure>\n")


def pictures(samples, name, own):
    """The pictures that the definition of a sample workbook asks for, of the cells that are in it, with the formulas
    that call functions of the names `own`; none when the folder has no such definition. ValueError for one that shows
    no formula of ours."""
    definition = samples / "books" / f"{name}.toml"
    if not definition.exists():
        return []
    wanted = tomllib.loads(definition.read_text(encoding="utf-8")).get("picture", [])
    path = samples / f"{name}.xlsx"
    formulas, values = openpyxl.load_workbook(path), openpyxl.load_workbook(path, data_only=True)
    return [picture(formulas[one["sheet"]], values[one["sheet"]], one["range"], own,
                    html.escape(one["caption"], quote=False)) for one in wanted]


def picture(formulas, values, place, own, caption):
    """The visible cells at a place, under the formulas there that call functions of the names `own`, or of the
    add-in at all when there are none."""
    left, top, right, bottom = range_boundaries(place)
    rows = {number: [sheet_cell(cell) for cell in row] for number, row in enumerate(values[place], top)
            if not values.row_dimensions[number].hidden}
    found = [cell for row in formulas[place] for cell in row
             if cell.data_type == "f" and "_xll." in cell.value and cell.row in rows]
    if not found:
        raise ValueError(f"{values.title}!{place}: no formula of ours to show")
    for cell in found:
        covered = formulas.formula_attributes.get(cell.coordinate, {}).get("ref", cell.coordinate)
        for_left, for_top, for_right, for_bottom = range_boundaries(covered)
        for number in rows.keys() & set(range(for_top, for_bottom + 1)):
            for result in rows[number][for_left - left:for_right - left + 1]:
                result.is_result = True
    of_family = [cell for cell in found if own & set(re.findall(r"_xll\.([\w.]+)", cell.value))]
    told = [((cell.row, cell.column - left), LOADED_PREFIX.sub("", "=" + cell.value.removeprefix("=")))
            for cell in (of_family or found)[:MOST_FORMULAS]]
    widths = column_widths(values)
    longest = [max(len(row[place].text) for row in rows.values()) for place in range(right + 1 - left)]
    drawn = [min(widths.get(at, 64), max(round(length * LETTER + PADDING), 64)) if length else GAP
             for at, length in enumerate(longest, left)]
    return sheet(rows, left, told, caption, drawn)


def column_widths(worksheet):
    """Pixels of the columns whose width the sheet says, by number."""
    widths = {}
    for dimension in worksheet.column_dimensions.values():
        if dimension.width:
            for at in range(dimension.min or 1, (dimension.max or 1) + 1):
                widths[at] = round(dimension.width * DIGIT + PADDING)
    return widths


def sheet_cell(cell):
    result = Cell(cell.value, cell.number_format)
    result.is_bold, result.wraps = bool(cell.font.b), bool(cell.alignment.wrap_text)
    # A colour of the theme is no colour that could be written here.
    fill = cell.fill.fgColor.rgb if cell.fill.fill_type == "solid" and cell.fill.fgColor.type == "rgb" else None
    ink = cell.font.color.rgb if cell.font.color and cell.font.color.type == "rgb" else None
    if fill:
        ink = f"#{ink[2:]}" if ink else "#000000"
        result.style = f' style="background:#{fill[2:]};--fill:#{fill[2:]};color:{ink}"'
    return result


def example_sheet(formula, result, given):
    """The result of an example, in a sheet where it is not in the way of what the formula refers to: in no row or
    column of those."""
    rows = [[Cell(value) for value in row] for row in parsed(result)]
    for row in rows:
        for cell in row:
            cell.is_result = True
    used = [range_boundaries(letters + digits)[:2] for letters, digits in REFERENCE.findall(f"{formula} {given or ''}")]
    first_row, first_column = (max(at[1] for at in used) + 1, max(at[0] for at in used) + 1) if used else (1, 1)
    size = "The result is one value" if len(rows) == len(rows[0]) == 1 else \
        f"The result has {counted(len(rows), 'row')} and {counted(len(rows[0]), 'column')}"
    caption = f"{size}, where {html.escape(given, quote=False)}." if given else f"{size}."
    return sheet(dict(enumerate(rows, first_row)), first_column, [((first_row, 0), formula)], caption)


def counted(number, thing):
    return f"{number} {thing}" if number == 1 else f"{number} {thing}s"


def parsed(result):
    """The rows of values of an example's result: an array as it is written in a formula, or one value."""
    if not result.startswith("{"):
        return [[parsed_value(result)]]
    rows = [[]]
    for value, end in re.findall(r'("(?:[^"]|"")*"|[^,;{}"]+)([,;}])', result):
        rows[-1].append(parsed_value(value))
        if end == ";":
            rows.append([])
    return rows


def parsed_value(text):
    if text.startswith('"'):
        return text[1:-1].replace('""', '"')
    if text in ("TRUE", "FALSE"):
        return text == "TRUE"
    return text if text.startswith("#") else float(text)
