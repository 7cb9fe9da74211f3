"""The rules that every window is held against.

A rule is a function of a walked window (hosts/looks/walker.h) that yields what breaks it, as pairs:
the number of the control, or 0 for the window, and a text. It looks at the controls that show.
Distances are dialog units unless a name says pixels.
"""

import math
import re

# The pictures that reach from edge to edge, by the numbers of resource_numbers.h.
PICTURES = {3047, 3048, 3075, 3076}
# The edits of codes and challenges, which everybody reads from the left.
CODES = {3026, 3030, 3045, 3053, 3055, 3057}
OK, CANCEL = 1, 2
SLACK = 0.75  # of a unit: what rounding to pixels takes

EDIT, BUTTON, STATIC, LIST, SPIN = "Edit", "Button", "Static", "SysListView32", "msctls_updown32"
DIALOG, MESSAGE_BOX, NOTICE = "dialog", "message box", "notice"
# What other names are part of titles.
NAMES = {"Veskara", "Software", "Reader"}
# What the installer tells of the demonstration's product.
PRODUCT = "Veskara Smart Card Suite"
# Languages that write nouns with a capital, or are made of letters of any kind.
ANY_CASE = {"de", "qps-ploc"}


class Control:
    def __init__(self, window, raw):
        self.raw = raw
        self.id = raw["id"]
        self.kind = raw["class"]
        self.text = raw["text"]
        self.style = raw["style"]
        self.left, self.top, self.right, self.bottom = raw["rect"]
        self.window = window

    # Where something of it is drawn: told of a notice, whose texts have more room than they need.
    ink = property(lambda self: self.raw.get("ink", self.raw["rect"]))
    width = property(lambda self: self.right - self.left)
    height = property(lambda self: self.bottom - self.top)
    wide = property(lambda self: self.width / self.window.x)
    high = property(lambda self: self.height / self.window.y)

    def type(self):
        return self.style & 0xF if self.kind == BUTTON else self.style & 0x1F

    def is_push_button(self):
        return self.kind == BUTTON and self.type() in (0, 1)

    def is_choice(self):
        return self.kind == BUTTON and self.type() in (2, 3, 4, 5, 6, 9)

    def is_group(self):
        return self.kind == BUTTON and self.type() == 7

    def is_picture(self):
        return self.kind == STATIC and self.type() in (3, 14)

    def is_text(self):
        return self.kind == STATIC and "extent" in self.raw

    def name(self):
        return f"{self.kind} {self.id}" + ("" if self.is_picture() else f" “{self.text[:30]}”")


class Window:
    def __init__(self, raw):
        self.raw = raw
        self.dialog = raw["dialog"]
        self.title = raw["title"]
        units = raw["units"] or [150, 163]
        self.x, self.y = units[0] / 100, units[1] / 100
        self.width, self.height = raw["client"]
        everything = [Control(self, control) for control in raw["controls"]]
        # Neither the panels nor what a list consists of.
        self.controls = [c for c in everything
                         if c.raw["visible"] and c.kind not in ("#32770", "SysHeader32") and
                         c.width and c.height]
        self.all = everything

    def plain(self):
        """What stands on the window and is no frame or picture of its whole width."""
        return [c for c in self.controls if c.id not in PICTURES and not c.is_group()]

    def bottom_row(self):
        pushed = [c for c in self.controls if c.is_push_button()]
        lowest = max((c.top for c in pushed), default=0)
        return [c for c in pushed if c.top == lowest]

    def is_message(self):
        """Whether it only tells something, with at most a box to tick that it need not come again."""
        return not any(c.kind == LIST or (c.kind == EDIT and not c.style & 0x800) or
                       (c.is_choice() and c.type() not in (2, 3)) for c in self.controls)

    def by_id(self, number):
        return next((c for c in self.controls if c.id == number), None)


def apart(one, other):
    """The gap between two controls: across, and down; negative where they overlap."""
    across = max(one.left, other.left) - min(one.right, other.right)
    down = max(one.top, other.top) - min(one.bottom, other.bottom)
    return across / one.window.x, down / one.window.y


def margins(w):
    for c in w.plain():
        for side, gap in (("left", c.left / w.x), ("top", c.top / w.y),
                          ("right", (w.width - c.right) / w.x),
                          ("bottom", (w.height - c.bottom) / w.y)):
            if gap < 7 - SLACK:
                yield c.id, f"{c.name()} is {gap:.1f} from the {side} edge"


def labels(w):
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


def small_screens(w):
    left, top, right, bottom = w.raw["rect"]
    if w.raw.get("dpi", 96) == 96 and (right - left > 800 or bottom - top > 552):
        yield 0, f"{right - left} × {bottom - top} pixels"


def clipping(w):
    for c in w.controls:
        if "ink" in c.raw:
            if c.ink[2] >= c.right or c.ink[3] > c.bottom:
                yield c.id, f"{c.name()} is drawn in {c.ink}, and has {c.raw['rect']}"
            continue
        need = c.raw.get("extent")
        if not need:
            continue
        room = c.width
        if c.is_choice():
            room -= round(17 * w.x / 1.5)
        elif c.is_push_button():
            room -= round(6 * w.x / 1.5)
        elif c.is_group():
            room -= round(16 * w.x / 1.5)
        if need["width"] > room or (not c.is_group() and need["height"] > c.height):
            yield c.id, (f"{c.name()} needs {need['width']} × {need['height']} pixels, "
                         f"has {room} × {c.height}")


def lie_over(one, other):
    """Whether something of both is drawn at one place."""
    return (max(one.ink[0], other.ink[0]) < min(one.ink[2], other.ink[2]) and
            max(one.ink[1], other.ink[1]) < min(one.ink[3], other.ink[3]))


def overlaps(w):
    flat = [c for c in w.controls if not c.is_group()]
    for i, one in enumerate(flat):
        for other in flat[i + 1:]:
            if lie_over(one, other) and SPIN not in (one.kind, other.kind):
                yield other.id, f"{one.name()} overlaps {other.name()}"
    for c in w.controls:
        if c.ink[0] < 0 or c.ink[1] < 0 or c.ink[2] > w.width or c.ink[3] > w.height:
            yield c.id, f"{c.name()} reaches out of the window"


def long_lines(w):
    for c in w.controls:
        if not c.is_text():
            continue
        # A text that wraps has lines of what its width holds.
        average = c.raw["extent"]["line"] * 5 / 13
        for part in c.text.splitlines():
            length = min(len(part), c.width / average)
            if length > 80:
                yield c.id, f"{c.name()} has lines of {length:.0f} characters"


def left_edges(w):
    edges = sorted({c.left for c in w.plain() if c.kind != SPIN})
    # One pixel is rounding.
    if len([one for one, other in zip(edges, [*edges[1:], math.inf]) if other - one > 1]) > 6:
        yield 0, f"left edges: {edges}"


def fonts(w):
    texts = [c.raw["font"] for c in w.controls if c.text and not c.is_picture()]
    families = {font[0] for font in texts}
    sizes = {font[1] for font in texts}
    if len(families) > 1:
        yield 0, f"fonts {sorted(families)}"
    if len(sizes) > 2:
        yield 0, f"sizes {sorted(sizes)}"


def access_key(text):
    found = re.search(r"&(?!&)(.)", text.replace("&&", ""))
    return found.group(1).lower() if found else None


def access_keys(w):
    seen = {}
    for i, c in enumerate(w.controls):
        if c.kind not in (BUTTON, STATIC) or c.style & 0x80 and c.kind == STATIC:  # SS_NOPREFIX
            continue
        following = w.controls[i + 1] if i + 1 < len(w.controls) else None
        key = access_key(c.text)
        labels_field = c.is_text() and following and following.kind in (EDIT, LIST)
        if c.id in (OK, CANCEL) and c.is_push_button():
            if key:
                yield c.id, f"{c.name()} has an access key"
        elif (c.is_choice() or c.is_push_button() or labels_field) and not key:
            yield c.id, f"{c.name()} has no access key"
        if key:
            if key in seen:
                yield c.id, f"{c.name()} has the access key of {seen[key].name()}"
            seen.setdefault(key, c)


def focus_and_order(w):
    first_answer = next((c for c in w.controls if c.is_push_button()), None)
    if w.raw["kind"] == DIALOG and first_answer and w.raw["default"] != first_answer.id:
        yield w.raw["default"], f"Enter does not choose {first_answer.name()}"
    focused = next((c for c in w.controls if c.raw["focus"]), None)
    first = next((c for c in w.controls if c.kind == EDIT and c.raw["enabled"] and
                  not c.style & 0x800), None)
    if w.raw["opened"] and first and focused is not first:
        yield first.id, f"the focus is not on {first.name()}"
    reached = [w.by_id(number) for number in w.raw["tabOrder"]]
    reached = [c for c in reached if c]
    for one, other in zip(reached, reached[1:]):
        if other.bottom <= one.top:
            yield other.id, f"Tab goes up from {one.name()} to {other.name()}"
        elif one.top == other.top and other.right <= one.left:
            yield other.id, f"Tab goes back from {one.name()} to {other.name()}"


def closing(w):
    for way, enough in w.raw.get("closedBy", {}).items():
        if not enough:
            yield 0, f"it is not closed by {way}"


def off_middle(near, far, owner_near, owner_far, area_near, area_far):
    """Whether it could stand nearer to its owner's middle without leaving the work area."""
    off = (near + far) - (owner_near + owner_far)
    return off > 4 and near > area_near or off < -4 and far < area_far


def placement(w):
    left, top, right, bottom = w.raw["rect"]
    area = w.raw["workArea"]
    over = w.raw["owner"] or area
    if left < area[0] or top < area[1] or right > area[2] or bottom > area[3]:
        yield 0, f"{w.raw['rect']} reaches out of the work area {area}"
    elif w.raw["kind"] != NOTICE and (
            off_middle(left, right, over[0], over[2], area[0], area[2]) or
            off_middle(top, bottom, over[1], over[3], area[1], area[3])):
        yield 0, f"{w.raw['rect']} is not over the middle of {over}"


def contrast(w):
    for c in w.controls:
        ratio = c.raw.get("contrast", 21)
        if not c.raw["enabled"]:
            continue
        text = c.is_text() or (c.is_group() and c.text) or c.is_push_button() or c.is_choice() or (c.kind == EDIT and c.text)
        if text and ratio < 4.5:
            yield c.id, f"{c.name()}: {ratio:.1f} : 1"
        if not text and (c.is_picture() or c.kind == "VkProgressBar") and ratio < 3:
            yield c.id, f"{c.name()}: {ratio:.1f} : 1"


def without_colour(w):
    """Icons that tell states apart do so in grey as well."""
    icons = [(c, bytes.fromhex(c.raw["grey"])) for c in w.controls
             if c.raw.get("grey") and c.raw.get("icon")]
    for i, (one, grey) in enumerate(icons):
        for other, other_grey in icons[i + 1:]:
            if one.raw["icon"] == other.raw["icon"] or len(grey) != len(other_grey):
                continue
            ground = max(set(grey), key=grey.count)
            drawn = sum(a != ground or b != ground for a, b in zip(grey, other_grey))
            differing = sum(abs(a - b) > 48 for a, b in zip(grey, other_grey))
            if differing < drawn / 10:
                yield other.id, f"{one.name()} and {other.name()} differ by their colour alone"


def focus_seen(w):
    for number in w.raw["focusUnseen"]:
        yield number, f"the focus is not seen on {number}"


def in_sentence_case(text, names):
    for sentence in re.split(r"[.!?:\n]\s*", text.replace("&", "").replace(PRODUCT, "")):
        for word in re.findall(r"[^\W\d_]+", sentence)[1:]:
            if word[0].isupper() and not word.isupper() and word not in names:
                return False
    return True


def wording(w):
    if w.title.endswith("."):
        yield 0, f"the title “{w.title}” ends in a full stop"
    # Titles and texts that come from outside are nobody's here.
    outside = "long" in w.dialog or "help-desk" in w.dialog
    own = [] if outside else [(0, w.title)]
    if w.raw["kind"] == DIALOG:
        own += [(c.id, c.text) for c in w.controls
                if c.is_choice() or c.is_group() or c.is_push_button() or
                (c.is_text() and not outside)]
    names = NAMES | w.button_texts
    for number, text in own:
        if w.language not in ANY_CASE and not in_sentence_case(text, names):
            yield number, f"“{text[:50]}” is not in sentence case"


def mirroring(w):
    for c in w.controls:
        if (c.id in CODES or c.is_picture()) and c.raw["mirrored"]:
            yield c.id, f"{c.name()} is mirrored"


DRAWN_HERE = (DIALOG,)
BOXES = (DIALOG, MESSAGE_BOX)
ALL = (DIALOG, MESSAGE_BOX, NOTICE)

# The number, what it is about, the kinds of windows that it holds for, and the rule.
RULES = [
    (1, "7 from the edge", DRAWN_HERE, margins),
    (2, "labels by their controls", DRAWN_HERE, labels),
    (3, "4 apart", DRAWN_HERE, spacing),
    (4, "buttons 7 below the rest", DRAWN_HERE, rows),
    (5, "within group boxes", DRAWN_HERE, groups),
    (6, "buttons", DRAWN_HERE, buttons),
    (7, "edits 14 high", DRAWN_HERE, edits),
    (8, "choices 10, lines 8 high", DRAWN_HERE, heights),
    (9, "OK and Cancel", DRAWN_HERE, answers),
    (10, "width to height", DRAWN_HERE, proportions),
    (11, "small screens", ALL, small_screens),
    (12, "no text clipped", ALL, clipping),
    (13, "nothing overlaps", ALL, overlaps),
    (14, "80 characters a line", BOXES, long_lines),
    (15, "6 left edges", DRAWN_HERE, left_edges),
    (16, "fonts", BOXES, fonts),
    (17, "access keys", DRAWN_HERE, access_keys),
    (18, "focus and tab order", BOXES, focus_and_order),
    (19, "Esc and close button", ALL, closing),
    (20, "place of the window", ALL, placement),
    (21, "contrast", ALL, contrast),
    (22, "not by colour alone", DRAWN_HERE, without_colour),
    (23, "focus is seen", BOXES, focus_seen),
    (24, "wording", BOXES, wording),
    (25, "codes and pictures are not mirrored", BOXES, mirroring),
]

# What no program can tell, or not from a window.
UNCHECKED = [
    "4: which things belong together is known to people alone; held for the bottom row of buttons",
    "1 to 10, 15, 17: message boxes are laid out by the system, notices by their skin",
    "14, 16: a notice's lines are the rich-text engine's, whose tests measure them",
    "22: held for icons; that the list of certificates says “expired” in words is seen in a sheet",
    "24: German, which writes nouns with a capital, and what the build makes longer are held to the "
    "full stop alone",
]


def button_texts(windows):
    """What texts may name with a capital, wherever they stand."""
    return {control["text"].replace("&", "") for window in windows
            for control in window["controls"] if Control(None, control).is_push_button()}


def judge(raw, language="en", buttons=frozenset()):
    """Yields the number of the rule, that of the control, and what is wrong. `buttons` is what
    button_texts finds in all windows of the language."""
    window = Window(raw)
    window.language = language
    window.button_texts = buttons
    for number, _, kinds, rule in RULES:
        if raw["kind"] in kinds:
            for control, fault in rule(window):
                yield number, control, fault
