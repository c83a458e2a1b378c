"""Packages that the suite cannot write: further kinds, other spellings of targets, archives written as a stream."""
import io
import pathlib
import posixpath
import re
import subprocess
import tempfile
import zipfile

FIXED = (2020, 1, 2, 3, 4, 6)
CUSTOM_XML = "http://schemas.openxmlformats.org/officeDocument/2006/relationships/customXml"

# Result: document that it is made from, and the content type that its main part gets.
KINDS = {
    "kind04.dotm": ("latin.docx", "application/vnd.ms-word.template.macroEnabledTemplate.main+xml"),
    "kind08.xltm": ("japanese.xlsx", "application/vnd.ms-excel.template.macroEnabled.main+xml"),
    "kind09.xlsb": ("cyrillic.xlsx", "application/vnd.ms-excel.sheet.binary.macroEnabled.main"),
    "kind12.ppsx": ("cyrillic.pptx", "application/vnd.openxmlformats-officedocument.presentationml.slideshow.main+xml"),
    "kind13.ppsm": ("latin.pptx", "application/vnd.ms-powerpoint.slideshow.macroEnabled.main+xml"),
    "kind15.potm": ("japanese.pptx", "application/vnd.ms-powerpoint.template.macroEnabled.main+xml"),
    "kind16.thmx": ("cyrillic.pptx", "application/vnd.openxmlformats-officedocument.themeManager+xml"),
}


def members(path):
    with zipfile.ZipFile(path) as archive:
        return {name: archive.read(name) for name in archive.namelist()}


def pack(stream, parts, method=zipfile.ZIP_DEFLATED):
    with zipfile.ZipFile(stream, "w", method) as archive:
        for name, data in parts.items():
            info = zipfile.ZipInfo(name, FIXED)
            info.compress_type = method
            archive.writestr(info, data)


class Unseekable(io.RawIOBase):
    """A stream that can only be written on: the archive's writer must put sizes behind the data."""

    def __init__(self, path):
        self.file = open(path, "wb")

    def writable(self):
        return True

    def write(self, data):
        return self.file.write(data)

    def close(self):
        self.file.close()
        super().close()


def rewrite_kinds(folder):
    for name, (source, content_type) in KINDS.items():
        parts = members(folder / source)
        types = parts["[Content_Types].xml"].decode("utf-8")
        types, count = re.subn(r'ContentType="[^"]*(?:document|sheet|presentation)\.main\+xml"', f'ContentType="{content_type}"', types)
        assert count == 1, name
        parts["[Content_Types].xml"] = types.encode("utf-8")
        if source.endswith("pptx"):  # the layouts are big and say nothing about the kind
            parts = {part: data for part, data in parts.items() if "slide" not in part and "theme" not in part}
        with open(folder / name, "wb") as out:
            pack(out, parts)
    rewrite_targets(folder)


def rewrite_targets(folder):
    """Targets from the package root, as some libraries write all of theirs, and targets that climb to the root."""
    parts = members(folder / "latin.xlsx")
    for name in [name for name in parts if name.endswith(".rels")]:
        source = posixpath.dirname(posixpath.dirname(name))
        text = parts[name].decode("utf-8")
        absolute = re.sub(r'<Relationship (?![^>]*External)([^>]*)Target="([^"]*)"',
                          lambda match: f'<Relationship {match[1]}Target="{posixpath.join("/", source, match[2])}"', text)
        parts[name] = absolute.encode("utf-8")
    with open(folder / "absolute.xlsx", "wb") as out:
        pack(out, parts)

    parts = members(folder / "cyrillic.docx")
    rels = parts["word/_rels/document.xml.rels"].decode("utf-8")
    climbing = f'<Relationship Id="rIdUp1" Type="{CUSTOM_XML}" Target="../customXml/item1.xml"/>'
    beyond = f'<Relationship Id="rIdUp2" Type="{CUSTOM_XML}" Target="../../../customXml/item2.xml"/>'
    dotted = f'<Relationship Id="rIdUp3" Type="{CUSTOM_XML}" Target="./../word/./styles.xml"/>'
    parts["word/_rels/document.xml.rels"] = rels.replace("</Relationships>", climbing + beyond + dotted + "</Relationships>").encode("utf-8")
    parts["customXml/item1.xml"] = b"<item number='1'/>"
    parts["customXml/item2.xml"] = b"<item number='2'/>"
    with open(folder / "climbing.docx", "wb") as out:
        pack(out, parts)


def write_streamed(folder):
    """Members whose sizes stand behind their data, by two writers that real services use."""
    for name, source, method in (("streamed-python.docx", "latin.docx", zipfile.ZIP_DEFLATED),
                                 ("streamed-stored.docx", "latin.docx", zipfile.ZIP_STORED)):
        with Unseekable(folder / name) as out:
            pack(out, members(folder / source), method)
    # An archive inside an archive, not compressed: the inner descriptors lie between the outer header and descriptor.
    inner = {"inner.docx": (folder / "streamed-python.docx").read_bytes(), "after.txt": b"after the archive\n"}
    with Unseekable(folder / "streamed-nested.zip") as out:
        pack(out, inner, zipfile.ZIP_STORED)

    # `java FILE` compiles and runs a program of one file.
    with tempfile.TemporaryDirectory() as name:
        program = pathlib.Path(__file__).with_name("Streamed.java")
        for part, data in members(folder / "japanese.xlsx").items():
            target = pathlib.Path(name, part)
            target.parent.mkdir(parents=True, exist_ok=True)
            target.write_bytes(data)
        with open(folder / "streamed-java.xlsx", "wb") as out:
            subprocess.run(["java", str(program), name, *members(folder / "japanese.xlsx")], check=True, stdout=out)
