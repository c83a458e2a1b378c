#!/usr/bin/env python3
"""Lists and prints archives with the tool and compares with other readers of zip archives: Python's zipfile, and unzip
where it is installed. What is right for the packages of an office suite was written down beside them.
Usage: zip_test.py LUM FOLDER_OF_ARCHIVES FOLDER_OF_OFFICE_DOCUMENTS"""
import gzip
import hashlib
import io
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import xml.etree.ElementTree
import zipfile

LUM = os.path.abspath(sys.argv[1])
DATA = pathlib.Path(sys.argv[2]).resolve()
DOCUMENTS = pathlib.Path(sys.argv[3]).resolve()
TEMPORARY = tempfile.TemporaryDirectory(prefix="lum zip ")
FOLDER = pathlib.Path(TEMPORARY.name)
UNZIP = shutil.which("unzip")
ZIP = shutil.which("zip")
ENVIRONMENT = {**os.environ, "LC_ALL": "C.UTF-8"}
failures = []


def run(*arguments, stdin=b"", environment=None):
    return subprocess.run([LUM, *map(str, arguments)], input=stdin, capture_output=True, cwd=FOLDER, timeout=60,
                          env=environment or ENVIRONMENT)


def expect(fault, got, expected):
    if got != expected:
        failures.append(f"{fault}:\n  got      {str(got)[:500]!r}\n  expected {str(expected)[:500]!r}")


class OneWay(io.RawIOBase):
    """A target that cannot seek: zipfile then writes data descriptors."""

    def __init__(self, out):
        self.out = out

    def writable(self):
        return True

    def write(self, data):
        return self.out.write(data)


def make_archives():
    """Archives by the programs of this machine, besides the committed ones."""
    members = [("a.txt", b"hello " * 3000), ("dir/", b""), ("dir/\u00e9\u65e5.bin", bytes(range(256)) * 40),
               ("empty", b""), ("noise", os.urandom(70000))]
    for method in (zipfile.ZIP_STORED, zipfile.ZIP_DEFLATED):
        for is_streamed in (False, True):
            path = FOLDER / f"python{method}{is_streamed}.zip"
            with path.open("wb") as out, zipfile.ZipFile(OneWay(out) if is_streamed else out, "w", method) as archive:
                for name, data in members:
                    archive.writestr(name, data)
            yield path
    inner = (FOLDER / "python0True.zip").read_bytes()
    with zipfile.ZipFile(OneWay((FOLDER / "nested.zip").open("wb")), "w") as archive:
        archive.writestr("inner.zip", inner)  # its descriptors must not be taken for those of the outer archive
        archive.writestr("after", b"x")
    yield FOLDER / "nested.zip"
    with zipfile.ZipFile(OneWay((FOLDER / "zip64.zip").open("wb")), "w") as archive:
        for name, data in members:
            with archive.open(name, "w", force_zip64=True) as member:
                member.write(data)
    yield FOLDER / "zip64.zip"
    if ZIP:
        piped = subprocess.run(f"{ZIP} -q - -", shell=True, input=members[0][1] * 100, capture_output=True, check=True)
        (FOLDER / "infozip-piped.zip").write_bytes(piped.stdout)  # zip64: nobody knew how much would come
        yield FOLDER / "infozip-piped.zip"


def stored_name(info):
    """zipfile reads names without the mark of UTF-8 in its own charset; the library reads all in the platform's."""
    return info.filename if info.flag_bits & 0x800 else info.filename.encode("cp437").decode()


def check_archive(path):
    done = run("zip", "list", path)
    expect(f"{path.name} is not listed", (done.returncode, done.stderr), (0, b""))
    listed = [json.loads(line) for line in done.stdout.splitlines()]
    with zipfile.ZipFile(path) as archive:
        infos = archive.infolist()
        expect(f"{path.name}: listed otherwise than by zipfile", listed,
               [{"name": stored_name(i), "method": i.compress_type, "flags": i.flag_bits, "crc32": i.CRC,
                 "compressedSize": i.compress_size, "uncompressedSize": i.file_size,
                "methodName": {0: "stored", 8: "deflated"}[i.compress_type]} for i in infos])
        for info in infos:
            done = run("zip", "cat", path, stored_name(info))
            expect(f"{path.name}!/{info.filename}: other bytes than by zipfile", (done.returncode, done.stdout),
                   (0, archive.read(info)))
            if UNZIP and info.filename.isascii() and not info.is_dir() and info.file_size:
                judged = subprocess.run([UNZIP, "-p", path, info.filename.replace("[", "[[]")], capture_output=True, env=ENVIRONMENT)
                expect(f"{path.name}!/{info.filename}: other bytes than by unzip", done.stdout, judged.stdout)


def check_package(path):
    """Members, their bytes and the kind of document, as judged; relationships and content types have no command."""
    judged = (DOCUMENTS / "judge" / (path.name + ".tsv")).read_text(encoding="utf-8")
    rows = [re.sub(r"\\(\d{3})", lambda match: chr(int(match[1], 8)), line).split("\t") for line in judged.splitlines()]
    got = []
    for member in map(json.loads, run("zip", "list", path).stdout.splitlines()):
        data = run("zip", "cat", path, member["name"]).stdout
        got.append([member["name"], str(member["uncompressedSize"]), f"{member['crc32']:08x}", hashlib.sha256(data).hexdigest()])
    expect(f"{path.name}: other members than judged", got, [row[1:] for row in rows if row[0] == "member"])
    kind = json.loads(run("kind", path).stdout)
    expect(f"{path.name}: another kind than judged", ["kind", str(kind["ooxml"])], rows[-1])


def texts_in(path, part):
    """The texts of a part's elements by local name, and those of a user's properties by name."""
    with zipfile.ZipFile(path) as archive:
        root = xml.etree.ElementTree.fromstring(archive.read(part)) if part in archive.namelist() else []
    return {e.get("name", e.tag.split("}")[1]): "".join(e.itertext()) for e in root}


def check_properties(path):
    """The properties of a package, compared with what Python reads in its parts."""
    done = run("props", path)
    expect(f"{path.name} has no properties", (done.returncode, done.stderr), (0, b""))
    got = json.loads(done.stdout)
    core, app, user = (texts_in(path, f"docProps/{part}.xml") for part in ("core", "app", "custom"))
    expect(f"{path.name}: other properties", got["properties"], core)
    expect(f"{path.name}: other properties of the application", got["document"], app)
    shown = {True: "1", False: "0"}
    expect(f"{path.name}: other properties of the user", {k: shown.get(v, str(v)) for k, v in got["user"].items()}, user)
    expect(f"{path.name}: title and author", [got[key] for key in ("title", "author")],
           [core.get(key, "") for key in ("title", "creator")])


def check_hostile_properties():
    vt = "xmlns:vt='http://schemas.openxmlformats.org/officeDocument/2006/docPropsVTypes'"
    links = "".join("<vt:variant><vt:i4>1</vt:i4></vt:variant>" * 4 + f"<vt:variant><vt:lpwstr>{target}</vt:lpwstr></vt:variant>"
                    f"<vt:variant><vt:lpwstr>{place}</vt:lpwstr></vt:variant>" for target, place in (("u", ""), ("v", "p")))
    rows = [
        ("hyperlinks", f"<p {vt}><HLinks><vt:vector>{links}</vt:vector></HLinks></p>", 0, b""),
        ("what a part names is opened", "<!DOCTYPE p [<!ENTITY e SYSTEM '/etc/hostname'>]><p><Company>&e;</Company></p>", 1, b"0x183A"),
        ("no well-formed part", "<p><Company></p>", 1, b"0x1806"),
        ("a part inflates for ever", "<p><Company>" + "x" * (17 << 20) + "</Company></p>", 1, b"0x1844"),
    ]
    for fault, part, status, code in rows:
        with zipfile.ZipFile(FOLDER / "hostile.docx", "w", zipfile.ZIP_DEFLATED) as archive:
            archive.writestr("[Content_Types].xml", "<Types/>")
            archive.writestr("docProps/app.xml", part)
        done = run("props", "hostile.docx")
        expect(fault, (done.returncode, code in done.stderr), (status, True))
        if status == 0:
            expect(fault, json.loads(done.stdout)["hyperlinks"], ["u", "v", "p"])


def check_failures():
    (FOLDER / "no.zip").write_bytes(b"PK no archive")
    whole = (FOLDER / "python8False.zip").read_bytes()
    (FOLDER / "cut.zip").write_bytes(whole[:60])
    rows = [
        ("no such archive", ["list", "none.zip"], b"lum: error 0x1003: Cannot open file: none.zip (No such file or directory)\n"),
        ("no archive", ["list", "no.zip"], b"lum: error 0x1003: no.zip is no zip archive\n"),
        ("no member", ["cat", "cut.zip", "b"], b"lum: error 0x1003: cut.zip has no member b\n"),
        ("a cut member passes for a whole one", ["cat", "cut.zip", "a.txt"],
         b"lum: error 0x1006: Input stream error.\n"),
    ]
    for fault, arguments, message in rows:
        done = run("zip", *arguments)
        expect(fault, (done.returncode, done.stderr), (1, message))
    expect("no subcommand", run("zip").returncode, 2)
    expect("no seeking in a pipe", run("zip", "cat", "-", "a.txt", stdin=whole).stdout, b"hello " * 3000)
    ascii_only = {**ENVIRONMENT, "LC_ALL": "C"}
    done = run("zip", "cat", "python8False.zip", "dir/\u00e9\u65e5.bin", environment=ascii_only)
    expect("a member that the locale cannot name", (done.returncode, done.stdout), (0, bytes(range(256)) * 40))


def check_kind():
    document = b"<?xml version='1.0'?><!DOCTYPE p:r SYSTEM 'none.dtd'><p:r xmlns:p='urn:p'/>"
    root = {"name": "r", "namespace": "urn:p"}
    def kind(**known):
        return {"zip": False, "ooxml": 0, "gzip": False, "root": None, **known}

    damaged = io.BytesIO()
    with zipfile.ZipFile(damaged, "w") as archive:
        archive.writestr("_rels/.rels", "<Relationships")
    strict = io.BytesIO()
    with zipfile.ZipFile(DATA / "office.docx") as package, zipfile.ZipFile(strict, "w") as archive:
        for name in package.namelist():
            archive.writestr(name, package.read(name).replace(b"http://schemas.openxmlformats.org/officeDocument/2006",
                                                              b"http://purl.oclc.org/ooxml/officeDocument"))
    rows = [
        ("Strict package", strict.getvalue(), kind(zip=True, ooxml=1)),
        ("archive", (DATA / "office.odt").read_bytes(), kind(zip=True)),
        ("empty archive", b"PK\5\6" + bytes(18), kind(zip=True)),
        ("package", (DATA / "office.docx").read_bytes(), kind(zip=True, ooxml=1)),
        ("damaged package", damaged.getvalue(), kind(zip=True)),
        ("document", document, kind(root=root)),
        ("packed document", gzip.compress(document), kind(gzip=True, root=root)),
        ("no namespace", b"<a/>", kind(root={"name": "a", "namespace": ""})),
        ("text", b"some text", kind()),
        ("nothing", b"", kind()),
    ]
    for fault, content, expected in rows:
        (FOLDER / "kind").write_bytes(content)
        for file, stdin in (("kind", b""), ("-", content)):
            done = run("kind", file, stdin=stdin)
            expect(f"{fault} from {file}", (done.returncode, done.stderr), (0, b""))
            kind = json.loads(done.stdout or b"{}")
            expect(f"{fault} from {file}", {key: kind.get(key) for key in expected}, expected)
    expect("no such file", run("kind", "none").returncode, 1)


archives = sorted(p for p in DATA.iterdir() if zipfile.is_zipfile(p)) + list(make_archives())
expect("archives are missing", len(archives) >= 10, True)
for archive_path in archives:
    check_archive(archive_path)
packages = sorted(p for p in DOCUMENTS.iterdir() if zipfile.is_zipfile(p))
expect("packages are missing", len(packages) >= 28, True)
for package_path in packages:
    check_package(package_path)
    if package_path.suffix in (".docx", ".xlsx", ".pptx"):
        check_properties(package_path)
check_hostile_properties()
check_failures()
check_kind()
print("\n".join(failures) or f"{len(archives)} archives and {len(packages)} packages, all as expected")
sys.exit(1 if failures else 0)
