"""The ratios as a picture: bars on a logarithmic scale, readable on light and dark ground."""
import math
from xml.sax.saxutils import escape

from contest import OURS
from questions import FIVE
from tables import grouped, labels_of

SHOWN = [  # what is drawn, in this order: (asked, part, size), title
    (("events", "", "20M"), "bytes to events"),
    (("events", "", "95K"), "the same, 95 KB and a fresh parser"),
    (("tree", "build", "20M"), "bytes to a tree"),
    (("tree", "build+free", "20M"), "the same, and the end of the tree"),
    (("memory", "", "20M"), "memory of a tree"),
    (("save", "", "20M"), "a tree to bytes"),
    (("walk", "", "20M"), "walking a tree"),
    (("attribute", "", "20M"), "getting attributes by name"),
]
LEAST, MOST = 1 / 16, 32
LEFT, WIDTH, ROW, TITLE_ROW = 170, 760, 20, 30
CAPTION = ["Bar and number: geometric mean over five inputs; line: from the least to the most favourable input.",
           "To the right of 1, LumCommon is faster or smaller."]

STYLE = """<style>
  .ground { fill: #ffffff }
  text { font: 13px sans-serif; fill: #24292f }
  .title { font-weight: bold }
  .axis { font-size: 11px; fill: #57606a }
  .grid { stroke: #8c959f; stroke-opacity: .35 }
  .one { stroke: #57606a }
  .faster { fill: #2da44e }
  .slower { fill: #d4762a }
  .range { stroke: #24292f }
  @media (prefers-color-scheme: dark) {
    .ground { fill: #0d1117 } text { fill: #e6edf3 } .axis { fill: #9da7b3 }
    .one { stroke: #9da7b3 } .range { stroke: #e6edf3 }
  }
</style>"""


def place(ratio):
    part = math.log(min(max(ratio, LEAST), MOST) / LEAST) / math.log(MOST / LEAST)
    return LEFT + part * (WIDTH - LEFT - 60)


def bar(y, label, ratios):
    """The geometric mean of the inputs, and a line from the least to the most favourable of them."""
    mean = math.exp(sum(map(math.log, ratios)) / len(ratios))
    left, right = sorted((place(1), place(mean)))
    low, high = place(min(ratios)), place(max(ratios))
    return [f'<text x="{LEFT - 8}" y="{y + 14}" text-anchor="end">{escape(label)}</text>',
            f'<rect x="{left:.1f}" y="{y + 3}" width="{right - left:.1f}" height="14" rx="2" '
            f'class="{"faster" if mean >= 1 else "slower"}"/>',
            f'<path d="M{low:.1f} {y + 10}H{high:.1f}" class="range"/>',
            f'<text x="{WIDTH - 8}" y="{y + 14}" text-anchor="end">{mean:.2f}</text>']


def draw(results):
    groups = {(group[0].asked, group[0].part, group[0].size): group for group in grouped(results)}
    body, y = [], 30
    for key, title in SHOWN:
        group = [result for result in groups.get(key, []) if result.kind in FIVE]
        if not group:
            continue
        body.append(f'<text x="8" y="{y + 20}" class="title">{escape(title)}</text>')
        y += TITLE_ROW
        for peer in labels_of(group):
            body += bar(y, peer, [result.ratio(peer, OURS) for result in group if peer in result.times])
            y += ROW
    end = y + 6
    for line in CAPTION:
        y += 18
        body.append(f'<text x="8" y="{y + 6}" class="axis">{escape(line)}</text>')
    height = y + 18
    axis = []
    for power in range(round(math.log2(LEAST)), round(math.log2(MOST)) + 1):
        x, shown = place(2.0**power), f"{2**power}" if power >= 0 else f"1/{2**-power}"
        axis.append(f'<path d="M{x:.1f} 26V{end}" class="{"one" if power == 0 else "grid"}"/>'
                    f'<text x="{x:.1f}" y="18" text-anchor="middle" class="axis">{shown}</text>')
    return "\n".join([f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {height}" width="{WIDTH}" '
                      f'height="{height}">', "<!-- Drawn by scripts/bench with the option plot. Do not edit. -->",
                      "<title>How many times as long, or as much memory, other libraries take as LumCommon</title>", STYLE,
                      f'<rect width="{WIDTH}" height="{height}" class="ground"/>', *axis, *body, "</svg>"]) + "\n"
