"""Compound files ([MS-CFB], version 3): the container of streams in which Office keeps a VBA project."""
import struct

SECTOR = 512
SMALL_SECTOR = 64
SMALL_BELOW = 4096  # shorter streams lie together in one that has smaller sectors
END_OF_CHAIN, FREE, TABLE_SECTOR, NO_ENTRY = 0xFFFFFFFE, 0xFFFFFFFF, 0xFFFFFFFD, 0xFFFFFFFF
STORAGE, STREAM, ROOT = 1, 2, 5
TABLES_IN_HEADER = 109


class Entry:
    """One line of the directory; its place there is its number."""

    def __init__(self, name, kind):
        self.name, self.kind = name, kind
        self.left = self.right = self.child = NO_ENTRY
        self.is_red = False
        self.start, self.size = (END_OF_CHAIN if kind == ROOT else 0), 0

    def packed(self):
        name = self.name.encode("utf-16-le")
        return struct.pack("<64sHBBIII16sIQQIQ", name, len(name) + 2, self.kind, not self.is_red, self.left, self.right,
                           self.child, bytes(16), 0, 0, 0, self.start, self.size)


class Chains:
    """Sectors of one size, and the table that says of each which one goes on with its stream."""

    def __init__(self, sector):
        self.sector, self.next, self.data = sector, [], bytearray()

    def add(self, content):
        """The number of the first sector of what was added."""
        first, count = len(self.next), -(-len(content) // self.sector)
        if count == 0:
            return END_OF_CHAIN
        self.next += [*range(first + 1, first + count), END_OF_CHAIN]
        self.data += padded(content, self.sector)
        return first


def padded(content, size):
    return bytes(content) + bytes(-len(content) % size)


def packed_table(numbers):
    numbers = numbers + [FREE] * (-len(numbers) % (SECTOR // 4))
    return struct.pack(f"<{len(numbers)}I", *numbers)


def sibling_tree(entries, numbers):
    """Links the entries of one storage as a balanced red-black tree, ordered by length and then by capitals; the number
    of its root."""
    ordered = sorted(numbers, key=lambda number: (len(entries[number].name), entries[number].name.upper()))
    deepest = len(ordered).bit_length() - 1

    def link(low, high, depth):
        if low == high:
            return NO_ENTRY
        middle = (low + high) // 2
        entry = entries[ordered[middle]]
        # Only the deepest level has gaps: red there, all ways down have as many black entries.
        entry.is_red = depth == deepest > 0
        entry.left, entry.right = link(low, middle, depth + 1), link(middle + 1, high, depth + 1)
        return ordered[middle]

    return link(0, len(ordered), 0)


def directory_of(storage, small, large):
    """The entries of a dict of names to contents: bytes are a stream, a dict is a storage. The streams are added to the
    sectors."""
    entries = [Entry("Root Entry", ROOT)]

    def add(parent, contents):
        numbers = []
        for name, content in contents.items():
            numbers.append(len(entries))
            entry = Entry(name, STORAGE if isinstance(content, dict) else STREAM)
            entries.append(entry)
            if isinstance(content, dict):
                add(entry, content)
            else:
                entry.start, entry.size = (small if len(content) < SMALL_BELOW else large).add(content), len(content)
        parent.child = sibling_tree(entries, numbers)

    add(entries[0], storage)
    return entries


def compound_file(storage):
    """The bytes of a compound file that holds the storage: a dict of names to bytes and, for storages within, dicts.
    ValueError past some 7 MB."""
    small, large = Chains(SMALL_SECTOR), Chains(SECTOR)
    entries = directory_of(storage, small, large)
    entries[0].start, entries[0].size = large.add(small.data), len(small.data)
    directory = large.add(b"".join(map(Entry.packed, entries + [Entry("", 0)] * (-len(entries) % 4))))
    small_table = packed_table(small.next)
    small_start = large.add(small_table)

    # The table has a number for each of its own sectors too.
    tables = 1
    while tables * (SECTOR // 4) < len(large.next) + tables:
        tables += 1
    if tables > TABLES_IN_HEADER:
        raise ValueError("too long for the table of a compound file's header")
    first_table = len(large.next)
    table = packed_table(large.next + [TABLE_SECTOR] * tables)
    header = struct.pack("<8s16sHHHHH6x9I", bytes.fromhex("D0CF11E0A1B11AE1"), bytes(16), 0x3E, 3, 0xFFFE, 9, 6, 0,
                         tables, directory, 0, SMALL_BELOW, small_start, len(small_table) // SECTOR, END_OF_CHAIN, 0)
    places = [*range(first_table, first_table + tables)] + [FREE] * (TABLES_IN_HEADER - tables)
    return header + struct.pack(f"<{TABLES_IN_HEADER}I", *places) + bytes(large.data) + table
