#!/usr/bin/env python3
"""Fails when an enumerator of a public header has no text of its own: the one kind of declaration that doxygen does not
ask about. scripts/docs runs it on doxygen's XML.

    tests/docs/checkEnumerators.py build/docs/xml
"""
import pathlib
import sys
import xml.etree.ElementTree as ElementTree


def enumerators(root):
    """(file:line of the enumeration, its name, the enumerator, its text)"""
    for enumeration in root.iterfind(".//memberdef[@kind='enum']"):
        if enumeration.get("prot") == "private":
            continue
        place = enumeration.find("location")
        for value in enumeration.iterfind("enumvalue"):
            text = "".join("".join(value.find(kind).itertext()) for kind in ("briefdescription", "detaileddescription"))
            yield f"{place.get('file')}:{place.get('line')}", enumeration.findtext("name"), value.findtext("name"), text


def main():
    read = {row for file in pathlib.Path(sys.argv[1]).glob("*.xml")
            for row in enumerators(ElementTree.parse(file).getroot())}
    assert len(read) > 300, "hardly any enumerator was read"
    missing = sorted(f"{place}: {name}::{value} has no text" for place, name, value, text in read if not text.strip())
    print("\n".join(missing), end="\n" if missing else "")
    return 1 if missing else 0


if __name__ == "__main__":
    sys.exit(main())
