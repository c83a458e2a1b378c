#!/usr/bin/env python3
"""Fails when the documentation has drifted from the tree.

A C++ block is a whole program of examples/, which are all built, so that it compiles as it stands: the line before it
says `<!-- from examples/first.cpp first -->`, and the block must equal what stands between two lines `// [first]` there.
Outside of these the file may only have comments. A path in backquotes that begins with a folder of this tree must exist,
and so must a page that is linked, and a test that is named, as `Suite.test` or `check_function` of `tests/tool/...`. Each
row of a table of attacks must name one. The table of the parser's codes must be that of the header; `checkDocs.py --pages`
puts it into the page.
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
BLOCK = re.compile(r"(?:<!-- from (\S+) (\S+) -->\n)?```cpp\n(.*?)```", re.DOTALL)
PATH = re.compile(r"`((?:lumcommon|tests|fuzz|bench|examples|tools|scripts|docs|cmake)/[^`\s*<>]*)`")
LINK = re.compile(r"\]\(([^)#:]+)(?:#[^)]*)?\)")
TEST = re.compile(r"`([A-Z]\w+\.(?!md`)[a-z]\w+)`")
CHECK = re.compile(r"`(check_\w+)` of\s+`(tests/tool/\w+\.py)`")
ATTACKS = re.compile(r"^\| attack \|.*\n\|-.*\n((?:\|.*\n)+)", re.MULTILINE)
TEST_HEAD = re.compile(r"^TEST(?:_[FP])?\((\w+), (\w+)\)", re.MULTILINE)
TESTS = {".".join(head) for file in (ROOT / "tests").glob("*/*.cpp")
         for head in TEST_HEAD.findall(file.read_text(encoding="utf-8"))}
CODE = re.compile(r"^ +(\w+) = (0x\w+), +///< (.*)$", re.MULTILINE)
CODES = re.compile(r"(?<=\| code \| constant \| cause \|\n\|---\|---\|---\|\n)(?:\|.*\n)*")
CODES_PAGE = ROOT / "docs/errors.md"


def code_rows():
    """The rows of the table of codes; what Markdown would take for markup is escaped."""
    header = (ROOT / "lumcommon/xml/LumXmlErrorCode.h").read_text(encoding="utf-8")
    rows = [(code, name, re.sub(r"[<*|]", r"\\\g<0>", cause)) for name, code, cause in CODE.findall(header)]
    assert len(rows) == len(re.findall(r"= 0x", header)) > 80, "a code has no cause, or the header another form"
    return "".join(f"| {code} | `{name}` | {cause} |\n" for code, name, cause in rows)


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
    for link in LINK.findall(text):
        if not (ROOT / name).parent.joinpath(link).exists():
            yield f"{name}: there is no {link} beside it"
    for test in TEST.findall(text):
        if test not in TESTS:
            yield f"{name}: there is no test {test}"
    for function, path in CHECK.findall(text):
        if (ROOT / path).exists() and f"\ndef {function}(" not in (ROOT / path).read_text(encoding="utf-8"):
            yield f"{name}: there is no {function} in {path}"
    for table in CODES.findall(text):
        if table != code_rows():
            yield f"{name}: the codes are not those of the header; checkDocs.py --pages puts them in"
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
    assert list(faults("x", "[a](absent.md)")), "a lost page passes"
    assert list(faults("x", "`LargeTree.absent`")), "a lost test passes"
    assert list(faults("x", "`check_absent` of `tests/tool/lum_test.py`")), "a lost check passes"
    assert list(faults("x", "| attack | test |\n|---|---|\n| a | |\n")), "a row without a test passes"
    head = "| code | constant | cause |\n|---|---|---|\n"
    assert list(faults("x", head)) and not list(faults("x", head + code_rows())), "a table of codes is not compared"


def main():
    check_the_check()
    if sys.argv[1:] == ["--pages"]:
        page = CODES_PAGE.read_text(encoding="utf-8")
        CODES_PAGE.write_text(CODES.sub(lambda _: code_rows(), page), encoding="utf-8")
    pages = sorted([*ROOT.glob("*.md"), *(ROOT / "docs").rglob("*.md"), *ROOT.glob("*/README.md")])
    found = [fault for page in pages for fault in faults(str(page.relative_to(ROOT)), page.read_text(encoding="utf-8"))]
    shown = {path for page in pages for path, _, _ in BLOCK.findall(page.read_text(encoding="utf-8"))}
    examples = {str(file.relative_to(ROOT)) for file in ROOT.glob("examples/*.cpp") if "\n// [" in file.read_text("utf-8")}
    found += [f"{path}: no page shows it" for path in sorted(examples - shown)]
    assert CODES.search(CODES_PAGE.read_text(encoding="utf-8")), "the table of codes is gone"
    if found:
        print("\n".join(found))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
