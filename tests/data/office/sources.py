"""Flat OpenDocument sources: one text, one spreadsheet and one presentation in each language."""
from xml.sax.saxutils import escape, quoteattr

LANGUAGES = {
    "latin": {
        "title": "Überblick: crème brûlée & naïve façade", "subject": "Ærø, Łódź, Malmö", "author": "Amélie Weiß",
        "keywords": ("été", "Straße", "smørrebrød"), "comments": "First line.\nSecond line, “quoted”.",
        "company": "Müller & Söhne", "text": "The quick brown fox jumps over the lazy dog; déjà vu.", "link": "to the site",
    },
    "japanese": {
        "title": "組版の基礎", "subject": "縦書きと横書き", "author": "山田 太郎",
        "keywords": ("禁則処理", "ルビ", "𠮷野家"), "comments": "一行目。\n二行目。",
        "company": "株式会社 例", "text": "いろはにほへと ちりぬるを。漢字とカタカナと𠮷。", "link": "リンク",
    },
    "cyrillic": {
        "title": "Основы вёрстки", "subject": "Абзацы и таблицы", "author": "Иван Петров",
        "keywords": ("вёрстка", "ґанок", "ўсё"), "comments": "Первая строка.\nВторая строка.",
        "company": "ООО «Пример»", "text": "Съешь же ещё этих мягких французских булок, да выпей чаю.", "link": "ссылка",
    },
}
TARGETS = ("https://www.example.com/a/b?c=d&e=%C3%A9#top", "mailto:someone@example.com?subject=Hi", "http://example.org/日本/файл")
SPACES = {
    "office": "office", "text": "text", "table": "table", "style": "style", "draw": "drawing", "presentation": "presentation",
    "svg": "svg-compatible", "fo": "xsl-fo-compatible", "meta": "meta",
}


def namespaces():
    declared = [f"xmlns:{prefix}='urn:oasis:names:tc:opendocument:xmlns:{name}:1.0'" for prefix, name in SPACES.items()]
    return " ".join(declared + ["xmlns:dc='http://purl.org/dc/elements/1.1/'", "xmlns:xlink='http://www.w3.org/1999/xlink'"])


def meta(words):
    keywords = "".join(f"<meta:keyword>{escape(word)}</meta:keyword>" for word in words["keywords"])
    custom = (
        f"<meta:user-defined meta:name='Company'>{escape(words['company'])}</meta:user-defined>"
        f"<meta:user-defined meta:name={quoteattr(words['link'])}>{escape(words['text'])}</meta:user-defined>"
        "<meta:user-defined meta:name='Price' meta:value-type='float'>12.5</meta:user-defined>"
        "<meta:user-defined meta:name='Final' meta:value-type='boolean'>true</meta:user-defined>"
        "<meta:user-defined meta:name='Due' meta:value-type='date'>2021-03-04T05:06:07</meta:user-defined>")
    return (
        f"<office:meta><dc:title>{escape(words['title'])}</dc:title><dc:subject>{escape(words['subject'])}</dc:subject>"
        f"<dc:description>{escape(words['comments'])}</dc:description>{keywords}"
        f"<meta:initial-creator>{escape(words['author'])}</meta:initial-creator><dc:creator>{escape(words['author'])}</dc:creator>"
        "<meta:creation-date>2020-01-02T03:04:05</meta:creation-date><dc:date>2020-02-03T04:05:06</dc:date>"
        f"<meta:editing-cycles>3</meta:editing-cycles>{custom}</office:meta>")


def links(words):
    return " ".join(f"<text:a xlink:type='simple' xlink:href={quoteattr(target)}>{escape(words['link'])}</text:a>"
                    for target in TARGETS)


def text_body(words):
    cells = "".join(f"<table:table-cell><text:p>{escape(word)}</text:p></table:table-cell>" for word in words["keywords"])
    return (f"<office:text><text:h text:outline-level='1'>{escape(words['title'])}</text:h><text:p>{escape(words['text'])}</text:p>"
            f"<text:p>{links(words)}</text:p><table:table><table:table-column table:number-columns-repeated='3'/>"
            f"<table:table-row>{cells}</table:table-row></table:table></office:text>")


def spreadsheet_body(words):
    cells = "".join(f"<table:table-cell office:value-type='string'><text:p>{escape(word)}</text:p></table:table-cell>"
                    for word in (words["title"], words["text"], *words["keywords"]))
    numbers = "".join(f"<table:table-cell office:value-type='float' office:value='{value}'/>" for value in (1, 2.5, -1e300))
    linked = "".join(f"<table:table-cell office:value-type='string'><text:p><text:a xlink:type='simple' xlink:href={quoteattr(target)}>"
                     f"{escape(words['link'])}</text:a></text:p></table:table-cell>" for target in TARGETS)
    rows = "".join(f"<table:table-row>{row}</table:table-row>" for row in (cells, numbers, linked))
    return f"<office:spreadsheet><table:table table:name={quoteattr(words['keywords'][0])}>{rows}</table:table></office:spreadsheet>"


def presentation_body(words):
    frame = ("<draw:frame svg:x='{}cm' svg:y='0cm' svg:width='20cm' svg:height='1cm'><draw:text-box><text:p>{}</text:p>"
             "</draw:text-box></draw:frame>")
    frames = frame.format(0, escape(words["title"])) + frame.format(21, escape(words["text"])) + frame.format(42, links(words))
    return (f"<office:presentation><draw:page draw:name='page1' draw:master-page-name='M'>{frames}</draw:page>"
            "</office:presentation>")


BODIES = {"text": text_body, "spreadsheet": spreadsheet_body, "presentation": presentation_body}
# A long and low page: the preview picture inside a binary presentation has its shape, and takes its bytes from it.
MASTER = ("<office:styles/><office:automatic-styles><style:page-layout style:name='L'><style:page-layout-properties "
          "fo:page-width='80cm' fo:page-height='1cm' fo:margin='0cm' style:print-orientation='landscape'/></style:page-layout>"
          "<style:style style:name='D' style:family='drawing-page'/></office:automatic-styles><office:master-styles>"
          "<style:master-page style:name='M' style:page-layout-name='L' draw:style-name='D'/></office:master-styles>")
SUFFIXES = {"text": "fodt", "spreadsheet": "fods", "presentation": "fodp"}


def document(application, words, body):
    return ("<?xml version='1.0' encoding='UTF-8'?>\n"
            f"<office:document {namespaces()} office:version='1.2' "
            # Double quotes: the suite looks for these very bytes to tell the kinds of flat documents apart.
            f'office:mimetype="application/vnd.oasis.opendocument.{application}">{meta(words)}'
            f"{MASTER if application == 'presentation' else ''}<office:body>{body}</office:body></office:document>")


def write(folder, language, application):
    path = folder / f"{language}.{SUFFIXES[application]}"
    words = LANGUAGES[language]
    path.write_text(document(application, words, BODIES[application](words)), encoding="utf-8")
    return path


def write_large(folder, sheets):
    """520,000 numbers of full precision a sheet; a binary workbook stores each in 18 bytes."""
    path = folder / "large.fods"
    head, tail = document("spreadsheet", LANGUAGES["japanese"], "<office:spreadsheet>|</office:spreadsheet>").split("|")
    value = 1
    with path.open("w", encoding="utf-8") as out:
        out.write(head)
        for sheet in range(sheets):
            out.write(f"<table:table table:name='large {sheet + 1}'>")
            for _ in range(65000):
                out.write("<table:table-row>")
                for _ in range(8):
                    value = (value * 48271) % 2147483647  # the minimal standard generator: the same numbers each time
                    out.write(f"<table:table-cell office:value-type='float' office:value='{value / 7!r}'/>")
                out.write("</table:table-row>")
            out.write("</table:table>")
        out.write(tail)
    return path
