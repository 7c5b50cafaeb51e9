"""A VBA project as Office keeps it ([MS-OVBA]): the sources of its modules, compressed, without the compiled form,
which Office makes anew."""
import struct

CODE_PAGE = "cp1252"
CHUNK = 4096
LONGEST_NAME = 31
# What VBA knows the book and its sheet by.
DOCUMENT_BASES = {"ThisWorkbook": "00020819-0000-0000-C000-000000000046",
                  "Sheet1": "00020820-0000-0000-C000-000000000046"}
OLE_AUTOMATION = r"*\G{00020430-0000-0000-C000-000000000046}#2.0#0#C:\Windows\System32\stdole2.tlb#OLE Automation"
# "Compile anew": the version that no compiled form has.
UNCOMPILED = bytes.fromhex("CC61FFFF000000")


def compressed(data):
    """MS-OVBA 2.4.1: a container of chunks, each a run of literal bytes and copies of what went before in the chunk."""
    chunks = (compressed_chunk(data[at:at + CHUNK]) for at in range(0, len(data), CHUNK))
    return b"\x01" + b"".join(chunks)


def compressed_chunk(chunk):
    body = bytearray()
    flags_at = 0
    places = {}  # of the last occurrences of three bytes, all of them in order
    at = token = 0
    while at < len(chunk):
        if token % 8 == 0:
            flags_at = len(body)
            body.append(0)
        offset, length = longest_copy(chunk, at, places.get(chunk[at:at + 3], ()))
        if length:
            bits = offset_bits(at)
            body += struct.pack("<H", (offset - 1) << (16 - bits) | (length - 3))
            body[flags_at] |= 1 << token % 8
        else:
            body.append(chunk[at])
        for passed in range(at, at + max(length, 1)):
            places.setdefault(chunk[passed:passed + 3], []).append(passed)
        at += max(length, 1)
        token += 1
    if len(body) > CHUNK:
        if len(chunk) < CHUNK:
            raise ValueError("the end of the data grows by compression past a chunk")
        return struct.pack("<H", 0x3FFF) + chunk
    return struct.pack("<H", 0xB000 | (len(body) - 1)) + body


def offset_bits(at):
    """How many bits of a copy token are its offset, which reaches back to the start of the chunk."""
    return max(4, (at - 1).bit_length())


def longest_copy(chunk, at, starts):
    """How far back the longest copy of what comes at a place begins, and its length; 0, 0 if there is none of three."""
    longest = min(len(chunk) - at, (0xFFFF >> offset_bits(at)) + 3)
    best = 0, 0
    for start in reversed(starts):
        length = 3
        while length < longest and chunk[start + length] == chunk[at + length]:
            length += 1
        if length > best[1]:
            best = at - start, min(length, longest)
    return best


def encrypted(data, seed, project_id):
    """MS-OVBA 2.4.3: the hexadecimal digits of the project's protection; anybody can read it."""
    key = sum(project_id.encode(CODE_PAGE)) & 0xFF
    result = [seed, seed ^ 2, seed ^ key]
    plain = key
    for byte in b"\7" * ((seed & 6) // 2) + struct.pack("<I", len(data)) + data:  # the first ones mean nothing
        result.append(byte ^ ((result[-2] + plain) & 0xFF))
        plain = byte
    return bytes(result).hex().upper()


def record(kind, content):
    return struct.pack("<HI", kind, len(content)) + content


def texts(kind, wide_kind, text):
    return record(kind, text.encode(CODE_PAGE)) + record(wide_kind, text.encode("utf-16-le"))


def number(kind, value):
    return record(kind, struct.pack("<I", value))


def module_records(name, is_document):
    """MODULE of the stream dir. The source begins where the stream does, since there is no compiled form."""
    return (texts(0x19, 0x47, name) + texts(0x1A, 0x32, name) + texts(0x1C, 0x48, "") + number(0x31, 0)
            + number(0x1E, 0) + record(0x2C, b"\xff\xff") + record(0x22 if is_document else 0x21, b"")
            + record(0x2B, b""))


def directory_stream(project, description, modules):
    """The stream dir before it is compressed."""
    english = 0x409
    return b"".join([
        number(0x01, 3),  # of 64-bit Windows
        number(0x02, english), number(0x14, english), record(0x03, struct.pack("<H", int(CODE_PAGE[2:]))),
        record(0x04, project.encode(CODE_PAGE)), texts(0x05, 0x40, description), record(0x06, b""), record(0x3D, b""),
        number(0x07, 0), number(0x08, 0),
        struct.pack("<HIIH", 0x09, 4, 1, 0),  # the version, whose length is not its length
        texts(0x0C, 0x3C, ""),
        texts(0x16, 0x3E, "stdole"),
        record(0x0D, struct.pack("<I", len(OLE_AUTOMATION)) + OLE_AUTOMATION.encode(CODE_PAGE) + bytes(6)),
        record(0x0F, struct.pack("<H", len(DOCUMENT_BASES) + len(modules))), record(0x13, b"\xff\xff"),
        *(module_records(name, True) for name in DOCUMENT_BASES), *(module_records(name, False) for name in modules),
        record(0x10, b"")])


def project_stream(project, project_id, modules):
    """The stream PROJECT: not protected, and visible."""
    lines = [f'ID="{project_id}"', *(f"Document={name}/&H00000000" for name in DOCUMENT_BASES),
             *(f"Module={name}" for name in modules), f'Name="{project}"', 'HelpContextID="0"',
             'VersionCompatible32="393222000"', f'CMG="{encrypted(bytes(4), 0x07, project_id)}"',
             f'DPB="{encrypted(bytes(1), 0x0E, project_id)}"', f'GC="{encrypted(bytes([0xFF]), 0x15, project_id)}"', "",
             "[Host Extender Info]", "&H00000001={3832D640-CF90-11CF-8E43-00A0C911005A};VBE;&H00000000", "",
             "[Workspace]", *(f"{name}=0, 0, 0, 0, C" for name in [*DOCUMENT_BASES, *modules])]
    return "".join(line + "\r\n" for line in lines).encode(CODE_PAGE)


def document_source(name):
    attributes = ["GlobalNameSpace = False", "Creatable = False", "PredeclaredId = True", "Exposed = True",
                  "TemplateDerived = False", "Customizable = True"]
    return "".join(f"Attribute VB_{line}\r\n" for line in
                   [f'Name = "{name}"', f'Base = "0{{{DOCUMENT_BASES[name]}}}"', *attributes])


def vba_project(project, project_id, description, modules):
    """The storage of a project: its name; its id, a GUID in braces; what it is; and the source of each module by name,
    with line ends as Windows has them."""
    for name in [project, *modules]:
        if not name.isidentifier() or len(name) > LONGEST_NAME:
            raise ValueError(f"{name}: no name for a project or module")
    sources = {name: document_source(name) for name in DOCUMENT_BASES} | modules
    names = b"".join(name.encode(CODE_PAGE) + b"\0" + name.encode("utf-16-le") + b"\0\0" for name in sources)
    streams = {name: compressed(source.encode(CODE_PAGE)) for name, source in sources.items()}
    directory = compressed(directory_stream(project, description, modules))
    return {"VBA": {"_VBA_PROJECT": UNCOMPILED, "dir": directory, **streams},
            "PROJECT": project_stream(project, project_id, modules), "PROJECTwm": names + b"\0\0"}
