"""The help as one compiled file, which Windows' own viewer shows: a page for each help id, contents, index and
search."""
import os
import pathlib
import re
import shutil
import struct
import subprocess
import tempfile
from html import escape

from function_pages import START
from page_bodies import SUMMARY, escaped

STYLE = pathlib.Path(__file__).parent / "chm" / "style.css"
COMPILER = "/usr/bin/chmcmd"
# Besides itself it needs these; the last it loads while it runs.
LIBRARIES = ["/lib64/ld-linux-x86-64.so.2", "/lib/x86_64-linux-gnu/libc.so.6", "/lib/x86_64-linux-gnu/libpthread.so.0"]
TITLE = "Quillmere"
ENGLISH = 0x409
# The moment that all files say they were made: the reader takes it for a number that tells versions apart, no more.
MADE = 0x40000000
MADE_IN_HEADER = 16
SYSTEM_MADE = struct.pack("<HH", 10, 4)  # kind and length of the entry of #SYSTEM that holds it
# Words of the index, and what stands in the name or description of the functions that they lead to.
WORDS = {
    "averages": "averag", "balances": "balance", "case of letters": "case.?(in)?sensitive|letter case|upper and lower",
    "comparing": r"compare|\bcomparing", "concatenating": "concat", "counting": "count", "criteria": "criteri",
    "distinct values": "distinct", "duplicates": "dupe", "errors": "error", "evaluating texts": "eval2",
    "filters": "filter",
    "formulas": "formula2|eval2", "Gini coefficient": "gini", "headers": "header", "hidden rows": "hidden|visible",
    "inserting rows or columns": "splice", "interpolation": "interpolat", "joining tables": "matching|match in",
    "joining texts": "concat", "logical values": r"logical|\btrue\b", "lookups": "look ?up",
    "matches, n-th": r"\bnth\b|n-th",
    "medians": "median", "memory": "memory|stored|stores", "moving averages": "moving average", "padding": r"\bpad",
    "patterns": "pattern|wildcard", "positions": "position|row numbers?", "previous values": "previous",
    "regular expressions": "regular expression|regex", "repeating": r"^repeat|\brepeats", "resizing": "resiz",
    "reversing": "revers", "roll-forwards": "corkscrew", "running totals": "accumulat|cumulative", "slices": "slice",
    "sorting": r"sortc|sortb", "splitting texts": "split", "stacking": "append|stack", "sums": r"\bsum",
    "totals": r"totals\b", "unpivoting": "pivot", "used rows and columns": "countused|countcontig",
    "wildcards": "wildcard"}
MOST_TOPICS = 12  # a word of more functions leads to their families


def page(title, body):
    """A whole page, for a browser engine that draws as it did in 1999 unless it is told otherwise. What is not ASCII is
    written by number: the search takes the file's bytes for characters."""
    text = f"""<!DOCTYPE html>
<html lang="en">
<head>
<meta http-equiv="X-UA-Compatible" content="IE=edge">
<meta charset="utf-8">
<title>{escaped(title)}</title>
<link rel="stylesheet" href="style.css">
</head>
<body>
{body}</body>
</html>
"""
    return text.encode("ascii", "xmlcharrefreplace")


def pages(book, bodies):
    """The pages by file name, and their titles."""
    hero = f'<h1>{TITLE}</h1>\n<p class="lead">{SUMMARY}</p>\n<p class="quiet">Version {book.version}</p>\n'
    result = {START: page(TITLE, hero + bodies.start())}
    for family in book.families:
        result[family.file] = page(family.title, bodies.trail(family) + bodies.family(family))
        for function in family.functions:
            result[function.file] = page(function.name, bodies.trail(family, function.name) + bodies.function(function)
                                         + bodies.way(function))
    return result


def item(name, *targets):
    """An entry of contents or index, which leads to pages: pairs of title and file."""
    target = "".join(f'<param name="Name" value="{escape(title)}"><param name="Local" value="{file}">'
                     for title, file in targets)
    keyword = f'<param name="Name" value="{escape(name)}">' if len(targets) > 1 or targets[0][0] != name else ""
    return f'<LI><OBJECT type="text/sitemap">{keyword}{target}</OBJECT>\n'


def tree(items):
    return ('<!DOCTYPE HTML PUBLIC "-//IETF//DTD HTML//EN">\n<HTML><HEAD></HEAD><BODY>\n'
            f"<UL>\n{items}</UL>\n</BODY></HTML>\n").encode("ascii")


def contents(book):
    items = [item(TITLE, (TITLE, START))]
    for family in book.families:
        listed = "".join(item(function.name, (function.name, function.file)) for function in family.functions)
        items.append(f"{item(family.title, (family.title, family.file))}<UL>\n{listed}</UL>\n")
    return tree("".join(items))


def index(book):
    """The names, those with dots under their later parts too, the titles of families, and words."""
    entries = {family.title: [family] for family in book.families}
    for function in book.functions:
        parts = function.name.split(".")
        entries |= {f"{'.'.join(parts[at:])}, {'.'.join(parts[:at])}": [function] for at in range(1, len(parts))}
        entries[function.name] = [function]
    for word, pattern in WORDS.items():
        topics = [one for one in book.functions if re.search(pattern, f"{one.name} {one.description}", re.I)]
        entries[word] = topics if len(topics) <= MOST_TOPICS else list(dict.fromkeys(one.family for one in topics))
    keywords = sorted(filter(entries.get, entries), key=lambda keyword: (keyword.lower(), keyword))
    return tree("".join(item(keyword, *((topic.title, topic.file) for topic in entries[keyword]))
                        for keyword in keywords))


def project(book, files, target):
    """What the compiler makes of the files. Its own binary index has bytes that it never set, differently each time;
    the viewer reads contents and index as they are written."""
    aliases = "".join(f"ID{function.help_id}={function.file}\n" for function in book.functions)
    numbers = "".join(f"#define ID{function.help_id} {function.help_id}\n" for function in book.functions)
    return f"""[OPTIONS]
Binary Index=No
Binary TOC=No
Compatibility=1.1 or later
Compiled file={target}
Contents file=contents.hhc
Index file=index.hhk
Default topic={START}
Default Window=main
Full-text search=Yes
Language=0x{ENGLISH:x} English (United States)
Title={TITLE}

[WINDOWS]
main="{TITLE}","contents.hhc","index.hhk","{START}","{START}",,,,,0x63520,270,0x304e,[80,60,1180,860],,,,,,,0

[FILES]
{chr(10).join(files)}

[ALIAS]
{aliases}
[MAP]
{numbers}""".encode("ascii")


def compiled(files, project_file, target):
    """The file that the compiler makes of files by name. It writes paths into it as soon as the project does not lie in
    the root of the file system, and no help id leads anywhere then; so it runs in a root of its own."""
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder)
        for name, content in files.items():
            (root / name).write_bytes(content)
        for needed in [COMPILER, *LIBRARIES]:
            copy = root / needed[1:]
            copy.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(os.path.realpath(needed), copy)
        told = ""
        for way in ways_to_change_root():
            ran = subprocess.run([*way, folder, COMPILER, f"/{project_file}"], capture_output=True, text=True,
                                 check=False)
            told += f"{' '.join(way)}: {ran.stdout}{ran.stderr}"
            if ran.returncode == 0 and (root / target).exists():
                return (root / target).read_bytes()
        raise RuntimeError(f"{COMPILER} made no {target}: {told}")


def ways_to_change_root():
    """Commands that do, the one first that asks for no rights: not every system allows it."""
    return [["unshare", "--map-root-user", "chroot"], ["chroot"] if os.geteuid() == 0 else ["sudo", "chroot"]]


def without_time(content):
    """The file with one moment for all, wherever the compiler writes when it ran: in the header, and in #SYSTEM, which
    is stored as it is."""
    result = bytearray(content)
    struct.pack_into(">I", result, MADE_IN_HEADER, MADE)
    at = result.find(SYSTEM_MADE, result.find(b"HHA Version") - 32) + len(SYSTEM_MADE)
    struct.pack_into("<I", result, at, MADE)
    return bytes(result)


def write_chm(path, book, bodies):
    """Writes the compiled help. RuntimeError with what the compiler said if it made none."""
    files = pages(book, bodies) | {"style.css": STYLE.read_bytes()}
    told = {"contents.hhc": contents(book), "index.hhk": index(book),
            "quillmere.hhp": project(book, files, path.name)}
    path.write_bytes(without_time(compiled(files | told, "quillmere.hhp", path.name)))
