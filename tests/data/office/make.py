#!/usr/bin/env python3
"""Makes the office documents of this folder and the judge's results beside them.

    tests/data/office/make.py                   documents and judge/*.tsv again (saving dates change, so files do too)
    tests/data/office/make.py --judge           judge/*.tsv alone, from the documents that are here
    tests/data/office/make.py --check           fails when judge/*.tsv do not say what the judges say now
    tests/data/office/make.py --large FILE.xls [SHEETS]
                                                a workbook of 10 MB a sheet, so that its allocation table needs a chain

Needs: soffice (Debian 12 packages libreoffice-writer-nogui, -calc-nogui, -impress-nogui), gsf (libgsf-bin), java (a JDK
or JRE of version 11 or later), python3. README.md tells what each file is.
"""
import pathlib
import subprocess
import sys
import tempfile

import judge
import packages
import propertysets
import sources

HERE = pathlib.Path(__file__).resolve().parent

# Extension: the application whose source it is made from, and the suite's name of the format.
FILTERS = {
    "doc": ("text", "MS Word 97"),
    "dot": ("text", "MS Word 97 Vorlage"),
    "docx": ("text", "MS Word 2007 XML"),
    "dotx": ("text", "MS Word 2007 XML Template"),
    "docm": ("text", "MS Word 2007 XML VBA"),
    "xls": ("spreadsheet", "MS Excel 97"),
    "xlt": ("spreadsheet", "MS Excel 97 Vorlage/Template"),
    "xlsx": ("spreadsheet", "Calc MS Excel 2007 XML"),
    "xltx": ("spreadsheet", "Calc MS Excel 2007 XML Template"),
    "xlsm": ("spreadsheet", "Calc MS Excel 2007 VBA XML"),
    "ppt": ("presentation", "MS PowerPoint 97"),
    "pot": ("presentation", "MS PowerPoint 97 Vorlage"),
    "pps": ("presentation", "MS PowerPoint 97 AutoPlay"),
    "pptx": ("presentation", "Impress MS PowerPoint 2007 XML"),
    "potx": ("presentation", "Impress MS PowerPoint 2007 XML Template"),
    "pptm": ("presentation", "Impress MS PowerPoint 2007 XML VBA"),
}
# Every language has the plain formats; templates, shows and macro formats are spread over the languages.
PLAIN = ("doc", "xls", "ppt", "docx", "xlsx", "pptx")
ONCE = {"latin": ("dot", "xltx", "docm", "pptm"), "japanese": ("xlt", "potx", "xlsm", "pps"), "cyrillic": ("pot", "dotx")}


def convert(folder, source, extension, target=None):
    """Converts a flat source; the profile is new, so no name of a user or a machine gets in."""
    application, name = FILTERS[extension]
    subprocess.run(["soffice", f"-env:UserInstallation=file://{folder}/profile", "--headless", "--convert-to",
                    f"{extension}:{name}", "--outdir", str(folder), str(source)],
                   check=True, capture_output=True, timeout=1800)
    result = source.with_suffix("." + extension)
    result.rename(target or HERE / result.name)


def make_documents():
    (HERE / "judge").mkdir(exist_ok=True)
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        for language in sources.LANGUAGES:
            for extension in PLAIN + ONCE[language]:
                source = sources.write(folder, language, FILTERS[extension][0])
                convert(folder, source, extension)
    packages.rewrite_kinds(HERE)
    packages.write_streamed(HERE)
    propertysets.write_all(HERE, sources.LANGUAGES, sources.TARGETS)


def make_large(target, sheets):
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        convert(folder, sources.write_large(folder, sheets), "xls", target)
    assert target.stat().st_size > sheets * (8 << 20)


def main():
    if sys.argv[1:2] == ["--large"]:
        make_large(pathlib.Path(sys.argv[2]).resolve(), int(sys.argv[3]) if sys.argv[3:] else 1)
        return 0
    if not sys.argv[1:]:
        make_documents()
    return judge.run(HERE, write=sys.argv[1:] != ["--check"])


if __name__ == "__main__":
    sys.exit(main())
