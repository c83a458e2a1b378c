"""What may include what: the table of docs/architecture.md, and what the sources really include."""
import collections
import pathlib
import re

ROOT = pathlib.Path(__file__).resolve().parents[2]
PAGE = ROOT / "docs/architecture.md"
INCLUDE = re.compile(r'^\s*#\s*include\s*[<"](lumcommon/[^>"]+)[>"]', re.MULTILINE)
CODE = re.compile(r"^(?!\s*(?://.*)?$|#pragma once$).+$", re.MULTILINE)


def read_rules(text):
    """The rooms in the order of the table "Rooms", each with the rooms that it may include."""
    section = re.search(r"^##+ Rooms$(.*?)(?=^##+ |\Z)", text, re.MULTILINE | re.DOTALL)
    rows = [[cell.strip() for cell in line.strip("|").split("|")]
            for line in section.group(1).splitlines() if line.startswith("|")][2:]
    names = re.compile(r"`([^`]+)/`")
    return {names.findall(row[0])[0]: names.findall(row[2]) for row in rows}


def room_of(path, rooms):
    """The innermost room that a path below lumcommon/ lies in; empty for the umbrella header and its source."""
    folder = pathlib.PurePosixPath(path).parent
    while str(folder) != "." and str(folder) not in rooms:
        folder = folder.parent
    return "" if str(folder) == "." else str(folder)


def is_address(path, source):
    """Whether a header only names the header of the same name in another room: for users, not an include."""
    includes = INCLUDE.findall(source)
    return len(CODE.findall(source)) == 1 and len(includes) == 1 and pathlib.PurePosixPath(includes[0]).name == path.name


def read_edges(rooms):
    """{(room, included room): [(file, include), ...]} over all sources, and the number of files."""
    edges = collections.defaultdict(list)
    files = 0
    for file in sorted((ROOT / "lumcommon").rglob("*")):
        if file.suffix not in (".h", ".cpp", ".inc"):
            continue
        files += 1
        source = file.read_text(encoding="utf-8")
        path = file.relative_to(ROOT / "lumcommon").as_posix()
        room = room_of(path, rooms)
        if not room or is_address(file, source):
            continue
        for include in INCLUDE.findall(source):
            target = room_of(include.removeprefix("lumcommon/"), rooms)
            if target != room:
                edges[room, target].append((path, include))
    return edges, files
