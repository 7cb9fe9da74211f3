"""A walked window (hosts/looks/walker.h) and its controls, as the rules look at them.

Distances are dialog units unless a name says pixels.
"""

# The pictures that reach from edge to edge, by the numbers of resource_numbers.h.
PICTURES = {3047, 3048, 3075, 3076}
# The edits of codes and challenges, which everybody reads from the left.
CODES = {3026, 3030, 3045, 3053, 3055, 3057}
OK, CANCEL = 1, 2
TAB_STOP, SCROLLED_ACROSS = 0x10000, 0x100000  # of styles
SLACK = 0.75  # of a unit: what rounding to pixels takes

EDIT, BUTTON, STATIC, LIST, SPIN = "Edit", "Button", "Static", "SysListView32", "msctls_updown32"
DIALOG, MESSAGE_BOX, NOTICE = "dialog", "message box", "notice"


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

    def is_radio_button(self):
        return self.kind == BUTTON and self.type() in (4, 9)

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

    def label_of(self, field):
        """The text, or the button of a choice, right before a field."""
        before = self.controls[:self.controls.index(field)][-1:]
        return next((c for c in before if c.text and (c.is_text() or c.is_choice())), None)

    def parent_of(self, control):
        """What it stands in, if that is not the window itself."""
        index = control.raw["parent"]
        return None if index is None else self.all[index]

    def by_id(self, number):
        return next((c for c in self.controls if c.id == number), None)


def apart(one, other):
    """The gap between two controls: across, and down; negative where they overlap."""
    across = max(one.left, other.left) - min(one.right, other.right)
    down = max(one.top, other.top) - min(one.bottom, other.bottom)
    return across / one.window.x, down / one.window.y


def lie_over(one, other):
    """Whether something of both is drawn at one place."""
    return (max(one.ink[0], other.ink[0]) < min(one.ink[2], other.ink[2]) and
            max(one.ink[1], other.ink[1]) < min(one.ink[3], other.ink[3]))


def is_within(one, other):
    return (one.left >= other.left and one.top >= other.top and one.right <= other.right and
            one.bottom <= other.bottom)
