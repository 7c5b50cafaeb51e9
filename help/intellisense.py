"""The file that tells an argument-help add-in of functions while they are typed."""
import xml.etree.ElementTree as ElementTree

# The reader of the file passes over it without a word if this is any other.
NAMESPACE = "http://schemas.excel-dna.net/intellisense/1.0"


def write_intellisense(path, functions, help_file):
    """Writes visible functions with all their arguments, in registered order. Where a run's later arguments are
    registered without help, that of its first holds."""
    ElementTree.register_namespace("", NAMESPACE)
    root = ElementTree.Element(f"{{{NAMESPACE}}}IntelliSense")
    info = ElementTree.SubElement(root, f"{{{NAMESPACE}}}FunctionInfo")
    for function in functions:
        entry = ElementTree.SubElement(info, f"{{{NAMESPACE}}}Function", Name=function.name,
                                       Description=function.description, HelpTopic=f"{help_file}!{function.help_id}")
        helps = {name: line.help for line in function.lines for name in line.names}
        for argument in function.arguments:
            ElementTree.SubElement(entry, f"{{{NAMESPACE}}}Argument", Name=argument["name"],
                                   Description=helps[argument["name"]])
    ElementTree.indent(root, " ")
    path.write_bytes(ElementTree.tostring(root, "utf-8", xml_declaration=True) + b"\n")
