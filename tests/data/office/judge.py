"""Asks the judges: libgsf's command for compound files, Python's zipfile and XML parser for packages."""
import hashlib
import posixpath
import re
import subprocess
import xml.etree.ElementTree as ElementTree
import zipfile
import zlib

COMPOUND = {".doc", ".dot", ".xls", ".xlt", ".ppt", ".pot", ".pps", ".ole"}
# The judge shows the preview picture by its address, and times of zero as some moment of 2009.
UNSTEADY = {"gsf:thumbnail", "gsf:last-printed", "meta:editing-duration"}
OFFICE_DOCUMENT = "http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument"
RELATIONSHIPS = "{http://schemas.openxmlformats.org/package/2006/relationships}Relationship"
CONTENT_TYPES = "{http://schemas.openxmlformats.org/package/2006/content-types}"
WORD, SHEET, SHOW = (f"application/vnd.openxmlformats-officedocument.{name}" for name in
                     ("wordprocessingml.", "spreadsheetml.", "presentationml."))
KINDS = {  # content type of the main part: number of the kind
    WORD + "document.main+xml": 1,
    "application/vnd.ms-word.document.macroEnabled.main+xml": 2,
    WORD + "template.main+xml": 3,
    "application/vnd.ms-word.template.macroEnabledTemplate.main+xml": 4,
    SHEET + "sheet.main+xml": 5,
    "application/vnd.ms-excel.sheet.macroEnabled.main+xml": 6,
    SHEET + "template.main+xml": 7,
    "application/vnd.ms-excel.template.macroEnabled.main+xml": 8,
    "application/vnd.ms-excel.sheet.binary.macroEnabled.main": 9,
    SHOW + "presentation.main+xml": 10,
    "application/vnd.ms-powerpoint.presentation.macroEnabled.main+xml": 11,
    SHOW + "slideshow.main+xml": 12,
    "application/vnd.ms-powerpoint.slideshow.macroEnabled.main+xml": 13,
    SHOW + "template.main+xml": 14,
    "application/vnd.ms-powerpoint.template.macroEnabled.main+xml": 15,
    "application/vnd.openxmlformats-officedocument.themeManager+xml": 16,
}


def escaped(text):
    """Control characters and the backslash as three octal digits, so that a row stays a line."""
    return re.sub(r"[\x00-\x1f\x7f\\]", lambda match: f"\\{ord(match[0]):03o}", text)


def digests(data):
    return f"{len(data)}\t{zlib.crc32(data):08x}\t{hashlib.sha256(data).hexdigest()}"


def gsf(*arguments):
    return subprocess.run(["gsf", *map(str, arguments)], check=True, capture_output=True).stdout


def property_value(shown):
    """A string is shown in quotes, each byte outside ASCII as an octal escape."""
    if not shown.startswith('"'):
        return shown
    escape = re.compile(rb"\\([0-7]{3}|.)")
    plain = {b"n": b"\n", b"t": b"\t", b"r": b"\r", b"b": b"\b", b"f": b"\f", b"v": b"\v"}
    data = escape.sub(lambda match: bytes([int(match[1], 8)]) if len(match[1]) == 3 else plain.get(match[1], match[1]),
                      shown[1:-1].encode())
    return data.decode("utf-8")


def compound(path):
    for line in gsf("list", path).decode("utf-8").splitlines()[1:]:
        kind, size, name = re.fullmatch(r"([fd]) +(?:\d{4}-\d\d-\d\d \d\d:\d\d:\d\d +)?(\d+) (.*)", line).groups()
        if kind == "d":
            yield f"storage\t{escaped(name)}"
        else:
            data = gsf("cat", path, name)
            assert len(data) == int(size), (path, name)
            yield f"stream\t{escaped(name)}\t{digests(data)}"
    listed = subprocess.run(["gsf", "listprops", str(path)], capture_output=True).stdout.decode("utf-8").splitlines()
    for name in listed:
        if name not in UNSTEADY:
            shown = gsf("props", path, name).decode("utf-8").rstrip("\n").split("\t= ", 1)[1]
            yield f"property\t{escaped(name)}\t{escaped(property_value(shown))}"


def source_of(relationship_part):
    folder, name = posixpath.split(relationship_part)
    return posixpath.join(posixpath.dirname(folder), name[: -len(".rels")])


def resolved(source, target):
    path = posixpath.normpath(posixpath.join("/", posixpath.dirname(source), target))
    return path.lstrip("/")


def package(path):
    with zipfile.ZipFile(path) as archive:
        names = archive.namelist()
        for entry in archive.infolist():
            yield f"member\t{escaped(entry.filename)}\t{digests(archive.read(entry))}"
        if "[Content_Types].xml" not in names:
            yield "kind\t0"
            return
        types = ElementTree.fromstring(archive.read("[Content_Types].xml"))
        by_part = {item.get("PartName").lstrip("/"): item.get("ContentType") for item in types.iter(CONTENT_TYPES + "Override")}
        by_extension = {"." + item.get("Extension"): item.get("ContentType") for item in types.iter(CONTENT_TYPES + "Default")}
        type_of = {name: by_part.get(name, by_extension.get("." + name.rpartition(".")[2] if "." in name else "", ""))
                   for name in names}
        main = ""
        for part in (name for name in names if name.endswith(".rels")):
            for item in ElementTree.fromstring(archive.read(part)).iter(RELATIONSHIPS):
                mode = item.get("TargetMode", "Internal")
                target = item.get("Target") if mode == "External" else resolved(source_of(part), item.get("Target"))
                if part == "_rels/.rels" and item.get("Type") == OFFICE_DOCUMENT:
                    main = target
                yield f"relationship\t{source_of(part)}\t{item.get('Id')}\t{item.get('Type')}\t{mode}\t{target}"
        for name in names:
            yield f"type\t{escaped(name)}\t{type_of[name]}"
        yield f"main\t{main}"
        yield f"kind\t{KINDS.get(type_of.get(main, ''), 0)}"


def run(folder, write):
    """Writes judge/NAME.tsv for every document of the folder, or compares; returns the exit code."""
    results = folder / "judge"
    results.mkdir(exist_ok=True)
    documents = [path for path in sorted(folder.iterdir()) if path.is_file() and path.suffix not in (".py", ".java", ".md")]
    different = 0
    for path in documents:
        text = "".join(line + "\n" for line in (compound if path.suffix in COMPOUND else package)(path))
        result = results / (path.name + ".tsv")
        if write:
            result.write_text(text, encoding="utf-8")
        elif not result.exists() or result.read_text(encoding="utf-8") != text:
            different += 1
            print(f"{result.name}: the judge says something else now")
    stale = {path.name for path in results.iterdir() if not path.name.endswith(".links.tsv")} - {path.name + ".tsv" for path in documents}
    print(f"{len(documents)} documents, {different} differ, {len(stale)} results without a document: {sorted(stale)}")
    return 1 if different or stale else 0
