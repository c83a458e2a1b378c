#!/usr/bin/env python3
"""Fills the column `suite` of pairs.tsv and cells.tsv: what a headless office suite displays for each number-format code and value.

    tests/data/xlsformat/make.py [--check]      --check changes nothing and fails when a text would change

Needs: soffice and gsf (Debian 12 packages libreoffice-calc-nogui, libgsf-bin). The tables are committed, so this runs only when rows
are added. Rows are facts: code, kind, value, system and expected are written by hand, and so is a reason wherever the
suite displays something else than expected (README.md tells the columns). A row without a reason must agree.
"""
import collections
import csv
import io
import pathlib
import re
import struct
import subprocess
import sys
import tempfile
import zipfile
from xml.sax.saxutils import escape, quoteattr

HERE = pathlib.Path(__file__).resolve().parent
TABLES = {"pairs.tsv": "reasons.tsv", "cells.tsv": "cells-reasons.tsv"}
COLUMNS = "code kind value system suite expected colour reason".split()
Row = collections.namedtuple("Row", COLUMNS)

MAIN = "http://schemas.openxmlformats.org/spreadsheetml/2006/main"
OFFICE = "http://schemas.openxmlformats.org/officeDocument/2006/relationships"
PACKAGE = "http://schemas.openxmlformats.org/package/2006"
TYPES = "application/vnd.openxmlformats-officedocument.spreadsheetml"
# As shown, UTF-8, comma, quotes around every text.
CSV = "csv:Text - txt - csv (StarCalc):44,34,76,1,,1033,false,false,true"


def read_table(path):
    lines = path.read_text(encoding="utf-8").split("\n")
    assert lines[0].split("\t") == COLUMNS and lines[-1] == "", "the first line names the columns"
    return [Row(*line.split("\t")) for line in lines[1:-1]]


def workbook(rows, system):
    """The bytes of a workbook: column A holds each row's value in its format, column B the row's number."""
    codes = list(dict.fromkeys(row.code for row in rows))
    formats = "".join(f"<numFmt numFmtId='{200 + i}' formatCode={quoteattr(code)}/>" for i, code in enumerate(codes))
    styles = "".join(f"<xf numFmtId='{200 + i}' applyNumberFormat='1' fontId='0' fillId='0' borderId='0' xfId='0'/>"
                     for i in range(len(codes)))
    cells = []
    for i, row in enumerate(rows, 1):
        style = codes.index(row.code) + 1
        if row.kind == "text":
            cell = f"<c r='A{i}' s='{style}' t='inlineStr'><is><t xml:space='preserve'>{escape(row.value)}</t></is></c>"
        else:
            cell = f"<c r='A{i}' s='{style}'><v>{float(row.value)!r}</v></c>"
        cells.append(f"<row r='{i}'>{cell}<c r='B{i}' t='inlineStr'><is><t>row {i}</t></is></c></row>")
    parts = {
        "[Content_Types].xml":
            f"<Types xmlns='{PACKAGE}/content-types'>"
            "<Default Extension='rels' ContentType='application/vnd.openxmlformats-package.relationships+xml'/>"
            f"<Override PartName='/xl/workbook.xml' ContentType='{TYPES}.sheet.main+xml'/>"
            f"<Override PartName='/xl/styles.xml' ContentType='{TYPES}.styles+xml'/>"
            f"<Override PartName='/xl/sheet1.xml' ContentType='{TYPES}.worksheet+xml'/></Types>",
        "_rels/.rels":
            f"<Relationships xmlns='{PACKAGE}/relationships'>"
            f"<Relationship Id='r1' Type='{OFFICE}/officeDocument' Target='xl/workbook.xml'/></Relationships>",
        "xl/_rels/workbook.xml.rels":
            f"<Relationships xmlns='{PACKAGE}/relationships'>"
            f"<Relationship Id='r1' Type='{OFFICE}/worksheet' Target='sheet1.xml'/>"
            f"<Relationship Id='r2' Type='{OFFICE}/styles' Target='styles.xml'/></Relationships>",
        "xl/workbook.xml":
            f"<workbook xmlns='{MAIN}' xmlns:r='{OFFICE}'><workbookPr date1904='{int(system == '1904')}'/>"
            "<sheets><sheet name='pairs' sheetId='1' r:id='r1'/></sheets></workbook>",
        "xl/styles.xml":
            f"<styleSheet xmlns='{MAIN}'><numFmts count='{len(codes)}'>{formats}</numFmts>"
            "<fonts count='1'><font><sz val='10'/><name val='Arial'/></font></fonts>"
            "<fills count='1'><fill><patternFill patternType='none'/></fill></fills><borders count='1'><border/></borders>"
            "<cellStyleXfs count='1'><xf numFmtId='0'/></cellStyleXfs>"
            f"<cellXfs count='{len(codes) + 1}'><xf numFmtId='0' xfId='0'/>{styles}</cellXfs></styleSheet>",
        "xl/sheet1.xml":
            f"<worksheet xmlns='{MAIN}'><cols><col min='1' max='1' width='250' customWidth='1'/></cols>"
            f"<sheetData>{''.join(cells)}</sheetData></worksheet>",
    }
    out = io.BytesIO()
    with zipfile.ZipFile(out, "w", zipfile.ZIP_DEFLATED) as package:
        for name, text in parts.items():
            package.writestr(name, "<?xml version='1.0' encoding='UTF-8'?>" + text)
    return out.getvalue()


def convert(folder, source, target):
    subprocess.run(["soffice", f"-env:UserInstallation=file://{folder}/profile", "--headless", "--convert-to", target,
                    "--outdir", str(folder), str(folder / source)], check=True, capture_output=True, timeout=300)


def values_arrived(rows, compound):
    """The suite must hold the very doubles of the table: its binary workbook stores all 64 bits of most of them."""
    records = subprocess.run(["gsf", "cat", str(compound), "Workbook"], check=True, capture_output=True).stdout
    got = {}
    at = 0
    while at + 4 <= len(records):
        kind, size = struct.unpack_from("<HH", records, at)
        at += 4
        if kind == 0x0203:  # NUMBER: row, column, style, value
            got[struct.unpack_from("<H", records, at)[0]] = struct.unpack_from("<d", records, at + 6)[0]
        elif kind == 0x027E:  # RK: row, column, style, 30 bits of a number and two flags
            row, _, _, packed = struct.unpack_from("<HHHi", records, at)
            value = packed >> 2 if packed & 2 else struct.unpack("<d", struct.pack("<Q", (packed & 0xFFFFFFFC) << 32))[0]
            got[row] = value / 100 if packed & 1 else value
        at += size
    for i, row in enumerate(rows):
        if row.kind == "number":
            assert got[i] == float(row.value), f"{row.value} arrived as {got[i]!r}"


def displayed(rows, system):
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        (folder / "pairs.xlsx").write_bytes(workbook(rows, system))
        convert(folder, "pairs.xlsx", CSV)
        convert(folder, "pairs.xlsx", "xls")
        values_arrived(rows, folder / "pairs.xls")
        records = list(csv.reader(io.StringIO((folder / "pairs.csv").read_text(encoding="utf-8"), newline="")))
        assert len(records) == len(rows)
        for i, record in enumerate(records, 1):
            assert record[1:] == [f"row {i}"], record
            assert not re.search(r"[\t\n]", record[0]), record
        return [record[0] for record in records]


def findings(rows, reasons):
    known = {line.split("\t")[0] for line in reasons.read_text(encoding="utf-8").splitlines()}
    seen = set()
    used = set()
    for row in rows:
        where = "\t".join(row[:4])
        if row[:4] in seen:
            yield f"twice: {where}"
        seen.add(row[:4])
        ids = set(row.reason.split()) - {"unsure"}
        used |= ids
        for unknown in sorted(ids - known):
            yield f"reason without a text: {unknown}: {where}"
        if ids and row.suite == row.expected:
            yield f"a reason although both agree: {where}"
        if not ids and row.suite != row.expected:
            yield f"no reason: {where}: suite [{row.suite}] expected [{row.expected}]"
    for unused in sorted(known - used - {"reason"}):
        yield f"reason that no row has: {unused}"


def fill(path, reasons, is_check):
    """Asks the suite about all rows of a table; returns whether there is a problem."""
    old = read_table(path)
    new = list(old)
    for system in ("1900", "1904"):
        places = [i for i, row in enumerate(old) if row.system == system]
        for place, text in zip(places, displayed([old[i] for i in places], system)):
            new[place] = old[place]._replace(suite=text)
    if not is_check:
        path.write_text("".join("\t".join(row) + "\n" for row in [COLUMNS, *new]), encoding="utf-8")
        old = new
    problems = list(findings(new, reasons)) + [f"changed: {a} to {b}" for a, b in zip(old, new) if a != b]
    print("\n".join(problems))
    agree = sum(row.suite == row.expected for row in new)
    print(f"{path.name}: {len(new)} pairs, {agree} displayed alike, {len(new) - agree} with reasons")
    return bool(problems)


def main():
    faults = [fill(HERE / table, HERE / reasons, "--check" in sys.argv) for table, reasons in TABLES.items()]
    return 1 if any(faults) else 0


if __name__ == "__main__":
    sys.exit(main())
