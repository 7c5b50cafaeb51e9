"""Plain texts of the function table as HTML: paragraphs, with what is typed in a formula set as code, names of
functions as links and names of arguments marked."""
import html
import re

ERRORS = r"#(?:N/A|VALUE!|REF!|DIV/0!|NUM!|NAME\?|NULL!|CALC!|SPILL!)"
SAYING = re.compile(r'"[A-Za-z][^"]*\s\w[^"]*"')  # in quotes for being said, not for being typed
CLOSING = {"(": ")", "{": "}"}


class Prose:
    """Texts of one page: `links` are the files of functions by name, `own` the name of the page's function, which is no
    link there, and `words` the names of its arguments."""

    def __init__(self, links, own=None, words=()):
        names = "|".join(map(re.escape, sorted(links, key=len, reverse=True)))
        self.links, self.own, self.words = links, own, words
        self.token = re.compile("|".join([
            r"(?P<call>(?:(?<![\w.])=[A-Za-z][\w.]*|(?<![\w.=])[A-Z][A-Z0-9.]+)(?=\())",
            r'(?P<open>(?<![^\s(]){|")',  # a brace inside a word is one of a regular expression
            rf"(?P<error>{ERRORS})", rf"(?P<name>(?<![\w.])(?:{names})(?!\w|\.\w))", r"(?P<word>[A-Za-z]\w*)"]))

    def paragraphs(self, text):
        return "".join(f"<p>{self.line(part)}</p>\n" for part in re.split(r"\n\s*\n", text.strip()))

    def line(self, text):
        """The text without a paragraph around it."""
        result, at = [], 0
        while match := self.token.search(text, at):
            result.append(html.escape(text[at:match.start()], quote=False))
            piece, at = self.piece(text, match)
            result.append(piece)
        return "".join(result) + html.escape(text[at:], quote=False)

    def piece(self, text, match):
        """A token as HTML, and the place behind it."""
        found, end = match[0], match.end()
        if match["call"] or match["open"]:
            end = closed(text, end if match["call"] else match.start())
            if not end:
                return html.escape(found, quote=False), match.end()
            whole = text[match.start():end]
            return html.escape(whole, quote=False) if SAYING.fullmatch(whole) else code(whole), end
        if match["error"]:
            return code(found), end
        if match["name"] and found != self.own and not text[:match.start()].endswith("Excel's "):
            return f'<a href="{self.links[found]}">{found}</a>', end
        if match["word"] and found in self.words:
            return f'<span class="argument">{found}</span>', end
        return found, end


def code(text):
    return f"<code>{html.escape(text, quote=False)}</code>"


def closed(text, at):
    """The place behind what a bracket or quotation mark at a place closes; None if nothing does."""
    if text[at] == '"':
        end = text.find('"', at + 1)
        return end + 1 if end >= 0 and "\n" not in text[at:end] else None
    waiting = []
    while at < len(text):
        if text[at] == '"':
            at = closed(text, at)
            if not at:
                return None
            continue
        if text[at] in CLOSING:
            waiting.append(CLOSING[text[at]])
        elif text[at] == waiting[-1]:
            waiting.pop()
            if not waiting:
                return at + 1
        at += 1
    return None
