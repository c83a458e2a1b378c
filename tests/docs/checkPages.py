#!/usr/bin/env python3
"""Fails when a page does not come to doxygen as tools/docs/page.py promises."""
import pathlib
import sys
import tempfile

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools" / "docs"))
import page

# What is written, and what doxygen reads.
LINES = [
    ("`LumValue::parse(text)` is a link",
     "<code>[LumValue::parse(text)](@ref LumCommon::LumValue::parse)</code> is a link"),
    ("`LumXmlErrorCode`, `NoSuchClass`, `LumZipFile.test`",
     "<code>[LumXmlErrorCode](@ref LumCommon::LumXmlErrorCode)</code>, `NoSuchClass`, `LumZipFile.test`"),
    ("an apostrophe in `version='1.0'`", "an apostrophe in ``version='1.0'``"),
    ("LumCommon: a library, `LumCommon::LumCommon`", "%LumCommon: a library, `LumCommon::LumCommon`"),
    ("[a](values.md#numbers-as-text), [b](#two-words)", "[a](@ref values--numbers-as-text), [b](@ref guide--two-words)"),
    ("## Two `Words`, here", "## Two `Words`, here {#guide--two-words-here}"),
    ("```\n`LumValue`\n```", "```\n`LumValue`\n```"),
    ("text\n\n    LumCommon `LumValue`", "text\n\n    LumCommon `LumValue`"),
    ("## Same\n## Same", "## Same {#guide--same}\n## Same {#guide--same-1}"),
]


def main():
    failed = 0
    with tempfile.TemporaryDirectory() as folder:
        guide = pathlib.Path(folder) / "guide.md"
        for written, wanted in LINES:
            guide.write_text(written, encoding="utf-8")
            read = page.page_text(guide)
            if read != wanted:
                failed = 1
                print(f"{written!r} is read as {read!r}")
        guide.write_text("# Writing tests\n\n<!-- a -->\nTests are\nshort. And so on.\n", encoding="utf-8")
        if page.guide_line(guide) != "- [Writing tests](guide.md): Tests are short.":
            failed = 1
            print(page.guide_line(guide))
    listed = page.page_text(page.MAIN)
    for file in page.MAIN.parent.glob("*.md"):
        if file != page.MAIN and f"]({file.name})" not in listed.split("## All guides")[1]:
            failed = 1
            print(f"{file.name} is not on the main page")
    return failed


if __name__ == "__main__":
    sys.exit(main())
