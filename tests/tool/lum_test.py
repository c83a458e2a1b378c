#!/usr/bin/env python3
"""Runs the tool on small inputs and compares what it writes and how it ends.   Usage: lum_test.py LUM"""
import collections
import http.server
import io
import json
import os
import pathlib
import re
import resource
import subprocess
import sys
import tempfile
import threading
import time
import xml.etree.ElementTree
import zipfile

LUM = os.path.abspath(sys.argv[1])
TEMPORARY = tempfile.TemporaryDirectory(prefix="lum tool ")
FOLDER = pathlib.Path(TEMPORARY.name)
failures = []


def run(*arguments, stdin=b"", **options):
    return subprocess.run([LUM, *map(str, arguments)], input=stdin, capture_output=True, cwd=FOLDER, timeout=60, **options)


def expect(fault, got, expected):
    if got != expected:
        failures.append(f"{fault}:\n  got      {got!r}\n  expected {expected!r}")


def write(name, content):
    path = FOLDER / name
    path.write_bytes(content if isinstance(content, bytes) else content.encode())
    return path


def prints(fault, arguments, expected, stdin=b""):
    done = run(*arguments, stdin=stdin)
    expect(fault, (done.returncode, done.stdout.decode(errors="replace"), done.stderr), (0, expected, b""))


def events(*arguments, stdin=b""):
    done = run("events", *arguments, stdin=stdin)
    expect("events fails", (done.returncode, done.stderr), (0, b""))
    return [json.loads(line) for line in done.stdout.splitlines()]


def check_small_commands():
    rows = [
        ("version", ["version"], "309\n"),
        ("--version", ["--version"], "lum 3.9\n"),
        ("resolves against the file, not the folder", ["resolve", "http://h/a/b.xml", "../c.xml"], "http://h/c.xml\n"),
        ("built-in name", ["name", "block"], '{"id":303,"builtin":true}\n'),
        ("name made at run time", ["name", "no such name"], '{"id":1598,"builtin":false}\n'),
        ("empty name", ["name", ""], '{"id":0,"builtin":false}\n'),
        ("tokens", ["tokens", "12pt/a'b'"],
         '{"kind":-2,"text":"pt","number":12.0,"kindName":"number"}\n{"kind":47,"text":"","number":0.0,"kindName":"delimiter"}\n'
         '{"kind":-3,"text":"a","number":0.0,"kindName":"name"}\n{"kind":-5,"text":"b","number":0.0,"kindName":"string"}\n'),
        ("no token", ["tokens", "  "], ""),
        ("a sign taken for an option", ["tokens", "-1"],
         '{"kind":45,"text":"","number":0.0,"kindName":"delimiter"}\n{"kind":-2,"text":"","number":1.0,"kindName":"number"}\n'),
        ("text that looks like an option", ["tokens", "--", "-a"],
         '{"kind":45,"text":"","number":0.0,"kindName":"delimiter"}\n{"kind":-3,"text":"a","number":0.0,"kindName":"name"}\n'),
        ("length", ["value", "12pt"], '{"kind":2,"unit":9,"string":"12pt","kindName":"real","unitName":"pt"}\n'),
        ("digit by digit unless asked otherwise", ["kansuji", "p. 2024"], "p. \u4e8c\u3007\u4e8c\u56db\n"),
        ("--style", ["kansuji", "--style", "readable", "12345"], "\u4e00\u4e07\u4e8c\u5343\u4e09\u767e\u56db\u5341\u4e94\n"),
        ("--digits by name", ["kansuji", "--style=grouping", "--digits", "latin", "12000"], "\uff11\u4e07\uff12\uff10\uff10\uff10\n"),
        ("--digits as characters", ["kansuji", "--digits", "abcdefghij", "--", "-19"], "-bj\n"),
        ("locale", ["lang", "chi-Hant-TW"],
         '{"name":"zh_Hant_TW","language":"zh","script":"Hant","country":"TW","variant":""}\n'),
        ("no language", ["lang", "none"], '{"name":"","language":"","script":"","country":"","variant":""}\n'),
        ("script by its code", ["script", "Thai"], '{"script":"Thai","code":38,"letter":"\u0e01","named":true}\n'),
        ("script by a tag", ["script", "ja-JP"], '{"script":"Jpan","code":-8,"letter":"\u3042","named":true}\n'),
        ("script of text", ["script", "1. \u0416"], '{"script":"Cyrl","code":8,"letter":"\u0410","named":false}\n'),
        ("quoted string", ["value", " 'a b' "], '{"kind":4,"unit":21,"string":"a b","kindName":"string","unitName":"quoted"}\n'),
        ("empty value", ["value", ""], '{"kind":4,"unit":0,"string":"","kindName":"string","unitName":"none"}\n'),
        ("keyword form", ["color", "--svg", "#f00"],
         '{"rgb":"00FF0000","space":"","name":"","components":[],"string":"red"}\n'),
        ("icc-color", ["color", "--icc", "--svg", "red icc-color(#GRAYSCALE,.1)"],
         '{"rgb":"00FF0000","space":"#GRAYSCALE","name":"","components":[0.1],'
         '"string":"red icc-color(#GRAYSCALE,0.1)"}\n'),
        ("ink", ["color", "rgb-icc(#SEPARATION, 'Gold', 50%, 0,.2,1,0)"],
         '{"rgb":"00808080","space":"#SEPARATION","name":"Gold","components":[0.5,0.0,0.2,1.0,0.0],'
         '"string":"rgb-icc(#SEPARATION,\\"Gold\\",0.5,0,0.2,1,0)"}\n'),
        ("plain text", ["value", "a b \u65e5"], '{"kind":4,"unit":0,"string":"a b \u65e5","kindName":"string","unitName":"none"}\n'),
        ("a line a number", ["number", "(i)", "4", "-1", "4000"], "(iv)\n(-1)\n(4000)\n"),
        ("language and format in UTF-8", ["number", "--lang", "sv-SE", "\u3014a", "27"], "\u3014\u00e5\n"),
        ("groups", ["number", "--separator", ",", "--size", "3", "1", "1234567"], "1,234,567\n"),
        ("octal", ["number", "", "010"], "10\n"),
        ("cells", ["xlsformat", "0.00;[Red](0.00)", "2.675", "-5"],
         '{"text":"2.68","color":null,"section":0}\n{"text":"(5.00)","color":"FF0000","section":1}\n'),
        ("date system forgotten", ["xlsformat", "--1904", "yyyy-mm-dd", "0"],
         '{"text":"1904-01-01","color":null,"section":0}\n'),
        ("number taken for a text", ["xlsformat", "--text", "0;0;0;[Blue]<@>", "12"],
         '{"text":"<12>","color":"0000FF","section":3}\n'),
        ("failure hidden", ["xlsformat", "--contract", "[>5]0", "1e0"], '{"text":"","color":null,"section":-2}\n'),
        ("the rules of the steps", ["xlsformat", "[>5]# ?/?", "0.93"], '{"text":"0.93","color":null,"section":-2}\n'),
        ("bytes taken for units", ["xlsformat", "0\u5186", "5"], '{"text":"5\u5186","color":null,"section":0}\n'),
    ]
    for fault, arguments, expected in rows:
        prints(fault, arguments, expected)


def check_file_names():
    """A file is found under its own name, whatever its name would mean as a URI, and so is what stands beside it."""
    write("a%20b #1.xml", "<a/>")
    (FOLDER / "in").mkdir()
    write("in/e.ent", "beside")
    write("in/doc.xml", "<!DOCTYPE a [<!ENTITY e SYSTEM 'e.ent'>]><a>&e;</a>")
    expect("the name is decoded", len(events("a%20b #1.xml")), 3)
    expect("an entity beside the document", events("in/doc.xml")[1]["text"], "beside")
    expect("a URI that is no file's name", len(events(f"file://{str(FOLDER).replace(' ', '%20')}/a%2520b #1.xml")), 3)
    write("\u00e9.xml", "<a/>")
    expect("escapes of UTF-8, on this machine",
           len(events(f"file://localhost{str(FOLDER).replace(' ', '%20')}/%C3%A9.xml")), 3)
    prints("the name of the output is decoded", ["save", "in/doc.xml", "c%41 d.xml"], "")
    expect("output", (FOLDER / "c%41 d.xml").exists(), True)
    prints("cat decodes the name", ["cat", "a%20b #1.xml"], "<a/>")


def check_events():
    document = b"<?xml version='1.0'?><!--c--><p:a xmlns:p='urn:x' b='1&amp;2'>t<![CDATA[u]]><e/></p:a>"
    path = write("a b.xml", document)
    coalesced = events(path)
    expect("standard input reads otherwise than a file", events("-", stdin=document), coalesced)
    expect("order of events", [e["event"] for e in coalesced],
           ["START_TAG", "TEXT", "START_TAG", "END_TAG", "END_TAG", "END_DOCUMENT"])
    expect("keys of a tag", list(coalesced[0]),
           ["event", "depth", "line", "column", "prefix", "name", "namespace", "empty", "attributes"])
    expect("keys of another event", list(coalesced[1]), ["event", "depth", "line", "column", "text"])
    expect("names of a tag", [coalesced[0][key] for key in ("prefix", "name", "namespace", "empty", "depth")],
           ["p", "a", "urn:x", False, 1])
    expect("attributes", coalesced[0]["attributes"][1], {"prefix": "", "name": "b", "namespace": "", "value": "1&2"})
    expect("empty element", [(e["name"], e["empty"]) for e in coalesced[2:5]], [("e", True), ("e", True), ("a", False)])
    expect("text of neighbours joined", coalesced[1]["text"], "tu")
    tokens = [(e["event"], e.get("text")) for e in events("--tokens", path)]
    expect("--tokens hides or joins", [t for t in tokens if t[0] in ("COMMENT", "TEXT", "CDSECT")],
           [("COMMENT", "c"), ("TEXT", "t"), ("CDSECT", "u")])
    expect("--encoding does not reach the parser", events("--encoding", "ISO-8859-1", "-", stdin=b" <a>\xe9</a>")[1]["text"],
           "\u00e9")
    undeclared = run("events", "--feature", "1", "--feature", "allow-undeclared-prefix", "-", stdin=b"<a q:b='&none;'/>")
    expect("--feature does not reach the parser", undeclared.returncode, 0)
    wrong, declared = b"<a><? p?></a>", b"<!DOCTYPE a [<!ATTLIST a b CDATA 'c'>]><a/>"
    expect("--conforming does not reach the parser",
           [run("events", *option, "-", stdin=wrong).returncode for option in ((), ("--conforming",))], [0, 1])
    expect("--conforming does not reach the document",
           b'<a b="c"/>' in run("save", "--conforming", "-", stdin=declared).stdout, True)
    strange = b"<!DOCTYPE a [<!ENTITY x SYSTEM '/etc/hostname'>]><a>&x;</a>"
    refused = [run(*command, "-", stdin=strange)
               for command in (["--untrusted", "events"], ["events", "--untrusted"], ["save", "--untrusted"])]
    expect("what a document names is opened", [(d.returncode, b"0x183A" in d.stderr) for d in refused], [(1, True)] * 3)
    deep = run("--untrusted", "save", "-", stdin=b"<a>" * 10001)
    expect("--untrusted has no limits", b"0x183B" in deep.stderr, True)
    os.mkfifo(FOLDER / "waits")  # whoever opens it waits for ever
    (FOLDER / "names.xml").write_text("<!DOCTYPE a [<!ENTITY % p SYSTEM 'waits'>%p;]><a/>")
    expect("kind opens what the file names", json.loads(run("kind", "names.xml").stdout)["root"]["name"], "a")
    limited = [run(*command, "--limit", "depth=off", "--limit", "depth=1", "-", stdin=b"<a><b/></a>")
               for command in (["events"], ["save"], ["save", "--lazy"])]
    expect("--limit does not reach the parser, or is not told", [(d.returncode, d.stderr[-19:]) for d in limited],
           [(1, b"Col 5. (limit depth)\n"[-19:])] * 3)
    text = "x\udd1ey\"\\/\t\n\x7f\x80" + "a long run " * 4 + "\u65e5\U0001d11e" + "\udd1e"
    lone = events("-", stdin=b"\xff\xfe" + f"<a>{text}</a>".encode("utf-16-le", "surrogatepass"))
    expect("escapes, or a lone surrogate that breaks the line", lone[1]["text"],
           text.replace("\udd1e", "\ufffd"))
    long_name, long_text = "n" * 300, "x" + "\U0001d11e\n\"" * 30000
    longest = events("-", stdin=f"<{long_name} a='v'>{'<e>' * 100}{long_text}{'</e>' * 100}</{long_name}>".encode())
    expect("what fits in no block", (longest[0]["name"], longest[0]["attributes"][0]["value"], longest[101]["text"]),
           (long_name, "v", long_text))
    expect("depth", [e["depth"] for e in longest[:101]], list(range(1, 102)))


DOCUMENT = ('<?xml version="1.0"?><!-- gone --><a xmlns="urn:u" xmlns:p="urn:p" p:b="1&lt;2">\n t &amp; \u65e5'
            '<b xmlns=""><c/></b><p:d>x<e/>y</p:d></a>')
SAVED = ('<a p:b="1&lt;2" xmlns="urn:u" xmlns:p="urn:p">\n t &amp; \u65e5<b xmlns=""><c/></b><p:d>x<e/>y</p:d></a>')


def check_save():
    path = write("doc.xml", DOCUMENT)
    for lazily in ([], ["--lazy"]):
        save = ["save", "--no-generator", *lazily]
        prints(f"{lazily} saved otherwise", [*save, path], '<?xml version="1.0"?>' + SAVED)
        prints(f"{lazily} standard input", [*save, "-"], '<?xml version="1.0"?>' + SAVED, stdin=DOCUMENT.encode())
        prints(f"{lazily} to a file", [*save, "--encoding", "utf-8", path, "o u t.xml"], "")
        expect("file", (FOLDER / "o u t.xml").read_text(encoding="utf-8"),
               '<?xml version="1.0" encoding="UTF-8"?>' + SAVED)
        done = run(*save, "--encoding", "shift_jis", path)
        expect("Shift_JIS", done.stdout,
               ('<?xml version="1.0" encoding="SHIFT_JIS"?>' + SAVED).encode("cp932"))
        with_generator = run("save", *lazily, path).stdout
        expect("generator", with_generator.startswith(b'<?xml version="1.0"?><!-- Lumset V3.9 R1 '), True)
        prints("an empty root gets content", [*save, "-"], '<?xml version="1.0"?><a/>', stdin=b"<a></a>")
        broken = run(*save, "-", stdin=b"<a><b></a>")
        expect("an error is not told", (broken.returncode, broken.stderr[:18]), (1, b"lum: error 0x1806:"))
    expect("a second save differs", run("save", "--no-generator", FOLDER / "o u t.xml").stdout.decode(),
           '<?xml version="1.0"?>' + SAVED)
    link, rights = FOLDER / "link.xml", 0o640
    link.symlink_to(path.name)
    path.chmod(rights)
    prints("onto its own input", ["save", "--no-generator", path, link], "")
    expect("the file behind the link", path.read_text(encoding="utf-8"), '<?xml version="1.0"?>' + SAVED)
    expect("link or rights are lost", (link.is_symlink(), path.stat().st_mode & 0o777), (True, rights))
    full = {"restore_signals": False, "preexec_fn": lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (10, 10))}
    done = run("save", path, path, **full)
    expect("a full disk is not told", (done.returncode, done.stderr), (1, b"lum: error 0x1007: Output stream error.\n"))
    expect("a full disk loses the document", path.read_text(encoding="utf-8"), '<?xml version="1.0"?>' + SAVED)
    expect("a full disk leaves a file", list(FOLDER.glob(".lum-*")), [])
    path.write_text(DOCUMENT, encoding="utf-8")
    expect("--lazy onto its own input", run("save", "--lazy", path, path).returncode, 2)
    expect("the refused input is changed", path.read_text(encoding="utf-8"), DOCUMENT)


def check_bounded_memory():
    """A document whose tree is far larger than the memory that the tool may have."""
    row = b"<r n='1'><c>some text of a cell</c><c>and more</c></r>\n"
    path = FOLDER / "large.xml"
    with path.open("wb") as out:
        out.write(b"<t><body>")
        for _ in range(40):
            out.write(row * 5000)
        out.write(b"</body></t>")
    options = {}
    if b"__asan_init" not in pathlib.Path(LUM).read_bytes():  # the shadow of a sanitizer exceeds any limit
        limit = 32 << 20
        options["preexec_fn"] = lambda: resource.setrlimit(resource.RLIMIT_DATA, (limit, limit))
        done = run("save", path, "copy.xml", **options)
        expect("the limit proves nothing", (done.returncode, done.stderr), (1, b"lum: error 0x0801: Out of memory.\n"))
    done = run("save", "--lazy", "--no-generator", path, "copy.xml", **options)
    expect("--lazy keeps what it has written", (done.returncode, done.stderr), (0, b""))
    expect("--lazy loses content", (FOLDER / "copy.xml").stat().st_size,
           path.stat().st_size + len('<?xml version="1.0"?>'))


class Handler(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        body = ARCHIVE.getvalue() if self.path == "/a.zip" else b"served"
        self.send_response(404 if self.path == "/no" else 200)
        self.end_headers()
        self.wfile.write(body)

    def log_message(self, *arguments):
        pass


ARCHIVE = io.BytesIO()


def check_scarce_memory():
    """Under any limit a save is whole, or says that it is not."""
    write("scarce.xml", "<r>" + f"<e a='{'v' * 9000}'>{'t' * 40000}</e>" * 150 + "</r>")
    whole = run("save", "scarce.xml").stdout
    outcomes = set()
    for megabytes in range(24, 400, 4):
        limit = megabytes << 20
        done = run("save", "scarce.xml", preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_AS, (limit, limit)))
        if done.returncode not in (0, 1) or b"Sanitizer" in done.stderr:
            continue  # not even the libraries have room, or a sanitizer's tables
        outcomes.add((done.returncode, done.stdout == whole or done.stderr))
        if done.returncode == 0:
            break
    expect("a document is lost without a word", outcomes <= {(0, True), (1, b"lum: error 0x0801: Out of memory.\n")}, True)


def check_resources():
    inner = io.BytesIO()
    with zipfile.ZipFile(inner, "w", zipfile.ZIP_DEFLATED) as archive:
        archive.writestr("m", "inner")
    with zipfile.ZipFile(ARCHIVE, "w", zipfile.ZIP_DEFLATED) as archive:
        archive.writestr("d/a b", "outer")
        archive.writestr("in.zip", inner.getvalue())
    zip_file = write("a.zip", ARCHIVE.getvalue())
    every_byte = write("all bytes", bytes(range(256)) * 1000)
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    host = f"http://127.0.0.1:{server.server_port}"
    rows = [
        ("a file is changed", every_byte, every_byte.read_bytes()),
        ("a relative path is not taken", "all bytes", every_byte.read_bytes()),
        ("file:", every_byte.as_uri(), every_byte.read_bytes()),
        ("http:", host + "/x", b"served"),
        ("member of an archive", f"jar:{zip_file.as_uri()}!/d/a b", b"outer"),
        ("archive in an archive", f"jar:{zip_file.as_uri()}!/in.zip!/m", b"inner"),
        ("archive of a server", f"jar:{host}/a.zip!/in.zip!/m", b"inner"),
        ("base64", "data:text/plain;charset=utf-8;BASE64,AP/+8A==", b"\x00\xff\xfe\xf0"),
        ("escaped bytes", "data:,a%00%C3%A9 b", b"a\x00\xc3\xa9 b"),
        ("characters that are not escaped", "data:;base64x,\u65e5", "\u65e5".encode()),
        ("no bytes", "data:,", b""),
    ]
    for fault, uri, expected in rows:
        done = run("cat", uri)
        expect(fault, (done.returncode, done.stdout, done.stderr), (0, expected, b""))
    expect("standard input", run("cat", "-", stdin=b"\x00a").stdout, b"\x00a")
    rows = [
        ("missing file", "none", b"none (No such file or directory)"),
        ("no reason given", host + "/no", host.encode() + b"/no (HTTP status is 404 Not Found)"),
        ("https:", "https://127.0.0.1/", b"https://127.0.0.1/ (No http scheme)"),
        ("missing member", f"jar:{host}/a.zip!/x", f"jar:{host}/a.zip!/x".encode()),
        ("no comma", "data:a", b"data:a (no comma before the data)"),
    ]
    for fault, uri, what in rows:
        done = run("cat", uri)
        expect(fault, (done.returncode, done.stdout, done.stderr),
               (1, b"", b"lum: error 0x1003: Cannot open file: " + what + b"\n"))
    server.shutdown()
    server.server_close()


def check_tree_and_stats():
    document = ("<p:r xmlns:p='urn:p' w='12pt' c='#f00' t='50%'>\n<a>tab\t\x7f\u20ac</a><a p:q='x y'><b/></a></p:r>")
    prints("tree", ["tree", "--text", "5", "-"], """p:r
  @xmlns:p "urn:p"  namespace
  @w "12pt"  length in pt
  @c "#f00"  color
  @t "50%"  percentage
  a
    "tab\\t\\u007f"...
  a
    @p:q "x y"  string
    b
""", stdin=document.encode())
    path = FOLDER / "large.xml"
    root = xml.etree.ElementTree.parse(path).getroot()
    names = collections.Counter(e.tag for e in root.iter())
    texts = [text for e in root.iter() for text in (e.text, e.tail) if text]
    got = json.loads(run("stats", "--json", path).stdout)
    expect("stats", [got[key] for key in ("elements", "attributes", "depth", "texts", "textUnits")],
           [sum(names.values()), sum(len(e.attrib) for e in root.iter()), 4, len(texts), sum(map(len, texts))])
    expect("names by frequency", {n["name"]: n["count"] for n in got["elementNames"]}, names)
    expect("most frequent first", got["elementNames"][0]["name"], "c")
    expect("memory of a node", 50 < got["bytesPerNode"] < 1000, True)
    small = json.loads(run("stats", "--json", "-", stdin=document.encode()).stdout)
    expect("stats of a small document", [small[key] for key in ("namespaces", "namespaceDeclarations", "largestText", "bytesPerNode")],
           [[{"namespace": "urn:p", "count": 2}], 1, {"units": 6, "line": 2}, None])
    table = run("stats", "--top", "1", path).stdout.decode()
    expect("table", [line for line in table.splitlines() if " elements" in line or "names of" in line],
           [f"{sum(names.values()):12}  elements", "           4  elements deep", f"names of elements (1 of {len(names)})", "names of attributes"])


def on_terminal(arguments, environment=None, seconds=0, is_piped=True):
    """What the tool writes to a terminal at standard error, and at standard output too unless that is a pipe, which is
    read after so many seconds."""
    ours, theirs = os.openpty()
    process = subprocess.Popen([LUM, *map(str, arguments)], stdin=subprocess.DEVNULL, cwd=FOLDER, stderr=theirs,
                               stdout=subprocess.PIPE if is_piped else theirs, env={**os.environ, "TERM": "xterm", **(environment or {})})
    os.close(theirs)
    time.sleep(seconds)
    piped = process.stdout.read() if is_piped else b""
    shown = b""
    try:
        while block := os.read(ours, 65536):
            shown += block
    except OSError:
        pass  # nobody has it open any more
    os.close(ours)
    process.wait(60)
    return piped, shown.decode().replace("\r\n", "\n")


def check_terminal():
    try:
        for end in os.openpty():
            os.close(end)
    except OSError as error:  # in a chroot without /dev/pts, say, where nobody has a terminal
        print(f"colours and progress were not looked at: {error}")
        return
    plain = {"NO_COLOR": "1"}
    red = '{"rgb":"00FF0000","space":"","name":"","components":[],"string":"#FF0000"}'
    write("small.xml", "<a b='1'>t</a>")
    rows = [
        ("colour", ["color", "red"], {}, f"{red}  \033[48;2;255;0;0m      \033[0m\n"),
        ("NO_COLOR", ["color", "red"], plain, red + "\n"),
        ("no colours", ["color", "red"], {"TERM": "dumb"}, red + "\n"),
        ("tree", ["tree", "small.xml"], {}, '\033[1;34ma\033[0m\n  \033[36m@b\033[0m "1"  \033[2minteger\033[0m\n'
                                            '  \033[32m"t"\033[0m\n'),
        ("tree without colours", ["tree", "small.xml"], plain, 'a\n  @b "1"  integer\n  "t"\n'),
    ]
    for fault, arguments, environment, expected in rows:
        expect(fault + " on a terminal", on_terminal(arguments, environment, is_piped=False)[1], expected)
        expect(fault + " in a pipe", b"\033" in run(*arguments).stdout, False)
    size = (FOLDER / "large.xml").stat().st_size / 1e6
    whole = run("events", "large.xml").stdout
    piped, shown = on_terminal(["events", "large.xml"], seconds=2.6)
    expect("progress spoils the output", piped == whole, True)
    expect(f"progress: {shown!r}", bool(re.fullmatch(
        rf"(\rlum: [\d.]+ MB of {size:.1f} MB, \d+ %, \d+ s left, [\d.]+ MB/s\033\[K)+\r\033\[K", shown)), True)
    expect("progress of what is quick", on_terminal(["events", "small.xml"])[1], "")
    process = subprocess.Popen([LUM, "events", "large.xml"], cwd=FOLDER, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    time.sleep(2.4)
    expect("progress where there is no terminal", process.communicate(timeout=60)[1], b"")


def check_failures():
    write("two.xml", "<a/><b/>")
    rows = [
        ("no command", [], 2, None),
        ("unknown command", ["frob"], 2, None),
        ("missing argument", ["resolve", "a"], 2, None),
        ("too many arguments", ["name", "a", "b"], 2, None),
        ("unknown option", ["events", "--frob", "a.xml"], 2, None),
        ("the nearest command", ["evnts", "doc.xml"], 2,
         b'there is no command "evnts"; did you mean "events"?\nRun with --help for more information.\n'),
        ("the nearest command of a group", ["zip", "lst"], 2,
         b'there is no command "zip lst"; did you mean "zip list"?\nRun with --help for more information.\n'),
        ("a file in place of a group's command", ["zip", "doc.xml"], 2,
         b'there is no command "zip doc.xml", but zip list and zip cat\nRun with --help for more information.\n'),
        ("a command that is far from all", ["--untrusted", "zzzzzz"], 2,
         b'there is no command "zzzzzz"\nRun with --help for more information.\n'),
        ("feature out of range", ["events", "--feature", "8", "doc.xml"], 2, None),
        ("feature without such a name", ["events", "--feature", "x", "a.xml"], 2, None),
        ("encoding to write", ["save", "--encoding", "latin1", "doc.xml"], 2, None),
        ("unknown style", ["kansuji", "--style", "roman", "1"], 2, None),
        ("nine digits", ["kansuji", "--digits", "abcdefghi", "1"], 2, None),
        ("unknown language", ["lang", "qq"], 2, None),
        ("unknown country", ["number", "--lang", "en-XX", "a", "1"], 2, None),
        ("no colour", ["color", "5pt"], 2, None),
        ("icc-color without leave", ["color", "red icc-color(#GRAYSCALE,.1)"], 2, None),
        ("folder to read", ["tree", "."], 1, b"lum: error 0x1003: Cannot open file: . (it is a folder)\n"),
        ("folder to write", ["save", "doc.xml", "."], 1, b"lum: error 0x1003: Cannot open file: . (it is a folder)\n"),
        ("archive as a compound file", ["ole", "list", "a.zip"], 1,
         b"lum: error 0x1003: a.zip is no compound file (it is a zip archive)\n"),
        ("archive as an office document", ["props", "a.zip"], 1,
         b"lum: error 0x1003: a.zip is no office document (it is a zip archive)\n"),
        ("text as an archive", ["zip", "list", "doc.xml"], 1, b"lum: error 0x1003: doc.xml is no zip archive\n"),
        ("archive as a document", ["stats", "a.zip"], 1, lambda text: text.endswith(b" Col 1. (it is a zip archive)\n")),
        ("cause of an error", ["events", "two.xml"], 1, lambda text: text.endswith(b" (an element follows the root element)\n")),
        ("unknown limit", ["events", "--limit", "width=1", "doc.xml"], 2, None),
        ("limit without a value", ["save", "--limit", "depth", "doc.xml"], 2, None),
        ("limit that is no number", ["save", "--limit", "depth=1x", "doc.xml"], 2, None),
        ("number out of range", ["number", "1", "2147483648"], 2, None),
        ("text where a number is due", ["xlsformat", "0", "5x"], 2, None),
        ("number beyond the range", ["xlsformat", "0", "1e999"], 2, None),
        ("no value", ["xlsformat", "0"], 2, None),
        ("missing file", ["events", "none.xml"], 1, b"lum: error 0x1003: Cannot open file: none.xml (No such file or directory)\n"),
        ("missing file to save", ["save", "none.xml"], 1, b"lum: error 0x1003: Cannot open file: none.xml (No such file or directory)\n"),
        ("output in no folder", ["save", "doc.xml", "no/such/out.xml"], 1,
         b"lum: error 0x1003: Cannot open file: no/such/out.xml (there is no folder no/such)\n"),
        ("empty input", ["events", "-"], 1, b"lum: error 0x1004: Unexpected end of input stream. (it is empty)\n"),
    ]
    for fault, arguments, status, message in rows:
        done = run(*arguments)
        if "two.xml" not in arguments:
            expect(fault, (done.returncode, done.stdout), (status, b""))
        if callable(message):
            expect(f"{fault}: {done.stderr!r}", message(done.stderr), True)
        elif message is not None:
            expect(fault, done.stderr, message)
        else:
            expect(fault + ": says nothing", bool(done.stderr), True)
    expect("help fails", (run("--help").returncode, run("save", "--help").returncode), (0, 0))
    broken = run("events", "-", stdin=b"<a>\n<b></c>")
    expect("events before an error are lost", broken.stdout.count(b"START_TAG"), 2)
    expect("position of an error", (broken.returncode, b"Line 2" in broken.stderr), (1, True))
    for arguments in (["version"], ["save", "doc.xml"]):
        with open("/dev/full", "wb") as full:
            done = subprocess.run([LUM, *arguments], stdout=full, stderr=subprocess.PIPE, cwd=FOLDER, timeout=60)
        expect("a full disk is not noticed", (done.returncode, done.stderr),
               (1, b"lum: error 0x1007: Output stream error.\n"))


for check in (check_small_commands, check_file_names, check_events, check_save, check_resources, check_failures, check_bounded_memory,
              check_tree_and_stats, check_terminal, check_scarce_memory):
    check()
print("\n".join(failures) or "all as expected")
sys.exit(1 if failures else 0)
