"""Pretty printers of gdb for what the drawing database is made of.

usage: gdb -x scripts/quoin_gdb.py PROGRAM, or in gdb: source scripts/quoin_gdb.py

Points and vectors show their coordinates; a record (AcDbStub) its handle, kind, size and state; an
object id the record that it names. Nothing of the program is called, so that they work in a core
file, too.
"""

import gdb
import gdb.printing
import gdb.types

KIND_BYTES = 80  # enough for "  0", a line end and the kind's name


def kind_of(stub):
    """The record's name in the file: the value of its first tag; "" where that cannot be read."""
    size = min(int(stub["size"]), KIND_BYTES)
    if size == 0:
        return ""
    try:
        data = gdb.selected_inferior().read_memory(int(stub["data"]), size).tobytes()
    except gdb.MemoryError:
        return ""
    lines = data.split(b"\n")
    if len(lines) > 2 and lines[0].strip() == b"0":
        return lines[1].strip().decode("latin-1")
    # A binary file: a group code of one or two bytes 0, then text that ends with a byte 0.
    return data.lstrip(b"\0").split(b"\0")[0].decode("latin-1")


def shown_record(stub):
    handle = int(stub["handle"])
    states = [word for word in ("erased", "changed", "isNew") if bool(stub[word])]
    parts = [f"{handle:X}" if handle else "without handle", kind_of(stub),
             f"{int(stub['size'])} bytes", *("new" if word == "isNew" else word for word in states)]
    return ", ".join(part for part in parts if part)


class Coordinates:
    """AcGePoint3d and its like."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        kind = gdb.types.get_basic_type(self.value.type)  # a reference has no fields
        names = [field.name for field in kind.fields() if field.name in ("x", "y", "z")]
        return "(" + ", ".join(f"{float(self.value[name]):.17g}" for name in names) + ")"


class Record:
    """AcDbStub."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        return f"record {shown_record(self.value)}"


class ObjectId:
    """AcDbObjectId."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        stub = self.value["m_stub"]
        if int(stub) == 0:
            return "null id"
        try:
            return f"id of {shown_record(stub.dereference())}"
        except gdb.MemoryError:
            return f"id of a record that cannot be read, {int(stub):#x}"


def printers():
    collection = gdb.printing.RegexpCollectionPrettyPrinter("quoin")
    collection.add_printer("coordinates", "^AcGe(Point|Vector)[23]d$", Coordinates)
    collection.add_printer("record", "^AcDbStub$", Record)
    collection.add_printer("object id", "^AcDbObjectId$", ObjectId)
    return collection


gdb.printing.register_pretty_printer(gdb.current_objfile(), printers(), replace=True)
