"""What stands on each page, the same on the site and in the .chm: HTML without what is around it."""
import html

from function_pages import START, argument_words, shortened
from prose import Prose
from sheet_picture import counted, example_sheet

SUMMARY = ("Quillmere is an add-in for Microsoft Excel on 64-bit Windows: worksheet functions that are missed in "
           "Excel, fast on a million rows.")

TOUR = "tour"  # the sample workbook of all families
REQUIRED = ' <span class="required">required</span>'


def escaped(text):
    return html.escape(text, quote=False)


class Bodies:
    """The bodies of all pages of a Help, with `pictures`, lists of figures by name of family and for TOUR."""

    def __init__(self, book, pictures):
        self.book, self.pictures = book, pictures
        self.links = {function.name: function.file for function in book.functions}

    def start(self):
        cards = "".join(
            f'<li class="card"><h2><a href="{family.file}">{escaped(family.title)}</a></h2>\n'
            f"<p>{escaped(first_paragraph(family.introduction))}</p>\n"
            f'<p class="count">{counted(len(family.functions), "function")}</p></li>\n'
            for family in self.book.families)
        names = sorted(self.links, key=str.lower)
        listed = "".join(f'<li><a href="{self.links[name]}">{breakable(name)}</a></li>\n' for name in names)
        return ("".join(self.pictures.get(TOUR, [])[:1]) + f'<ul class="cards">\n{cards}</ul>\n'
                f'<section class="all"><h2 id="all">All {counted(len(names), "function")}</h2>\n'
                f'<ul class="names">\n{listed}</ul></section>\n')

    def family(self, family):
        prose = Prose(self.links)
        listed = "".join(f'<dt><a href="{function.file}">{function.name}</a></dt>\n'
                         f"<dd>{escaped(function.description)}</dd>\n" for function in family.functions)
        figures = "".join(self.pictures.get(family.name, []))
        return (f'<h1>{escaped(family.title)}</h1>\n<div class="lead">{prose.paragraphs(family.introduction)}</div>\n'
                f'{figures}<h2 id="functions">{counted(len(family.functions), "function")}</h2>\n'
                f'<dl class="functions">\n{listed}</dl>\n')

    def function(self, function):
        prose = Prose(self.links, function.name, argument_words(function))
        parts = [f"<h1>{breakable(function.name)}</h1>\n",
                 f'<p class="lead">{escaped(function.description)}</p>\n', syntax(function)]
        if function.remarks:
            remarks = "".join(f"<li>{prose.line(remark)}</li>\n" for remark in function.remarks)
            parts.append('<section class="remarks"><h2 id="good-to-know">Good to know</h2>\n'
                         f"<ul>\n{remarks}</ul></section>\n")
        if function.example:
            parts.append('<h2 id="example">Example</h2>\n'
                         + example_sheet(function.example, function.result, function.given))
        if function.lines:
            parts.append(f'<h2 id="arguments">Arguments</h2>\n{arguments(function)}')
        parts.append(f'<h2 id="details">How it works</h2>\n{prose.paragraphs(function.text)}')
        if function.related:
            listed = "".join(f'<li><a href="{self.links[name]}">{name}</a> '
                             f"<span>{escaped(self.book.by_name[name].description)}</span></li>\n"
                             for name in function.related)
            parts.append(f'<h2 id="see-also">See also</h2>\n<ul class="related">\n{listed}</ul>\n')
        return "".join(parts)

    def way(self, function):
        """The links to the neighbours of a function, in the order of the families."""
        functions = self.book.functions
        at = functions.index(function)
        before = functions[at - 1] if at else None
        after = functions[at + 1] if at + 1 < len(functions) else None
        links = [f'<a class="{side}" rel="{side}" href="{one.file}"><span>{said}</span> {one.name}</a>'
                 for side, said, one in [("prev", "Previous", before), ("next", "Next", after)] if one]
        return f'<nav class="way" aria-label="Previous and next">{" ".join(links)}</nav>\n'

    def trail(self, family, name=None):
        """The way down to a page."""
        here = f' <span class="sep">/</span> <a href="{family.file}">{escaped(family.title)}</a>' if name else ""
        return f'<nav class="trail" aria-label="Where this page is"><a href="{START}">All families</a>{here}</nav>\n'


def first_paragraph(text):
    return text.split("\n\n")[0]


def breakable(name):
    """A name that narrow columns break behind its dots."""
    return name.replace(".", ".<wbr>")


def syntax(function):
    written = [f"<span>{part}{',' if place < len(function.syntax) and part != '…' else ''}</span>"
               for place, part in enumerate(function.syntax, 1)]
    hint = '<p class="hint">Arguments in brackets can be left out.</p>\n' \
        if any(part.startswith("[") for part in function.syntax) else ""
    return f'<p class="syntax"><code>={function.name}({" ".join(written)})</code></p>\n{hint}'


def arguments(function):
    rows = "".join(
        f'<tr><th scope="row">{shortened(line.names)}{REQUIRED if line.is_required else ""}</th>\n'
        f"<td><p>{escaped(line.help)}</p>\n{said_of(line)}</td></tr>\n" for line in function.lines)
    return ('<table class="arguments"><thead><tr><th scope="col">Argument</th><th scope="col">What it is</th></tr>'
            f"</thead>\n<tbody>\n{rows}</tbody></table>\n")


def said_of(line):
    """What an argument is when it is left out, and the codes that it takes."""
    result = ""
    if line.default is not None:
        result = f'<p class="default">When left out: <code>{escaped(line.default)}</code></p>\n'
    if line.choices:
        listed = "".join(f'<tr><td><code>{choice["code"]}</code></td><td>{escaped(choice["text"])}</td></tr>\n'
                         for choice in line.choices)
        result += f'<table class="choices"><tbody>\n{listed}</tbody></table>\n'
    return result
