"""The rules of distances and sizes, which looks_rules.py lists with the others."""

import math

from looks_window import CANCEL, EDIT, LIST, OK, PICTURES, SLACK, SPIN, STATIC, apart


def margins(w):
    for c in w.controls:
        if c.id in PICTURES:
            continue
        for side, gap in (("left", c.left / w.x), ("top", c.top / w.y),
                          ("right", (w.width - c.right) / w.x),
                          ("bottom", (w.height - c.bottom) / w.y)):
            if gap < 7 - SLACK:
                yield c.id, f"{c.name()} is {gap:.1f} from the {side} edge"


def labels(w):
    for field in w.controls:
        if field.kind in (EDIT, LIST) and not w.label_of(field):
            yield field.id, f"{field.name()} has no label"
    for label, field in zip(w.controls, w.controls[1:]):
        if not label.is_text() or field.kind not in (EDIT, LIST):
            continue
        across, down = apart(label, field)
        if across >= 0:
            ascent, line = label.raw["extent"]["ascent"], label.raw["extent"]["line"]
            base = label.top + ascent
            wanted = field.top + (field.height - line) / 2 + ascent
            if abs(base - wanted) > max(2, w.y):
                yield label.id, f"baseline of {label.name()} is off by {base - wanted:.0f} pixels"
            if across < 3 - SLACK:
                yield label.id, f"{label.name()} is {across:.1f} beside its field"
        elif abs(down - 3) > 1 + SLACK:
            yield label.id, f"{label.name()} is {down:.1f} above its field"


def spacing(w):
    """Nothing that stands side by side or one above the other is nearer than related things are."""
    plain = [c for c in w.plain() if c.kind not in (STATIC, SPIN)]
    for i, one in enumerate(plain):
        for other in plain[i + 1:]:
            across, down = apart(one, other)
            choices = one.is_choice() and other.is_choice()
            if across < 0 <= down < (2 if choices else 4) - SLACK:
                yield other.id, f"{one.name()} is {down:.1f} above or below {other.name()}"
            if down < 0 <= across < 4 - SLACK:
                yield other.id, f"{one.name()} is {across:.1f} beside {other.name()}"


def rows(w):
    """The buttons that answer the whole window stand apart from what is above them."""
    row = w.bottom_row()
    for c in w.controls:
        gap = min(((b.top - c.bottom) / w.y for b in row), default=7)
        if c not in row and -SLACK <= gap < 7 - SLACK and not c.is_push_button():
            yield c.id, f"{c.name()} is {gap:.1f} above the buttons"


def groups(w):
    for group in (c for c in w.controls if c.is_group()):
        inside = [c for c in w.plain() if c.left >= group.left and c.right <= group.right and
                  c.top >= group.top and c.bottom <= group.bottom]
        for c in inside:
            sides = min(c.left - group.left, group.right - c.right) / w.x
            top, bottom = (c.top - group.top) / w.y, (group.bottom - c.bottom) / w.y
            if sides < 6 - SLACK:
                yield c.id, f"{c.name()} is {sides:.1f} from the side of {group.name()}"
            if top < 11 - SLACK:
                yield c.id, f"{c.name()} is {top:.1f} below the top of {group.name()}"
            if bottom < 7 - SLACK:
                yield c.id, f"{c.name()} is {bottom:.1f} above the bottom of {group.name()}"


def buttons(w):
    pushed = [c for c in w.controls if c.is_push_button()]
    for c in pushed:
        if c.wide < 50 - SLACK or abs(c.high - 14) > SLACK:
            yield c.id, f"{c.name()} is {c.wide:.1f} × {c.high:.1f}"
    widths = sorted({c.width for c in pushed})
    # One pixel is rounding.
    if len([one for one, other in zip(widths, widths[1:]) if other - one > 1]) > 1:
        yield 0, f"buttons of {len(widths)} widths: {widths} pixels"


def edits(w):
    for c in w.controls:
        if c.kind == EDIT and abs(c.high - 14) > SLACK:
            yield c.id, f"{c.name()} is {c.high:.1f} high"


def heights(w):
    for c in w.controls:
        if c.is_choice() and abs(c.high - 10) > SLACK:
            yield c.id, f"{c.name()} is {c.high:.1f} high"
        if c.is_text() and c.high < 8 - SLACK:
            yield c.id, f"{c.name()} is {c.high:.1f} high"


def answers(w):
    ok, cancel = w.by_id(OK), w.by_id(CANCEL)
    row = sorted(w.bottom_row(), key=lambda c: c.left)
    if ok and cancel and (ok.top != cancel.top or ok.left > cancel.left):
        yield OK, "OK does not stand before Cancel"
    for c in (ok, cancel):
        if c and c not in row:
            yield c.id, f"{c.name()} is not in the bottom row"
    if row and (w.width - row[-1].right) / w.x > 7 + 2:
        yield row[-1].id, (f"{row[-1].name()} is {(w.width - row[-1].right) / w.x:.1f} from the "
                           "right edge")


def proportions(w):
    ratio = w.width / w.height
    # What only tells something is a message box, whoever draws it.
    widest = 3 if w.is_message() else 5 / 3
    if not 3 / 5 <= ratio <= widest + 0.01:
        yield 0, f"{w.width} × {w.height} pixels: {ratio:.2f}"


def left_edges(w):
    edges = sorted({c.left for c in w.plain() if c.kind != SPIN})
    # One pixel is rounding.
    if len([one for one, other in zip(edges, [*edges[1:], math.inf]) if other - one > 1]) > 6:
        yield 0, f"left edges: {edges}"
