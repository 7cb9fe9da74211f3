"""The rules that every window is held against.

A rule is a function of a looks_window.Window that yields what breaks it, as pairs: the number of
the control, or 0 for the window, and a text. It looks at the controls that show. Those of distances
and sizes stand in looks_layout.py.
"""

import re

import looks_layout as layout
from looks_window import (BUTTON, CANCEL, CODES, DIALOG, EDIT, LIST, MESSAGE_BOX, NOTICE, OK,
                          SCROLLED_ACROSS, SPIN, STATIC, TAB_STOP, Control, Window, is_within,
                          lie_over)

# What other names are part of titles.
NAMES = {"Veskara", "Software", "Reader"}
# What the installer tells of the demonstration's product.
PRODUCT = "Veskara Smart Card Suite"
# Languages that write nouns with a capital, or are made of letters of any kind.
ANY_CASE = {"de", "qps-ploc"}


def small_screens(w):
    left, top, right, bottom = w.raw["rect"]
    if w.raw.get("dpi", 96) == 96 and (right - left > 800 or bottom - top > 552):
        yield 0, f"{right - left} × {bottom - top} pixels"


def clipping(w):
    caption = w.raw.get("caption")
    if caption and caption["width"] > caption["room"]:
        yield 0, f"the title needs {caption['width']} pixels, has {caption['room']}"
    for c in w.controls:
        if c.kind == LIST and c.style & SCROLLED_ACROSS:
            yield c.id, f"{c.name()} is wider than its place"
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


def overlaps(w):
    flat = [c for c in w.controls if not c.is_group()]
    for i, one in enumerate(flat):
        for other in flat[i + 1:]:
            if lie_over(one, other) and SPIN not in (one.kind, other.kind):
                yield other.id, f"{one.name()} overlaps {other.name()}"
    for c in w.controls:
        if c.ink[0] < 0 or c.ink[1] < 0 or c.ink[2] > w.width or c.ink[3] > w.height:
            yield c.id, f"{c.name()} reaches out of the window"
        parent = w.parent_of(c)
        if parent and not is_within(c, parent):
            yield c.id, f"{c.name()} reaches out of what it stands in"
    for group in (c for c in w.controls if c.is_group()):
        for c in w.controls:
            if lie_over(c, group) and not is_within(c, group) and not (
                    c.is_group() and is_within(group, c)):
                yield c.id, f"{c.name()} lies across the frame of {group.name()}"


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
        if c.kind in (EDIT, LIST) and not w.label_of(c):
            yield c.id, f"no access key leads to {c.name()}"
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
    radio_buttons = [c for c in w.controls if c.is_radio_button()]
    by_arrows = any(c.id in w.raw["tabOrder"] for c in radio_buttons)
    for c in w.controls:
        if (c.style & TAB_STOP and c.raw["enabled"] and c.id not in w.raw["tabOrder"] and
                not (c in radio_buttons and by_arrows)):
            yield c.id, f"Tab does not reach {c.name()}"
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
        text = (c.is_text() or c.is_push_button() or c.is_choice() or
                c.text and (c.is_group() or c.kind == EDIT))
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
    (1, "7 from the edge", DRAWN_HERE, layout.margins),
    (2, "labels by their controls", DRAWN_HERE, layout.labels),
    (3, "4 apart", DRAWN_HERE, layout.spacing),
    (4, "buttons 7 below the rest", DRAWN_HERE, layout.rows),
    (5, "within group boxes", DRAWN_HERE, layout.groups),
    (6, "buttons", DRAWN_HERE, layout.buttons),
    (7, "edits 14 high", DRAWN_HERE, layout.edits),
    (8, "choices 10, lines 8 high", DRAWN_HERE, layout.heights),
    (9, "OK and Cancel", DRAWN_HERE, layout.answers),
    (10, "width to height", DRAWN_HERE, layout.proportions),
    (11, "small screens", ALL, small_screens),
    (12, "no text clipped", ALL, clipping),
    (13, "nothing overlaps", ALL, overlaps),
    (14, "80 characters a line", BOXES, long_lines),
    (15, "6 left edges", DRAWN_HERE, layout.left_edges),
    (16, "fonts", BOXES, fonts),
    (17, "access keys", DRAWN_HERE, access_keys),
    (18, "focus and tab order", BOXES, focus_and_order),
    (19, "Esc and close button", BOXES, closing),
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
    "19: a notice takes no focus, so Esc does not reach it: its links close it, and time",
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
