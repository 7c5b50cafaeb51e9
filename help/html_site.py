"""The help as a static site, which works from a folder without a server."""
import html
import json
import pathlib
import re
import shutil

from function_pages import START
from page_bodies import SUMMARY, breakable, escaped

SOURCES = pathlib.Path(__file__).parent / "site"
ICON = ('<svg viewBox="0 0 24 24" width="26" height="26" aria-hidden="true" fill="currentColor">'
        '<rect x="2" y="2" width="20" height="20" rx="4" opacity=".16"/>'
        '<path d="M7 7h4v4H7zM13 7h4v4h-4zM7 13h4v4H7zM13 13h4v4h-4z" opacity=".45"/><path d="M7 7h4v4H7z"/></svg>')
SEARCH = """<form class="search" role="search" hidden>
<input type="search" id="search" role="combobox" aria-label="Search functions" aria-expanded="false"
 aria-controls="found" aria-autocomplete="list" autocomplete="off" spellcheck="false"
 placeholder="Search by name or what it does">
<div class="popup"><ul id="found" role="listbox" aria-label="Functions found"></ul>
<p class="quiet" role="status"></p></div>
</form>
"""


def page(title, body, search="", aside="", kind=""):
    """A whole page. The first script comes before anything is drawn, so that the chosen colours do not come late."""
    return f"""<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<title>{escaped(title)}</title>
<meta name="viewport" content="width=device-width, initial-scale=1">
<link rel="icon" href="data:,">
<link rel="stylesheet" href="style.css">
<link rel="stylesheet" href="dark.css" id="dark" media="screen and (prefers-color-scheme: dark)">
<script src="colours.js"></script>
<script src="functions.js" defer></script>
<script src="search.js" defer></script>
</head>
<body class="{kind}">
<a class="skip" href="#content">Skip to the content</a>
<header class="top"><a class="brand" href="{START}">{ICON}<span>Quillmere</span></a>
{search}<button type="button" id="colours" hidden>Dark</button>
</header>
<div class="columns">
<main id="content" tabindex="-1">
{body}</main>
{aside}</div>
</body>
</html>
"""


def neighbours(family, here):
    listed = "".join(f'<li><a href="{one.file}"{" aria-current=" + chr(34) + "page" + chr(34) if one is here else ""}>'
                     f"{breakable(one.name)}</a></li>\n" for one in family.functions)
    return (f'<nav class="family" aria-label="{html.escape(family.title)}"><h2><a href="{family.file}">'
            f"{escaped(family.title)}</a></h2>\n<ul>\n{listed}</ul></nav>\n")


def searched(book):
    """What the search looks through, as a script: pages from a folder may load scripts, but no data."""
    entries = []
    for function in book.functions:
        helps = " ".join(f"{shown} {line.help}" for line in function.lines for shown in line.names[:1])
        words = re.sub(r"\s+", " ", " ".join([function.text, *function.remarks, helps])).lower()
        entries.append({"name": function.name, "file": function.file, "family": function.family.title,
                        "description": function.description, "text": words})
    lines = ",\n".join(json.dumps(entry, ensure_ascii=False) for entry in entries)
    return f"const functions = [\n{lines}\n];\n"


def write_site(folder, book, bodies):
    """Writes all pages into a folder, which is emptied first."""
    shutil.rmtree(folder, ignore_errors=True)
    shutil.copytree(SOURCES, folder)
    (folder / "functions.js").write_text(searched(book), encoding="utf-8")
    hero = (f'<div class="hero"><h1>Quillmere</h1>\n<p class="lead">{SUMMARY}</p>\n{SEARCH}'
            f'<p class="quiet">Version {book.version}</p></div>\n')
    pages = {START: page("Quillmere: help", hero + bodies.start(), kind="start")}
    for family in book.families:
        body = bodies.trail(family) + bodies.family(family)
        pages[family.file] = page(f"{family.title} - Quillmere", body, SEARCH, neighbours(family, None))
        for function in family.functions:
            body = (f"{bodies.trail(family, function.name)}<article>\n{bodies.function(function)}</article>\n"
                    f"{bodies.way(function)}")
            pages[function.file] = page(f"{function.name} - Quillmere", body, SEARCH, neighbours(family, function))
    for name, text in pages.items():
        (folder / name).write_text(text, encoding="utf-8")
