"""Makes the inputs of the contests, always the same bytes.

Each kind of document in two sizes: about 20 MB, which shows the steady state, and 95 KB, which is the size of a usual
file. The FO and the Chinese and Russian texts are those of tests/data, repeated; the others are made from a fixed
sequence of numbers.
"""
import lzma
import pathlib
import re

DATA = pathlib.Path(__file__).resolve().parents[2] / "tests/data"
SIZES = {"20M": 20_000_000, "95K": 95_000}
WORDS = """the of a to and is in that for it as with on by are be or which this from at an not can when one all each
has text page line document element property value width height block inline table column formatter specifies applies
whether between following reference area character language attribute indentation keeps breaks leading descendant
generated resulting available computed initial inherited percentages media visual aural""".split()
FO_VALUES = ["12pt", "0.5em", "justify", "normal", "serif", "#1a2b3c", "always", "1.2", "auto", "transparent", "solid",
             "from-parent(start-indent)", "proportional-column-width(1)", "left", "10mm", "inherit"]
ATTRIBUTES = ["width", "height", "x", "y", "font-size", "font-family", "color", "fill", "stroke", "class", "style",
              "transform", "start-indent", "end-indent", "space-before", "space-after", "border", "padding",
              "text-align", "line-height"]


class Sequence:
    """Numbers that look random and are the same everywhere."""

    def __init__(self):
        self.state = 20_030_519

    def below(self, limit):
        self.state = (self.state * 6_364_136_223_846_793_005 + 1_442_695_040_888_963_407) % 2**64
        return (self.state >> 33) % limit

    def one_of(self, choices):
        return choices[self.below(len(choices))]


def filled(begin, piece, end, size):
    """Pieces between `begin` and `end` up to about that size in bytes; piece(n) is the one of number n."""
    parts, length, number = [begin], len(begin.encode()), 0
    while length < size:
        parts.append(piece(number))
        length += len(parts[-1].encode())
        number += 1
    return "".join(parts) + end


def sentence(sequence, words):
    return " ".join(sequence.one_of(WORDS) for _ in range(words)).capitalize() + "."


def typeset(sequence, words):
    """With what books have beyond ASCII, here and there: quotation marks, dashes, accents."""
    chosen = [sequence.one_of(WORDS) for _ in range(words)]
    for special in (f"\u201c{chosen[0]}\u201d", "\u2014", "caf\u00e9"):
        if sequence.below(4) == 0:
            chosen[sequence.below(words)] = special
    return " ".join(chosen).capitalize() + "."


def fo(size):
    """A book, again and again; identifiers differ from one copy to the next, as they would in a longer book.

    Its comments are left out: some trees keep them and some do not.
    """
    book = re.sub("<!--.*?-->", "", lzma.open(DATA / "fo/book.fo.xz").read().decode(), flags=re.DOTALL)
    starts = [match.start() for match in re.finditer("<fo:page-sequence ", book)]
    head, end = book[:starts[0]], "</fo:root>"
    chapters = [book[a:b] for a, b in zip(starts, starts[1:])]
    parts, length, copy = [head], len(head.encode()), 0
    while copy == 0 or length < size - 11_000:
        for chapter in chapters:
            bytes_of_chapter = len(chapter.encode())
            if length + bytes_of_chapter > size:
                continue  # a shorter one may still fit
            parts.append(re.sub(r'((?:id|destination)=")(?=[a-z])', rf"\g<1>c{copy}-", chapter))
            length += bytes_of_chapter
        copy += 1
        if copy > 1000:
            raise ValueError("no chapter fits")
    return "".join(parts) + end


def attributes(size):
    """Empty elements with 6 to 20 attributes, some of them texts, most of them words that come again."""
    sequence = Sequence()

    def element(number):
        names = ATTRIBUTES[: 6 + sequence.below(15)]
        values = [str(sequence.below(100_000) / 100) if i < 4 else sequence.one_of(FO_VALUES)
                  for i in range(len(names))]
        if number % 8 == 0:
            values[-1] = sentence(sequence, 8)
        return f'<item id="i{number}" ' + " ".join(f'{n}="{v}"' for n, v in zip(names, values)) + "/>\n"
    return filled('<?xml version="1.0"?>\n<items xmlns="urn:items">\n', element, "</items>\n", size)


def text(size, make=typeset):
    """Paragraphs of 500 to 3000 letters, with a reference now and then."""
    sequence = Sequence()

    def paragraph(number):
        lines = []
        for _ in range(6 + sequence.below(30)):
            lines.append(make(sequence, 10 + sequence.below(4)))
        lines.insert(sequence.below(len(lines)), "This &amp; that.")
        return f'<p id="p{number}">' + "\n".join(lines) + "</p>\n"
    return filled('<?xml version="1.0"?>\n<text>\n', paragraph, "</text>\n", size)


def markup(size):
    """Short cells in rows, as in a spreadsheet: more tags than content."""
    sequence = Sequence()

    def row(number):
        cells = "".join(f"<c><v>{sequence.below(1000)}</v></c>" if sequence.below(3) else f'<c t="s"><v>{i}</v><f/></c>'
                        for i in range(8))
        return f'<row id="r{number}">{cells}</row>'
    return filled('<?xml version="1.0"?>\n<sheet xmlns="urn:sheet">', row, "</sheet>\n", size)


def repeated_file(path):
    """The content of a document's root, again and again."""
    begin, body, end = re.fullmatch(r"(<\?xml[^>]*\?>\s*<[^>]*>)(.*)(</[^>]*>\s*)", (DATA / path).read_text("utf-8"),
                                    re.DOTALL).groups()
    body_size = len(body.encode())
    return lambda size: begin + body * max(1, round(size / body_size)) + end



KINDS = {  # name in files and tables: (what makes it, encoding)
    "FO": (fo, "utf-8"),
    "attributes": (attributes, "utf-8"),
    "text": (text, "utf-8"),
    "markup": (markup, "utf-8"),
    "FO in UTF-16": (lambda size: fo(size // 2), "utf-16-le"),
    "ASCII text": (lambda size: text(size, sentence), "utf-8"),
    "Chinese": (repeated_file("cjk/help.utf8.xml"), "utf-8"),
    "Russian": (repeated_file("charsets/ru.xml"), "utf-8"),
}


def numbered(form, count):
    return "".join(map(form.format, range(count)))


# Documents that grow in one direction, n and 2n: the time should double. Numbers have six digits: so do the bytes.
GROWTH = {  # direction: (n, what makes the document)
    "attributes of one element": (10_000, lambda n: "<r><e" + numbered(' a{0:06}="{0:06}"', n) + "/></r>"),
    "namespaces of one element": (5_000, lambda n: "<r" + numbered(' xmlns:p{0:06}="urn:{0:06}"', n) + ">"
                                  + numbered("<p{0:06}:e/>", n) + "</r>"),
    "namespaces one in another": (5_000, lambda n: numbered('<p{0:06}:e xmlns:p{0:06}="urn:{0:06}">', n)
                                  + "".join(f"</p{i:06}:e>" for i in reversed(range(n)))),
    "depth": (100_000, lambda n: "<e>" * n + "</e>" * n),
    "children": (200_000, lambda n: "<r>" + "<e/>" * n + "</r>"),
}

# Names for the question of interning, a line each.
NAMES = {
    "built-in names": lambda: FO_NAMES * 500,
    "other names": lambda: [f"{word}-{i % 40}" for i, word in enumerate(WORDS * 500)],
}
FO_NAMES = """block inline table-cell table-row external-graphic basic-link font-size font-family font-weight
start-indent end-indent space-before.optimum text-align keep-together.within-column border-before-style padding-start
background-color internal-destination page-number-citation region-body""".split()


class Inputs:
    """The files in a folder, made when they are first asked for."""

    def __init__(self, folder):
        self.folder = folder
        folder.mkdir(parents=True, exist_ok=True)

    def of(self, question, kind, size):
        return self.names(kind) if question == "names" else self.document(kind, size)

    def document(self, kind, size):
        maker, encoding = KINDS[kind]
        mark = "\ufeff" if encoding != "utf-8" else ""
        return self._file(f"{kind}.{size}.xml", lambda: (mark + maker(SIZES[size])).encode(encoding))

    def growth(self, direction):
        n, maker = GROWTH[direction]
        return [self._file(f"{direction}.{count}.xml", lambda: maker(count).encode()) for count in (n, 2 * n)]

    def names(self, kind):
        return self._file(f"{kind}.txt", lambda: "".join(name + "\n" for name in NAMES[kind]()).encode())

    def _file(self, name, maker):
        path = self.folder / name.replace(" ", "-")
        if not path.exists() or path.stat().st_mtime < pathlib.Path(__file__).stat().st_mtime:
            path.write_bytes(maker())
        return path
