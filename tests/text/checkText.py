#!/usr/bin/env python3
"""Fails where the library makes, copies or changes a string of ICU in a way that loses the text when memory runs out:
such a string becomes bogus without a word. core/detail/CheckedText.h has the ways that throw, and checked() for the
result of any other. What surely needs no memory is marked with "// unchecked: " and the reason, in its line or the one
before.

C++ is not parsed. A variable's type is that of its nearest declaration above, a member's that in a header of its folder.
"""
import functools
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2] / "lumcommon"
CHECKED = "core/detail/CheckedText.h"
INLINE_UNITS = 27  # a string of ICU holds as many without memory

LITERAL = r'u"(?:\\.|[^"\\])*"'
DECLARATION = re.compile(r"\b((?:[\w:]+)(?:<[^;(){}]*?>)?[&*]*)\s+(\w+)\s*(?=[;={(,):\[])")
CONSTANT = re.compile(rf"\bconstexpr char16_t (\w+)\[\] =\s*({LITERAL})")
NOT_TYPES = {"return", "else", "case", "new", "throw", "using", "namespace", "class", "struct", "co_return", "delete",
             "goto", "typename", "operator", "const", "constexpr", "static", "inline"}
VARIABLE = r"(?<![\w.>:])(\w+)"
CHANGES = re.compile(VARIABLE + r"\s*(?:\.|->)\s*(?:append|insert|replace|replaceBetween|findAndReplace|setTo(?=\()|setCharAt|trim|reverse"
                     r"|toLower|toUpper|toTitle|foldCase|padLeading|padTrailing|remove\((?!\))|getBuffer\((?!\)))")
GROWS = re.compile(VARIABLE + r"\s*\+=")
SUM = re.compile(rf"{LITERAL}\s*\+(?![+=]|\s*std::)|[^+]\+\s*{LITERAL}")
SUM_OF_NAMES = re.compile(VARIABLE + r"\s*\+\s*(?![+=])|(?<!\+)\+\s*" + VARIABLE + r"\b(?!\s*[.(\[]|->|::)")
ASSIGNED_LITERAL = re.compile(VARIABLE + rf"\s*=\s*({LITERAL})")
MADE = re.compile(r"(new\s+)?\bUnicodeString(\s+\w+)?\s*\(")
ALWAYS = re.compile(r"\bnew\s+(?:icu::)?UnicodeString\b|UnicodeString::fromUTF(?:8|32)\b|\.toUTF8String\(")


def without_comments(text):
    def blank(match):
        token = match.group()
        return token if token[0] in "\"'uUL" else re.sub(r"[^\n]", " ", token)
    return re.sub(rf"//[^\n]*|/\*.*?\*/|{LITERAL}|\"(?:\\.|[^\"\\])*\"|'(?:\\.|[^'\\])+'", blank, text, flags=re.S)


def units_of(literal):
    return len(re.sub(r"\\(?:u\w{4}|U\w{8}|x\w+|.)", "x", literal[2:-1]))


def arguments_at(text, start):
    """What stands between the parenthesis before `start` and its partner."""
    depth = 1
    for match in re.compile(rf"{LITERAL}|\"(?:\\.|[^\"\\])*\"|'(?:\\.|[^'\\])+'|[()]").finditer(text, start):
        depth += {"(": 1, ")": -1}.get(match.group(), 0)
        if depth == 0:
            return text[start:match.start()].strip()
    return text[start:]


def declarations(text):
    """For each name the places of its declarations, in order, and whether each is of a string."""
    found = {}
    for match in DECLARATION.finditer(text):
        if match.group(1) not in NOT_TYPES:
            found.setdefault(match.group(2), []).append((match.start(2), match.group(1)))
    return found


def needs_no_memory(arguments, constants):
    literal = re.fullmatch(rf"({LITERAL})(?:, \d+)?", constants.get(arguments, arguments))
    if literal:
        return units_of(literal.group(1)) <= INLINE_UNITS
    return not arguments or re.match(
        r"(?:false|true), |std::move\(|(?:detail::)?(?:copyOf|textOf|joined)\(|static_cast<(?:UChar32|char16_t)>\(|u'", arguments)


def is_parameter_list(arguments):
    return re.match(r"(?:const\s+)?[\w:]+(?:<.*?>)?\s*[&*]*\s+[&*]*\w+|(?:const\s+)?[\w:]+\s*[&*]+\s*(?:,|=|$)", arguments)


def findings(source, members=()):
    text = without_comments(source)
    lines = source.splitlines()
    declared = declarations(text)
    constants = dict(CONSTANT.findall(text))

    def type_of(name, place):
        last = None
        for start, kind in declared.get(name, ()):
            if start <= place:
                last = kind
        return last or ("UnicodeString" if name in members else None)

    def is_string(name, place, kinds=("UnicodeString", "UnicodeString&")):
        return (type_of(name, place) or "").removeprefix("icu::") in kinds

    def is_checked(place):
        number = text.count("\n", 0, place)
        if any("// unchecked: " in line for line in lines[max(number - 1, 0):number + 1]):
            return True
        statement = max(text.rfind(mark, 0, place) for mark in ";{}")
        return re.search(r"\bchecked\($|\bchecked\([^;]*\($|\bchecked\([^;]*$", text[statement + 1:place])

    for match in ALWAYS.finditer(text):
        if not is_checked(match.start()):
            yield match.start(), match.group()
    for expression in (CHANGES, GROWS):
        for match in expression.finditer(text):
            kinds = ("UnicodeString*",) if "->" in match.group() else ("UnicodeString", "UnicodeString&")
            if is_string(match.group(1), match.start(), kinds) and not is_checked(match.start()):
                rest = text[match.end():match.end() + 200]
                if ("getBuffer" in match.group() and "bad_alloc" in rest) or rest.startswith(("(false, ", "(true, ")):
                    continue
                yield match.start(), match.group()
    for match in SUM.finditer(text):
        if not is_checked(match.start()):
            yield match.start(), match.group()
    for match in SUM_OF_NAMES.finditer(text):
        if is_string(match.group(1) or match.group(2), match.start()) and not is_checked(match.start()):
            yield match.start(), match.group()
    for match in ASSIGNED_LITERAL.finditer(text):
        if is_string(match.group(1), match.start()) and units_of(match.group(2)) > INLINE_UNITS:
            yield match.start(), match.group()
    for match in MADE.finditer(text):
        arguments = arguments_at(text, match.end())
        if (match.group(1) or needs_no_memory(arguments, constants) or is_parameter_list(arguments)
                or is_string(arguments, match.start(), ("char16_t", "UChar32")) or is_checked(match.start())):
            continue
        yield match.start(), match.group() + arguments + ")"


@functools.cache
def members_of(folder):
    names = set()
    for header in folder.glob("*.h"):
        for name, places in declarations(without_comments(header.read_text())).items():
            if name.endswith("_") and any(kind.removeprefix("icu::") == "UnicodeString" for _, kind in places):
                names.add(name)
    return names


def check_the_check():
    bad = ["UnicodeString t; t.append(x);", "UnicodeString t; t += x;", 'f(u"a" + t);', "UnicodeString t; f(t + x);",
           "new UnicodeString(t);", "UnicodeString t(x, 3);", "return UnicodeString(bytes);", "UnicodeString::fromUTF8(b);",
           'UnicodeString t; t = u"a text of more than 27 units, as a string has";', "UnicodeString t; t.trim();",
           "void f(UnicodeString* t) { t->remove(1); }"]
    good = ["std::string t; t.append(x);", "UnicodeString t; append(t, x);", "UnicodeString f(const UnicodeString& t);",
            "UnicodeString t; checked(t.trim());", 'UnicodeString t(u"short");', "return checked(UnicodeString(bytes));",
            "UnicodeString t; int n = t.length() + 1;", "UnicodeString t; t.remove();", "// t += x",
            "UnicodeString t; t.append(c);  // unchecked: room is reserved"]
    for text in bad:
        assert list(findings(text)), f"not found: {text}"
    for text in good:
        assert not list(findings(text)), f"a false alarm: {text}"


def main():
    check_the_check()
    found = []
    for path in sorted(ROOT.rglob("*")):
        name = str(path.relative_to(ROOT))
        if path.suffix not in (".h", ".cpp") or name == CHECKED:
            continue
        if len(sys.argv) > 1 and not name.startswith(tuple(sys.argv[1:])):
            continue
        text = path.read_text()
        members = members_of(path.parent) | (members_of(path.parent / "detail") if path.parent.name != "detail" else set())
        for place, what in findings(text, members):
            found.append(f"lumcommon/{name}:{text.count(chr(10), 0, place) + 1}: {' '.join(what.split())}")
    print("\n".join(found))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
