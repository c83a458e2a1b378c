"""Puts what was measured into the documentation, between lines that only these may be."""
import pathlib

import plot
import questions
from tables import markdown_table, other_rows, ratio_rows, use_rows

ROOT = pathlib.Path(__file__).resolve().parents[2]
PICTURE = ROOT / "docs/performance.svg"
END = "<!-- end of what scripts/bench wrote -->"
IN_README = {("events", "", "20M"), ("events", "", "95K"), ("tree", "build+free", "20M"), ("memory", "", "20M"),
             ("save", "", "20M")}


def between(page, name, body):
    """The page with `body` between the markers of that name."""
    begin = f"<!-- scripts/bench writes: {name} -->"
    before, found, rest = page.partition(begin)
    _, ended, after = rest.partition(END)
    if not found or not ended:
        raise ValueError(f"there is no place for {name}")
    return f"{before}{begin}\n{body}\n{END}{after}"


def rewrite(about, results, uses):
    path = ROOT / "README.md"
    short = [result for result in results if (result.asked, result.part, result.size) in IN_README]
    page = between(path.read_text(encoding="utf-8"), "ratios",
                   f"{about}.\n\n" + markdown_table(ratio_rows(short, questions.FIVE)))
    path.write_text(page, encoding="utf-8")
    path = ROOT / "docs/performance.md"
    page = between(path.read_text(encoding="utf-8"), "ratios",
                   f"{about}.\n\n" + markdown_table(ratio_rows(results, questions.ALL)))
    page = between(page, "others", markdown_table(other_rows(results)))
    page = between(page, "uses", markdown_table(use_rows(uses)))
    path.write_text(page, encoding="utf-8")
    PICTURE.write_text(plot.draw(results), encoding="utf-8")
