"""Compound files by libgsf's own writer: storages inside storages, stream sizes around every limit, and property sets
in the code pages of older programs, with hyperlinks, written here byte by byte from the published format."""
import os
import pathlib
import random
import struct
import subprocess
import tempfile
import uuid

SUMMARY = uuid.UUID("f29f85e0-4ff9-1068-ab91-08002b27b3d9")
DOCUMENT = uuid.UUID("d5cdd502-2e9c-101b-9397-08002b2cf9ae")
USER = uuid.UUID("d5cdd505-2e9c-101b-9397-08002b2cf9ae")
CODE_PAGES = {"latin": 1252, "japanese": 932, "cyrillic": 1251}
FIXED = 1577934246  # 2020-01-02T03:04:06Z, so that the writer's times do not depend on the day


def padded(data):
    return data + bytes(-len(data) % 4)


def text(value, code_page):
    data = value.encode(f"cp{code_page}", "replace") + b"\0"
    return struct.pack("<II", 30, len(data)) + padded(data)


def number(value, kind=3):
    return struct.pack("<Ii", kind, value) if kind == 3 else struct.pack("<IhH", kind, value, 0)


def dictionary(names, code_page):
    entries = b""
    for identifier, name in names.items():
        data = name.encode(f"cp{code_page}") + b"\0"
        entries += struct.pack("<II", identifier, len(data)) + data
    return padded(struct.pack("<I", len(names)) + entries)


def hyperlinks(pairs):
    """A counted block of six values a link: four numbers, the target, the place inside it."""
    block = b""
    for i, pair in enumerate(pairs):
        for value in (i + 1, 0x10, 0, 5):
            block += struct.pack("<Ii", 3, value)
        for value in pair:
            units = (value + "\0").encode("utf-16-le")
            block += struct.pack("<II", 31, len(units) // 2) + padded(units)
    block = struct.pack("<I", 6 * len(pairs)) + block
    return struct.pack("<II", 65, len(block)) + padded(block)


def property_set(*sections):
    head = struct.pack("<HHI16sI", 0xFFFE, 0, 0x00020006, bytes(16), len(sections))
    bodies = []
    at = len(head) + 20 * len(sections)
    for identifier, properties in sections:
        offset = 8 + 8 * len(properties)
        table = values = b""
        for key, value in properties:
            table += struct.pack("<II", key, offset + len(values))
            values += value
        body = struct.pack("<II", offset + len(values), len(properties)) + table + values
        head += identifier.bytes_le + struct.pack("<I", at)
        bodies.append(body)
        at += len(body)
    return head + b"".join(bodies)


def summary(words, page):
    properties = [(1, number(page, 2)), (2, text(words["title"], page)), (3, text(words["subject"], page)),
                  (4, text(words["author"], page)), (5, text(", ".join(words["keywords"]), page)),
                  (6, text(words["comments"], page)), (8, text(words["author"], page)), (9, text("17", page)),
                  (14, number(12)), (15, number(3456)), (16, number(-1)), (18, text("by hand", page)), (19, number(2))]
    return property_set((SUMMARY, properties))


def document_summary(words, page, links):
    named = {2: "_PID_HLINKS", 3: words["link"], 4: "Pages"}
    user = [(0, dictionary(named, page)), (1, number(page, 2)), (2, hyperlinks(links)), (3, text(words["text"], page)), (4, number(7))]
    return property_set((DOCUMENT, [(1, number(page, 2)), (15, text(words["company"], page))]), (USER, user))


def create(target, files):
    with tempfile.TemporaryDirectory() as name:
        for path, data in files.items():
            place = pathlib.Path(name, path)
            place.parent.mkdir(parents=True, exist_ok=True)
            place.write_bytes(data)
        for place in pathlib.Path(name).rglob("*"):
            os.utime(place, (FIXED, FIXED))
        top = list(dict.fromkeys(path.split("/")[0] for path in files))
        subprocess.run(["gsf", "createole", str(target), *top], check=True, capture_output=True, cwd=name)


def write_all(folder, languages, targets):
    for language, page in CODE_PAGES.items():
        words = languages[language]
        links = [(targets[0], ""), (targets[1], ""), (targets[2], words["title"]), ("", "place" * 3)]
        create(folder / f"codepage{page}.ole", {
            "WordDocument": bytes(600),
            "\x05SummaryInformation": summary(words, page),
            "\x05DocumentSummaryInformation": document_summary(words, page, links),
        })
        (folder / "judge" / f"codepage{page}.ole.links.tsv").write_text(
            "".join(f"link\t{part}\n" for pair in links for part in pair if part), encoding="utf-8")
    source = random.Random(7)
    files = {f"size {size}": source.randbytes(size) for size in (0, 1, 63, 64, 65, 511, 512, 513, 4095, 4096, 4097, 9000)}
    files |= {f"many/stream {i:02}": source.randbytes(i) for i in range(40)}
    files |= {f"a/b/c/d/{name}": source.randbytes(100) for name in ("x", "日本語の名前", "имя", "exactly thirty-one units long..")}
    files["a/x"] = b"another x"
    create(folder / "storages.ole", files)
