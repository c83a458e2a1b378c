"""What is asked, on which inputs, and what we aim at."""
import dataclasses

FIVE = ["FO", "attributes", "text", "markup", "FO in UTF-16"]
ALL = FIVE + ["ASCII text", "Chinese", "Russian"]


@dataclasses.dataclass(frozen=True)
class Question:
    asked: str  # what the contenders call it
    size: str
    meaning: str
    parts: dict = dataclasses.field(default_factory=lambda: {"": ""})  # part: meaning
    kinds: tuple = tuple(ALL)
    unit: str = "ns a byte"


TREE_PARTS = {"build": "building", "free": "freeing", "build+free": "building and freeing"}
QUESTIONS = [
    Question("events", "20M", "events"),
    Question("events", "95K", "events, a fresh parser"),
    Question("events-kept", "95K", "events, the parser kept"),
    Question("tree", "20M", "tree", TREE_PARTS),
    Question("tree", "95K", "tree of a small file", TREE_PARTS),
    Question("tree-own", "20M", "tree of the caller's classes", TREE_PARTS),
    Question("save", "20M", "saving into memory"),
    Question("walk", "20M", "walking"),
    Question("attribute", "20M", "getting attributes", unit="ns a look-up"),
    Question("names", "", "interning a known name", kinds=("built-in names", "other names"), unit="ns a name"),
    Question("inflate", "20M", "inflating", kinds=("FO", "text")),
]

# The least that the ratio to a peer shall be, by (asked, part, size, peer); five numbers are those of the five inputs.
GOALS = {
    ("events", "", "20M", "libxml2 SAX2"): [1.5] * 5,
    ("events", "", "95K", "libxml2 SAX2"): [1.4],
    ("tree", "build", "20M", "libxml2"): [4, 3, 5, 3.5, 4.5],
    ("tree", "build+free", "20M", "libxml2"): [3, 2.2, 4.8, 2.5, 3],
    ("tree", "build", "20M", "pugixml"): [None, None, None, 0.7, None],
    ("tree-own", "build", "20M", "libxml2"): [3, 2.5, 4.5, 2.7, 3.3],
    ("memory", "", "20M", "libxml2"): [1.75, 1.53, 1, 1.47, 1.75],
    ("save", "", "20M", "pugixml"): [1] * 5,
    ("walk", "", "20M", "libxml2"): [1.2] * 5,
    ("attribute", "", "20M", "libxml2"): [1.5] * 5,
    ("names", "", "", "libxml2"): [1, 1],
    ("inflate", "", "20M", "zlib"): [0.95, 0.95],
    ("lum events", "", "20M", "parser"): [0.5] * 4,
}

# What we are measured against alone: (asked, part): (least or None, most or None).
BOUNDS = {
    ("two threads", ""): (1.9, None),
    ("growth", ""): (None, 2.2),
    ("stream", "MB/s"): (150, None),
    ("stream", "MB"): (None, 64),
}
