#!/usr/bin/python3
"""Holds the help that is made of the functions' table against that table.

    help_test.py Quillmere4_functions.json SAMPLES
"""
import collections
import datetime
import html.parser
import json
import os
import pathlib
import struct
import subprocess
import sys
import tempfile
import tomllib
import xml.etree.ElementTree as ElementTree

sys.dont_write_bytecode = True
ROOT = pathlib.Path(__file__).parents[2]
sys.path += [str(ROOT / "help"), str(ROOT / "tests/run")]

from chm import chm, chmlib

from closing import close
from function_pages import Help
from number_formats import shown
from prose import Prose
from readme_list import with_list
from sheet_picture import parsed

SHOWN = [(7 / 3, "General", "2.333333333"), (1e11 / 3, "General", "3.33333E+10"), (0.125, "0%", "13%"),
         (-1234567.85, "#,##0.0", "-1,234,567.9"), (2.5, '0.0##" mm"', "2.5 mm"), (True, "General", "TRUE"),
         (45356.5, "yyyy-mm-dd hh:mm:ss", "2024-03-05 12:00:00"),
         (datetime.datetime(2024, 3, 5, 7, 8), "d mmm h:mm", "5 Mar 7:08")]
PROSE = [('Use VSTACKF, not Excel\'s VSTACKF: =VSTACKF("a)",{1}) or "#N".',
          'Use <a href="f">VSTACKF</a>, not Excel\'s VSTACKF: <code>=VSTACKF("a)",{1})</code> or <code>"#N"</code>.'),
         ('Fill < 5, "in these words": an odd " (Filled)',
          '<span class="argument">Fill</span> &lt; 5, "in these words": an odd " (Filled)')]


class Page(html.parser.HTMLParser):
    """What a page has: its heading, all text, where it leads to, the places in it and what it loads."""

    def __init__(self, content):
        super().__init__()
        self.heading, self.text, self.links, self.places, self.figures, self.open = "", "", set(), set(), 0, []
        self.feed(content)

    def handle_starttag(self, tag, attrs):
        said = dict(attrs)
        self.links |= {said[key] for key in ("href", "src") if said.get(key) and not said[key].startswith("data:")}
        self.places |= {said["id"]} if "id" in said else set()
        self.figures += tag == "figure"
        self.open.append(tag)

    def handle_endtag(self, tag):
        while self.open.pop() != tag:
            pass

    def handle_data(self, data):
        self.text += data
        self.heading += data if "h1" in self.open else ""


class Tree(html.parser.HTMLParser):
    """The pages that contents or index of a .chm lead to, by title."""

    def __init__(self, content):
        super().__init__()
        self.leads, self.title = collections.defaultdict(set), ""
        self.feed(content)

    def handle_starttag(self, tag, attrs):
        said = dict(attrs)
        if said.get("name") == "Name":
            self.title = said["value"]
        elif said.get("name") == "Local":
            self.leads[self.title].add(said["value"])


def dead_links(pages, files):
    """Links of the pages that lead nowhere: to no file there is, or to a place that its page has not."""
    for name, page in pages.items():
        for link in page.links:
            file, _, place = link.partition("#")
            if (file or name) not in files or place and place not in pages[file or name].places:
                yield f"{name}: {link}"


def site(folder, functions, families, samples):
    pages = {path.name: Page(path.read_text()) for path in folder.glob("*.html")}
    yield "dead links of the site", list(dead_links(pages, {path.name for path in folder.iterdir()})), []
    expected = [one["name"] for one in functions] + [one["title"] for one in families] + ["Quillmere"]
    yield "pages of the site", sorted(page.heading for page in pages.values()), sorted(expected)
    by_name = {page.heading: (name, page) for name, page in pages.items()}
    titles = {family["name"]: family["title"] for family in families}
    for one in functions:
        name, page = by_name[one["name"]]
        yield f"{one['name']}: described", one["description"] in page.text, True
        for place in ["Quillmere", titles[one["family"]]]:
            yield f"{place} leads to {one['name']}", name in by_name[place][1].links, True
        needed = {by_name[other][0] for other in one["related"]}
        yield f"{one['name']}: leads to related", needed - page.links, set()
    for name, title, most in [("tour", "Quillmere", 1), *((family["name"], family["title"], 9) for family in families)]:
        definition = samples / "books" / f"{name}.toml"
        count = len(tomllib.loads(definition.read_text()).get("picture", [])) if definition.exists() else 0
        yield f"{title}: pictures", by_name[title][1].figures, min(count, most)
    yield "what Excel writes before names", [name for name, page in pages.items() if "_xl" in page.text], []


def objects_of(path):
    """What a .chm holds, by name."""
    file, names = chm.CHMFile(), []
    if not file.LoadCHM(str(path)):
        return file, {}

    def add(_, found, names):
        names.append(found.path)
        return chmlib.CHM_ENUMERATOR_CONTINUE

    kinds = chmlib.CHM_ENUMERATE_NORMAL | chmlib.CHM_ENUMERATE_SPECIAL | chmlib.CHM_ENUMERATE_FILES
    chmlib.chm_enumerate(file.file, kinds, add, names)
    found = {name: file.ResolveObject(name) for name in names}
    return file, {name.decode(): file.RetrieveObject(one)[1] for name, (status, one) in found.items()
                  if status == 0 and one.length}


def compiled(path, functions, families):
    file, objects = objects_of(path)
    pages = {name[1:]: Page(content.decode("ascii")) for name, content in objects.items() if name.endswith(".html")}
    yield "dead links of the .chm", list(dead_links(pages, {name[1:] for name in objects})), []
    strings = objects["/#STRINGS"]
    topics = {number: strings[at:strings.index(b"\0", at)].decode()
              for number, at in struct.iter_unpack("<II", objects["/#IVB"][4:])}
    # As the viewer resolves them: from the root of the file.
    yield "help ids", {number: pages[topic.lstrip("/")].heading for number, topic in topics.items()
                       if topic.lstrip("/") in pages}, {one["helpId"]: one["name"] for one in functions}
    files = {page.heading: name for name, page in pages.items()}
    everything = {one["name"] for one in functions} | {one["title"] for one in families}
    for kind, content in [("contents", file.GetTopicsTree()), ("index", file.GetIndex())]:
        leads = Tree(content.decode()).leads
        yield f"{kind} list", {name for name in everything if leads[name] != {files[name]}}, set()
        yield f"{kind} lead", {name for names in leads.values() for name in names} - pages.keys(), set()
    yield "home", file.home.decode(), "/index.html"
    yield "search", b"ginicoeff.html" in file.Search(b"gini")[1].values(), True
    machine = [str(ROOT).encode(), tempfile.gettempdir().encode() + b"/", os.fsencode(pathlib.Path.home()) + b"/"]
    everywhere = objects | {"the file": path.read_bytes()}
    yield "paths of this machine", [(name, one) for name, content in everywhere.items() for one in machine
                                    if one in content], []


def argument_help(path, functions):
    space = "{http://schemas.excel-dna.net/intellisense/1.0}"
    root = ElementTree.parse(path).getroot()
    yield "root", [root.tag, *(child.tag for child in root)], [f"{space}IntelliSense", f"{space}FunctionInfo"]
    told = root.findall(f"{space}FunctionInfo/{space}Function")
    yield "told", {entry.get("Name") for entry in told}, {one["name"] for one in functions}
    by_name = {one["name"]: one for one in functions}
    for entry in told:
        one = by_name[entry.get("Name")]
        yield one["name"], (entry.get("Description"), entry.get("HelpTopic")), \
            (one["description"], f"Quillmere4.chm!{one['helpId']}")
        got = [(child.tag, child.get("Name"), child.get("Description")) for child in entry]
        said = dict(child[1:] for child in got)  # what is registered without help has that of its run
        yield f"arguments of {one['name']}", got, [
            (f"{space}Argument", argument["name"], argument["help"] or said.get(argument["name"]))
            for argument in one["arguments"]]


def same(first, second):
    files = [{path.relative_to(folder): path.read_bytes() for path in folder.rglob("*") if path.is_file()}
             for folder in (first, second)]
    yield "made twice", [str(name) for name in files[0].keys() | files[1].keys()
                         if files[0].get(name) != files[1].get(name)], []


def main():
    source, samples = map(pathlib.Path, sys.argv[1:])
    said = json.loads(source.read_text())
    functions = [one for one in said["functions"] if one["type"] == "function"]
    families = [family for family in said["families"] if any(one["family"] == family["name"] for one in functions)]
    cases = [(f"{value} as {form}", shown(value, form), text) for value, form, text in SHOWN]
    cases += [(text, Prose({"VSTACKF": "f"}, None, {"Fill"}).line(text), written) for text, written in PROSE]
    cases.append(("an array", parsed('{"a;""",-1.5;#N/A,TRUE}'), [['a;"', -1.5], ["#N/A", True]]))
    readme = (ROOT / "README.md").read_text(encoding="utf-8")
    cases.append(("README's list", readme, with_list(readme, Help(source))))
    with tempfile.TemporaryDirectory() as first, tempfile.TemporaryDirectory(suffix=" elsewhere") as second:
        for folder in (first, second):
            subprocess.run([ROOT / "help/make_help.py", "--functions", source.resolve(), "--samples", samples.resolve(),
                            "--out", f"{folder}/help"], check=True, cwd=folder)
        made = pathlib.Path(first) / "help"
        cases += site(made / "html", functions, families, samples)
        cases += compiled(made / "Quillmere4.chm", functions, families)
        cases += argument_help(made / "Quillmere4.intellisense.xml", functions)
        cases += same(made, pathlib.Path(second) / "help")
    close(cases)


if __name__ == "__main__":
    main()
