"""What the help shows: the families and their visible functions, from the file that the build writes."""
import json
import re

START = "index.html"
SHOWN_WHOLE = 3  # a run of no more names is shown without leaving any out


class Line:
    """One line of a table of arguments: one argument, or those of a run of which the same is said."""

    def __init__(self, argument):
        self.names, self.help = [argument["name"]], argument["help"]
        self.default, self.choices = argument.get("default"), argument.get("choices", [])
        self.is_required = must_be_given(argument)

    def takes(self, argument):
        """Adds an argument of a later round, unless something else is said of it."""
        if argument["help"] not in ("", self.help) or must_be_given(argument) != self.is_required:
            return False
        self.names.append(argument["name"])
        return True


class Family:
    def __init__(self, said):
        self.name, self.title, self.introduction = said["name"], said["title"], said["introduction"]
        self.file, self.functions = f"family-{self.name}.html", []


class Function:
    """One visible function, with `family` a Family. What fields hold is told in function_pages.h of the generator."""

    def __init__(self, said, family):
        self.name = self.title = said["name"]
        self.family, self.help_id = family, said["helpId"]
        self.file = self.name.lower().replace(".", "-") + ".html"
        self.description, self.text = said["description"], said["page"]
        self.example, self.result, self.given = said.get("example"), said.get("result"), said.get("given")
        self.remarks, self.related = said["remarks"], said["related"]
        self.arguments = arguments_of(said)
        self.lines, self.syntax = [], []
        for run in runs(self.arguments):
            self.lines += lines_of(run)
            self.syntax += syntax_of(run)


class Help:
    """`families` in the order of their titles, each with its `functions` in the order of their help ids; `functions`,
    all of them in that order, and `by_name`."""

    def __init__(self, path):
        said = json.loads(path.read_text(encoding="utf-8"))
        families = {family["name"]: Family(family) for family in said["families"]}
        for function in said["functions"]:
            if function["type"] == "function":
                family = families[function["family"]]
                family.functions.append(Function(function, family))
        for family in families.values():
            family.functions.sort(key=lambda function: function.help_id)
        self.version = said["version"]
        self.families = sorted((family for family in families.values() if family.functions),
                               key=lambda family: family.title)
        self.functions = [function for family in self.families for function in family.functions]
        self.by_name = {function.name: function for function in self.functions}


def arguments_of(said):
    """The arguments, with those before a run of pairs as required: the pairs are about them, and a function that takes
    pairs says in its own words what is missing, so that they are not declared as required."""
    arguments = said["arguments"]
    first_round = [argument for argument in arguments if argument.get("round") == 1]
    if len(first_round) > 1:
        for argument in arguments[:arguments.index(first_round[0])]:
            argument["required"] = True
    return arguments


def must_be_given(argument):
    """Required, or one of some codes without a default: left out it is 0, which is none of them."""
    return argument.get("required", False) or (argument.get("only", False) and "default" not in argument)


def runs(arguments):
    """Splits arguments into lists: of one that stands alone, or of the rounds of a run."""
    result, last_round = [], 0
    for argument in arguments:
        this_round = argument.get("round", 0)
        if this_round == 0 or this_round < last_round or last_round == 0:
            result.append([])
        result[-1].append(argument)
        last_round = this_round
    return result


def each_round(run):
    return sum(argument.get("round", 1) == 1 for argument in run)


def lines_of(run):
    """The arguments at each place of the rounds follow one another, those of which something else is said on a line of
    their own."""
    result, step = [], each_round(run)
    for place in range(step):
        lines = []
        for argument in run[place::step]:
            if not lines or not lines[-1].takes(argument):
                lines.append(Line(argument))
        result += lines
    return result


def syntax_of(run):
    """How arguments are written in a formula: in brackets if they can be left out, of a run the first and the last."""
    written = [argument["name"] if must_be_given(argument) else f"[{argument['name']}]" for argument in run]
    step = each_round(run)
    if len(written) <= SHOWN_WHOLE * step:
        return written
    return [*written[:2 * step], "…", *written[-step:]]


def shortened(names):
    """The names of a line, as a reader needs them: Arg2, Arg3, … Arg28."""
    if len(names) <= SHOWN_WHOLE:
        return ", ".join(names)
    return f"{names[0]}, {names[1]}, … {names[-1]}"


def argument_words(function):
    """The names that its texts use for arguments: their own, and that of a run, such as ColN for Col1 to Col18."""
    words = {argument["name"] for argument in function.arguments}
    return words | {re.sub(r"\d+$", "N", argument["name"]) for argument in function.arguments if "round" in argument}
