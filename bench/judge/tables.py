"""Results as tables of text or Markdown."""
import itertools

from contest import OURS
from questions import ALL, BOUNDS, GOALS


def text_table(rows):
    """Empty when there is nothing below the head."""
    if len(rows) < 2:
        return ""
    widths = [max(len(row[i]) for row in rows) for i in range(len(rows[0]))]
    lines = ["  ".join([row[0].ljust(widths[0])] + [c.rjust(w) for c, w in zip(row[1:], widths[1:])]) for row in rows]
    return "\n".join(line.rstrip() for line in lines)


def markdown_table(rows):
    lines = ["| " + " | ".join(row) + " |" for row in rows]
    return "\n".join([lines[0], "|" + "---|" * len(rows[0])] + lines[1:])


def cell(result, label):
    low, high = result.middle(label)
    return f"{result.median(label):.2f} ({low:.2f}-{high:.2f})"


def shown_ratio(result, label):
    return f"{'~' if result.is_close(label, OURS) else ''}{result.ratio(label, OURS):.2f}"


def grouped(results):
    """Runs of results that differ in their input only."""
    return [list(group) for _, group in
            itertools.groupby(results, lambda result: (result.asked, result.part, result.size))]


def labels_of(results):
    return sorted({label for result in results for label in result.times} - {OURS}, key=str.lower)


def times_table(results):
    """One question: the times of all contenders, and ratios."""
    peers = labels_of(results)
    first = results[0]
    rows = [[f"{first.meaning}{f', {first.size}' if first.size else ''}, {first.unit}", OURS]
            + [text for peer in peers for text in (peer, "ratio")]]
    for result in results:
        row = [result.kind, cell(result, OURS)]
        for peer in peers:
            row += [cell(result, peer), shown_ratio(result, peer)] if peer in result.times else ["", ""]
        rows.append(row)
    return text_table(rows)


def ratio_rows(results, kinds, with_goals=False, marks=True):
    """All questions: a row a peer, a column an input. What misses its goal is followed by an exclamation mark."""
    rows = [["", "beside"] + list(kinds) + (["goal"] if with_goals else [])]
    for group in grouped(results):
        first = group[0]
        by_kind = {result.kind: result for result in group}
        if not set(by_kind) & set(kinds):
            continue
        for peer in labels_of(group):
            goals = GOALS.get((first.asked, first.part, first.size, peer), [])
            goal_of = dict(zip(kinds, goals))
            row = [f"{first.meaning}, {first.size}".rstrip(", "), peer]
            for kind in kinds:
                result = by_kind.get(kind)
                if not result or peer not in result.times:
                    row.append("")
                    continue
                missed = with_goals and goal_of.get(kind) and result.ratio(peer, OURS) < goal_of[kind]
                row.append((shown_ratio(result, peer) if marks else f"{result.ratio(peer, OURS):.2f}")
                           + ("!" if missed else ""))
            if with_goals:
                row.append(" ".join("-" if goal is None else f"{goal:g}" for goal in goals))
            rows.append(row)
    return rows


def other_rows(results):
    """What has inputs of its own: our numbers, the peers' ratios, and where we are measured against ourselves, bounds."""
    rows = [["", "", OURS, "unit", "beside", "goal"]]
    for result in results:
        if result.kind in ALL and (result.asked, result.part) not in BOUNDS:
            continue
        peers = labels_of([result])
        if (result.asked, result.part) in BOUNDS:
            least, most = BOUNDS[result.asked, result.part]
            missed = (least and result.median(OURS) < least) or (most and result.median(OURS) > most)
            goal = f"at least {least:g}" if least else f"at most {most:g}"
            beside = "; ".join(f"{peer} {result.median(peer):.2f}" for peer in peers)
        else:
            goals = {peer: GOALS.get((result.asked, result.part, result.size, peer)) for peer in peers}
            missed = any(goal and result.ratio(peer, OURS) < goal[0] for peer, goal in goals.items())
            goal = " ".join(f"{goal[0]:g}" for goal in goals.values() if goal)
            beside = "; ".join(f"{peer} {shown_ratio(result, peer)} times ours" for peer in peers)
        rows.append([f"{result.meaning}, {result.size}".rstrip(", "), result.kind,
                     f"{result.median(OURS):.2f}{'!' if missed else ''}", result.unit, beside, goal])
    return rows


def use_rows(results):
    """Ways of use: how many times as long as the first one of its group."""
    rows = [["", "", "ns a byte", "times the first"]]
    for result in results:
        first = next(iter(result.times), None)
        rows += [[f"{result.meaning} ({result.kind}, {result.size})", label, f"{result.median(label):.2f}",
                  f"{result.ratio(label, first):.2f}"] for label in result.times]
    return rows
