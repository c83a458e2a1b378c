#!/usr/bin/env python3
"""Fails where the library calls an operation of ICU's strings that loses text in silence when memory runs out.

Such a string becomes bogus instead of throwing, so it is made, copied and extended by the functions of
core/detail/CheckedText.h, or the result is handed to checked(). A call of which it is sure that it needs no memory, or
whose result may be bogus, is marked with "// unchecked: " and the reason, in its line or the one before.
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
SKIPPED = {"CheckedText.h"}
STRING = re.compile(r"\bUnicodeString&?\s+(\w+)(?=\s*[;=({,)])")
CHANGES = r"append|setTo|insert|replace|findAndReplace|trim|toLower|toUpper|toTitle|foldCase|setCharAt|reverse|padLeading"
BYTES = re.compile(r"\bstd::string&?\s+(\w+)")
# What needs no memory: an alias, and the state without text.
HARMLESS = re.compile(r"setTo\(false,|setToBogus\(")
# (what it is, expression; {names} stands for the strings of the file)
RULES = [
    ("a change", r"\b(?:{names})\s*(?:\.|->)\s*(?:" + CHANGES + r")\("),
    ("a change", r"\b(?:{names})\s*\+="),
    ("a change of a copy", r"\bUnicodeString\(\w[^()]*\)\s*\.\s*(?:" + CHANGES + r")\("),
    ("a part", r"\bUnicodeString\((?!false,)\w+, [^()]*(?:\(\))?[^()]*\)|\bUnicodeString \w+\((?!false,|true,)[\w.]+, [^)]*\)"),
    ("a conversion", r"\bfromUTF8\(|\bfromUTF32\(|\btoUTF8String\(|\btoUTF8\("),
    ("a copy on the heap", r"\bnew (?:icu::)?UnicodeString\b"),
    ("a sum", r"\b(?:{names})\s*\+\s*u['\"]|u\"\s*\+\s*(?:{names})\b"),
]


def findings(name, text, declared=""):
    names = set(STRING.findall(declared + text)) - set(BYTES.findall(text)) - {"operator"}
    lines = text.splitlines()
    for number, line in enumerate(lines):
        code = line.split("//")[0]
        before = lines[number - 1] if number else ""
        if "// unchecked: " in line + before or re.search(r"\bchecked\(", code + before.split("//")[0]):
            continue
        for what, expression in RULES:
            found = re.search(expression.replace("{names}", "|".join(names) or "$."), code)
            if found and not HARMLESS.search(code[found.start():]):
                yield f"{name}:{number + 1}: {what}: {line.strip()[:100]}"
                break


def check_the_check():
    start = "UnicodeString text;\n"
    bad = ["text.append(u'a');", "text += other;", "auto t = UnicodeString(text).trim();", "f(UnicodeString(text, 1, 2));",
           "bytes = text.toUTF8String(bytes);", "auto t = new UnicodeString;", "return text + u\"b\";"]
    for line in bad:
        assert list(findings("a.cpp", start + line)), f"not found: {line}"
    good = ["append(text, u'a');", "checked(text.trim());", "buffer.append(1);", "text.setTo(false, units, 3);",
            "text.append(c);  // unchecked: the room is reserved", "bytes += other;"]
    for line in good:
        assert not list(findings("a.cpp", start + line)), f"found: {line}"


def main():
    check_the_check()
    found = []
    files = sorted(file for suffix in ("*.cpp", "*.h") for file in (ROOT / "lumcommon").rglob(suffix))
    for file in files:
        if file.name in SKIPPED:
            continue
        own = file.with_suffix(".h")
        declared = own.read_text(encoding="utf-8") + "\n" if own != file and own.is_file() else ""
        found += findings(str(file.relative_to(ROOT)), file.read_text(encoding="utf-8"), declared)
    assert len(files) > 100, "hardly any file was found"
    print("\n".join(found) or f"{len(files)} files lose no text in silence")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
