"""How gdb shows the library's strings, names, values, colours, lengths, pointers and nodes.

gdb loads this file by itself with the installed library, where its auto-load folder is under the same prefix; else
"source" it. print/r shows the plain members. Nothing in the program is called, so that core files are shown as well.
Built-in names are shown as their constants while the program has not asked for the string of one. Where the library has
been stripped of its symbols, they always are, and other names are numbers.
"""
import re

import gdb
import gdb.printing

UNITS = ["", "", "%", "em", "ex", "px", "cm", "mm", "in", "pt", "pc", "jpt", "q", "deg", "rad", "grad", "ms", "s", "hz",
         "khz", " (char)", " (quoted)", " (uri)", " (ident)", " (color)", "", "", "", "dpi", "twip", "pt2", "pt3"]
LAST_BUILTIN, FIRST_CHUNK, STRING_BYTES = 1597, 1024, 64
MARKERS = {0xFFFFFFFF: "transparent", 0xFE000000: "currentColor"}


def read(address, size):
    return bytes(gdb.selected_inferior().read_memory(address, size))


def read_number(address, size, signed=False):
    return int.from_bytes(read(address, size), "little", signed=signed)


def pointer_size():
    return gdb.lookup_type("void").pointer().sizeof


# A program has no debugging information about the fields of classes with virtual functions, whose tables are in the
# libraries, so these objects are read as they lie in memory: the pointer to the table, then the fields.


def text_at(address):
    """The text of a UnicodeString; None for a bogus one."""
    fields = address + pointer_size()  # length and flags, then the units; or the length, the capacity and a pointer
    flags = read_number(fields, 2, signed=True)
    if flags & 1:
        return None
    length = flags >> 5 if flags >= 0 else read_number(fields + 4, 4)
    if length == 0:
        return ""
    units = fields + 2 if flags & 2 else read_number(address + 3 * pointer_size() + pointer_size() % 8, pointer_size())
    return read(units, 2 * length).decode("utf-16-le", "replace")


def quoted(text):
    if text is None:
        return "(bogus)"
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"').replace("\n", "\\n") + '"'


def find(symbol):
    """The address of a variable inside the library; None where its symbols are stripped."""
    try:
        return int(gdb.parse_and_eval(f"(unsigned long)&'{symbol}'"))
    except gdb.error:
        return None


def name_of(number):
    if number == 0:
        return "(null name)"
    try:
        text = text_at(place_of_name(number))
    except (TypeError, gdb.error):  # no symbols, or no strings yet
        text = None
    if text:
        return text
    try:
        if number <= LAST_BUILTIN:
            return str(gdb.Value(number).cast(gdb.lookup_type("LumCommon::LumNameEnum")))
    except gdb.error:
        pass  # the program does not use names
    return f"name {number}"


def place_of_name(number):
    """Where the string of the name is."""
    if number <= LAST_BUILTIN:
        strings = read_number(find("LumCommon::detail::builtinNameStrings()::strings"), pointer_size())
        return strings + number * STRING_BYTES
    index = number - LAST_BUILTIN - 1 + FIRST_CHUNK
    chunk = index.bit_length() - FIRST_CHUNK.bit_length()
    chunks = find("LumCommon::(anonymous namespace)::sharedStore") + 8  # after two numbers
    strings = read_number(chunks + chunk * pointer_size(), pointer_size())
    return strings + (index - (FIRST_CHUNK << chunk)) * STRING_BYTES


class Printer:
    def __init__(self, value):
        self.value = value


class UnicodeStringPrinter(Printer):
    def to_string(self):
        return quoted(text_at(int(self.value.address)))


class NamePrinter(Printer):
    def to_string(self):
        return name_of(int(self.value["id_"]))


class ValuePrinter(Printer):
    def to_string(self):
        word, payload = int(self.value["typeWord_"]), self.value["payload_"]
        key = name_of(word >> 8) + ": " if word >> 8 else ""
        return key + self.content(word & 7, word >> 3 & 31, payload)

    @staticmethod
    def content(kind, unit, payload):
        if kind == 1:
            number = int(payload["integer"])
            return f"#{number:06X}" if unit == 24 else f"{number}{UNITS[unit]}"
        if kind == 2:
            return f"{float(payload['real']):g}{UNITS[unit]}"
        if kind == 3:
            return name_of(int(payload["name"])) + UNITS[unit]
        if kind == 4:
            return quoted(text_at(int(payload["pointer"]))) + UNITS[unit]
        if kind in (5, 7):
            return f"{'object' if kind == 5 else 'compound'} at {int(payload['pointer']):#x}{UNITS[unit]}"
        return "null"


class ColorPrinter(Printer):
    def to_string(self):
        rgb = int(self.value["rgb_"])
        text = MARKERS.get(rgb, f"#{rgb:06X}" if rgb <= 0xFFFFFF else "invalid")
        space, name = int(self.value["colorSpace_"]["id_"]), text_at(int(self.value["name_"].address))
        return text + (f" {name_of(space)}" if space else "") + (f" {quoted(name)}" if name else "")


class LengthPrinter(Printer):
    def to_string(self):
        points = float(self.value["points_"])
        return "no length" if points != points else f"{points:g}pt"


class PointerPrinter(Printer):
    def to_string(self):
        held = int(self.value["object_"])
        return f"{describe(held)} at {held:#x}, count {read_number(held + pointer_size(), 4)}" if held else "null"


def class_of(address):
    """The class of the object there, by its table of virtual functions; it needs no types of the library."""
    symbol = gdb.execute(f"info symbol {read_number(address, pointer_size())}", to_string=True)
    found = re.match(r"vtable for (?:LumCommon::)?(.+?) \+", symbol)
    return found.group(1) if found else "object"


def describe(address):
    """Of an element or an attribute of the library's own classes also the name; of others the class alone."""
    own = class_of(address)
    fields = address + 6 * pointer_size() + 8  # those after LumNode's
    rest = fields + pointer_size()
    if own in ("Element", "ElementNS"):
        line, prefix, local_name = (read_number(rest + offset, 4) for offset in (0, 12, 16))
        return f"{own} <{qualified(prefix, local_name)}>" + (f" in line {line}" if line < 0x80000000 else "")
    if own in ("Attr", "AttrNS"):
        prefix = read_number(rest + pointer_size() + 4, 4) if own == "AttrNS" else 0
        return f"{own} {qualified(prefix, read_number(rest, 4) >> 8)}"
    return own


def qualified(prefix, local_name):
    return (name_of(prefix) + ":" if prefix else "") + name_of(local_name)


class NodePrinter(Printer):
    def to_string(self):
        return describe(int(self.value.address))


def make_printers():
    printers = gdb.printing.RegexpCollectionPrettyPrinter("lumcommon")
    for name, pattern, printer in (
            ("UnicodeString", r"^(icu_\d+::UnicodeString|LumCommon::Lum(CStr|EmptyString|BogusString|Message))$",
             UnicodeStringPrinter),
            ("LumName", r"^LumCommon::LumName$", NamePrinter),
            ("LumValue", r"^LumCommon::Lum(Named)?Value$", ValuePrinter),
            ("LumColor", r"^LumCommon::LumColor$", ColorPrinter),
            ("LumLength", r"^LumCommon::LumLength$", LengthPrinter),
            ("LumPtr", r"^LumCommon::LumPtr<.*>$", PointerPrinter),
            ("LumNode", r"^LumCommon::(Lum(Node|Document(Fragment)?|Element|Attr|TextNode|PINode)|(Element|Attr)(NS)?)$",
             NodePrinter)):
        printers.add_printer(name, pattern, printer)
    return printers


gdb.printing.register_pretty_printer(gdb.current_objfile(), make_printers(), replace=True)
