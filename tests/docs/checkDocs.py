#!/usr/bin/env python3
"""Fails when the documentation has drifted from the tree.

A C++ block is a whole program of examples/, which are all built, so that it compiles as it stands: the line before it
says `<!-- from examples/first.cpp first -->`, and the block must equal what stands between two lines `// [first]` there.
Outside of these the file may only have comments. A path in backquotes that begins with a folder of this tree must exist.
So must a test that is named, as `Suite.test` or `check_function` of `tests/tool/...`, and each row of a table of attacks
must name one.
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
BLOCK = re.compile(r"(?:<!-- from (\S+) (\S+) -->\n)?```cpp\n(.*?)```", re.DOTALL)
PATH = re.compile(r"`((?:lumcommon|tests|fuzz|bench|examples|tools|scripts|docs|cmake)/[^`\s*<>]*)`")
TEST = re.compile(r"`([A-Z]\w+\.(?!md`)[a-z]\w+)`")
CHECK = re.compile(r"`(check_\w+)` of\s+`(tests/tool/\w+\.py)`")
ATTACKS = re.compile(r"^\| attack \|.*\n\|-.*\n((?:\|.*\n)+)", re.MULTILINE)
TEST_HEAD = re.compile(r"^TEST(?:_[FP])?\((\w+), (\w+)\)", re.MULTILINE)
TESTS = {".".join(head) for file in (ROOT / "tests").glob("*/*.cpp")
         for head in TEST_HEAD.findall(file.read_text(encoding="utf-8"))}


def marked(text, marker):
    """What stands between the markers, which must be all of the text but its comments."""
    parts = re.split(rf"^// \[{re.escape(marker)}\]\n", text, flags=re.MULTILINE)
    if len(parts) != 3:
        raise ValueError(f"there is no region [{marker}]")
    if re.search(r"^(?!//).*\S", parts[0] + parts[2], re.MULTILINE):
        raise ValueError(f"the region [{marker}] is not the whole program")
    return parts[1]


def faults(name, text):
    for path, marker, body in BLOCK.findall(text):
        if not path:
            yield f"{name}: a C++ block is not cut from a file: {body[:60]!r}"
            continue
        try:
            if not re.fullmatch(r"examples/\w+\.cpp", path):
                raise ValueError("it is not built as an example")
            wanted = marked((ROOT / path).read_text(encoding="utf-8"), marker)
        except (OSError, ValueError) as error:
            yield f"{name}: {path}: {error}"
            continue
        if wanted != body:
            yield f"{name}: the block from {path} [{marker}] differs from the file"
    for path in PATH.findall(text):
        if not (ROOT / path).exists():
            yield f"{name}: there is no {path}"
    for test in TEST.findall(text):
        if test not in TESTS:
            yield f"{name}: there is no test {test}"
    for function, path in CHECK.findall(text):
        if (ROOT / path).exists() and f"\ndef {function}(" not in (ROOT / path).read_text(encoding="utf-8"):
            yield f"{name}: there is no {function} in {path}"
    for table in ATTACKS.findall(text):
        for row in table.splitlines():
            if not re.search(r"\| (`[A-Z]\w+\.\w+`(, )?)+ \|$", row) and not CHECK.search(row):
                yield f"{name}: a row without a test: {row}"


def check_the_check():
    assert list(faults("x", "```cpp\nint a;\n```")), "a block from nowhere passes"
    assert list(faults("x", "<!-- from examples/first.cpp first -->\n```cpp\nint a;\n```")), "a changed block passes"
    for text in ("// [a]\nf();\n// [a]\nint b;\n", "int b;\n// [a]\nf();\n// [a]\n", "// [a]\nf();\n"):
        try:
            marked(text, "a")
        except ValueError:
            continue
        raise AssertionError("a piece of a program passes")
    assert list(faults("x", "see `docs/absent.md`")), "a lost file passes"
    assert list(faults("x", "`LargeTree.absent`")), "a lost test passes"
    assert list(faults("x", "`check_absent` of `tests/tool/lum_test.py`")), "a lost check passes"
    assert list(faults("x", "| attack | test |\n|---|---|\n| a | |\n")), "a row without a test passes"


def main():
    check_the_check()
    pages = sorted([*ROOT.glob("*.md"), *(ROOT / "docs").rglob("*.md"), *ROOT.glob("*/README.md")])
    found = [fault for page in pages for fault in faults(str(page.relative_to(ROOT)), page.read_text(encoding="utf-8"))]
    blocks = sum(len(BLOCK.findall(page.read_text(encoding="utf-8"))) for page in pages)
    assert blocks >= 5, "hardly any block was read"
    if found:
        print("\n".join(found))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
