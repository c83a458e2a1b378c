#!/usr/bin/env python3
"""Fails when an #include in lumcommon/ breaks the directions that docs/architecture.md allows.

The page holds two tables. "Folders" lists a folder and the folders that it may include; "Seams" lists the files that
may include further folders. What is read here is the page itself, so that the page cannot go out of date.
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
PAGE = ROOT / "docs/architecture.md"
INCLUDE = re.compile(r'^\s*#\s*include\s*[<"](lumcommon/[^>"]+)[>"]', re.MULTILINE)


def table(text, heading):
    """The rows below a heading, as lists of cells, without the head row."""
    section = re.search(rf"^##+ {heading}$(.*?)(?=^##+ |\Z)", text, re.MULTILINE | re.DOTALL)
    if not section:
        sys.exit(f"checkLayering: {PAGE.name} has no section {heading}")
    lines = [line for line in section.group(1).splitlines() if line.startswith("|")]
    return [[cell.strip() for cell in line.strip("|").split("|")] for line in lines[2:]]


def names(cell):
    return re.findall(r"`([^`]+)`", cell)


def read_rules(text):
    allowed = {}
    for row in table(text, "Folders"):
        folder = names(row[0])[0].rstrip("/")
        allowed[folder] = {name.rstrip("/") for name in names(row[2])} | {folder}
    seams = [(pattern, {name.rstrip("/") for name in names(row[1])})
             for row in table(text, "Seams") for pattern in names(row[0])]
    return allowed, seams


def crossings(path, source, allowed, seams):
    """The includes of one file that neither table allows. `path` is relative to lumcommon/."""
    parts = path.parts
    if len(parts) == 1:
        return []  # the umbrella header and its source stand above all folders
    permitted = set(allowed.get(parts[0], set()))
    for pattern, further in seams:
        if path.match(pattern):
            permitted |= further
    found = []
    for include in INCLUDE.findall(source):
        target = include.split("/")
        if len(target) < 3 or target[1] not in permitted:
            found.append(include)
    return found


def check_the_check(allowed, seams):
    """A rule that cannot fail proves nothing: these two rows show that it can, and that seams are needed."""
    upward = '#include <lumcommon/format/LumUtil.h>\n'
    assert crossings(pathlib.Path("core/LumError.cpp"), upward, allowed, seams), "an upward include is not seen"
    assert not crossings(pathlib.Path("dom/LumNode.h"), '#include <lumcommon/core/LumPtr.h>', allowed, seams)
    for pattern, further in seams:
        folder = pattern.split("/")[0]
        assert folder in allowed, f"the seam {pattern} names no folder"
        assert further - allowed[folder], f"the seam {pattern} is not needed: the folders allow it"


def main():
    allowed, seams = read_rules(PAGE.read_text(encoding="utf-8"))
    check_the_check(allowed, seams)
    failures = 0
    files = 0
    for file in sorted((ROOT / "lumcommon").rglob("*")):
        if file.suffix not in (".h", ".cpp", ".inc"):
            continue
        files += 1
        path = file.relative_to(ROOT / "lumcommon")
        if len(path.parts) > 1 and path.parts[0] not in allowed:
            print(f"lumcommon/{path}: its folder is not in the map of {PAGE.name}")
            failures += 1
        for include in crossings(path, file.read_text(encoding="utf-8"), allowed, seams):
            print(f"lumcommon/{path}: includes {include}, which {PAGE.name} does not allow")
            failures += 1
    assert files > 20, "hardly any file was found"
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
