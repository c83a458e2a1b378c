#!/usr/bin/env python3
"""Prints a page of documentation as doxygen is to read it: scripts/docs has doxygen ask this for each.

    tools/docs/page.py docs/tree.md
    tools/docs/page.py --order          prints the names of all guides in the order in which README.md lists them

- A type or a member of one in backquotes (`LumValue`, `LumValue::parse()`) becomes a link to its reference; doxygen
  fails on a link to a member that does not exist.
- A heading has the anchor that links to it use elsewhere (`values.md#links`), which doxygen does not make by itself.
- The main page, docs/reference.md, gets the list of all guides: what is put into docs/ is found without being entered
  anywhere.
- The README gets another title than the site has.
- Code with an apostrophe is quoted twice, as doxygen takes one for the end of it.
- A word that only happens to be the namespace's name is not a link.
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
MAIN = ROOT / "docs" / "reference.md"
GUIDES = "<!-- scripts/docs lists the guides here -->"
TYPE = re.compile(r"^(?:class|struct|enum|enum class|namespace) (?:LUM_API )?(\w+)(?: final)?(?: :.*)? ?\{",
                  re.MULTILINE)


def types():
    headers = (file for file in (ROOT / "lumcommon").rglob("*.h")
               if "detail" not in file.parts and not file.name.endswith("Impl.h"))
    return {name for header in headers for name in TYPE.findall(header.read_text(encoding="utf-8"))} - {"LumCommon"}


def guides():
    """All guides but the main page, in the order in which README.md lists them; any others come last."""
    listed = re.findall(r"\]\(docs/([\w-]+\.md)\)", (ROOT / "README.md").read_text(encoding="utf-8"))
    order = {name: place for place, name in reversed(list(enumerate(listed)))}
    return sorted((file for file in MAIN.parent.glob("*.md") if file != MAIN),
                  key=lambda file: (order.get(file.name, len(listed)), file.name))


def guide_line(page):
    """A guide as a line of the main page: its title, and the first sentence under it."""
    text = page.read_text(encoding="utf-8")
    title = re.search(r"^# (.*)$", text, re.MULTILINE)
    if not title:
        raise SystemExit(f"{page}: a guide begins with a line '# Title'")
    paragraphs = re.split(r"\n\s*\n", re.sub(r"<!--.*?-->\n?", "", text[title.end():], flags=re.DOTALL).strip())
    first = next((part for part in paragraphs if re.match(r"(?!```)[\w`\"']", part)), "")
    sentence = re.split(r"(?<=[.:])\s", first.replace("\n", " "))[0].rstrip(".:")
    return f"- [{title[1]}]({page.name})" + (f": {sentence}." if sentence else "")


def linked(line, known):
    def link(match):
        if match[3] in known:
            return f"<code>[{match[1]}](@ref LumCommon::{match[2]})</code>"
        return match[0]
    line = re.sub(r"(^|[\s(])LumCommon(?=[\s,.;)]|:(?!:)|$)", r"\1%LumCommon", line)
    line = re.sub(r"(?<!`)(`[^`']*'[^`]*`)(?!`)", r"`\1`", line)
    return re.sub(r"(?<!`)`(((\w+)(?:::\w+)*)(?:\([^()`]*\))?)`(?!`)", link, line)


def anchor(page, heading):
    """The label of a heading; its second half is the usual one of Markdown."""
    words = re.sub(r"[^\w\s-]", "", heading.strip().lower())
    return page.stem.lower() + "--" + re.sub(r"\s", "-", words)


def heading_line(page, line, seen):
    line = re.sub(r"\bLumCommon\b", "%LumCommon", line)
    match = re.match(r"##+ (.*)", line)
    if not match:
        return line
    label = anchor(page, match[1])
    seen.append(label)
    count = seen.count(label) - 1
    return f"{line} {{#{label}{f'-{count}' if count else ''}}}"


def with_anchors(page, line):
    """Links to headings, of this page or of another in the same folder or one nearby, as doxygen has them."""
    def link(match):
        target = pathlib.Path(match[1]) if match[1] else page
        return f"](@ref {target.stem.lower()}--{match[2]})"
    return re.sub(r"\]\(([\w./-]+\.md)?#([\w-]+)\)", link, line)


def page_text(page):
    text = page.read_text(encoding="utf-8")
    if page == MAIN:
        text = text.replace(GUIDES, "\n".join(map(guide_line, guides())))
    elif page == ROOT / "README.md":
        text = text.replace("# LumCommon\n", "# Overview\n", 1)
    known = types()
    lines, seen, in_fence, in_block, after_blank = [], [], False, False, True
    for line in text.split("\n"):
        if line.startswith("```"):
            in_fence = not in_fence
        # Four spaces are code, unless they go on with what a list says.
        in_block = line.startswith("    ") and (in_block or after_blank)
        if in_fence or in_block:
            lines.append(line)
        elif line.startswith("#"):
            lines.append(heading_line(page, line, seen))
        else:
            lines.append(linked(with_anchors(page, line), known))
        after_blank = not line.strip()
    return "\n".join(lines)


if __name__ == "__main__":
    sys.stdout.reconfigure(encoding="utf-8")
    if sys.argv[1] == "--order":
        print(*(guide.relative_to(ROOT) for guide in guides()))
    else:
        sys.stdout.write(page_text(pathlib.Path(sys.argv[1]).resolve()))
