"""What a listener was told (hosts/listener), as text: trees of objects, and what would be spoken.

A screen reader says of a window that opens its title and its texts, of an object that gets the focus
its name, what it is, how it is, its value and its access key, and before that the groups that it
stands in; of an alert what it says; of a line of the window whose name changes the new name; and of
a typed character a star in a protected field, elsewhere the character.
"""

SILENT_STATES = {"focused", "focusable", "default", "invisible", "linked", "hot tracked"}
CHECKABLE = ("check button", "radio button")


def quoted(text):
    return '"' + " / ".join(line for line in text.splitlines() if line) + '"'


def units(place, seen):
    """A place on the screen as one in dialog units in the client area, or in pixels for a notice."""
    left, top, width, height = place
    client = seen["client"]
    left = client[2] - left - width if seen["mirrored"] else left - client[0]
    across, down = seen["units"] or (100, 100)
    numbers = [round(100 * each / scale) for each, scale in (
        (left, across), (top - client[1], down), (width, across), (height, down))]
    return "{},{} {}x{}{}".format(*numbers, "" if seen["units"] else " pixels")


def described(thing, seen):
    words = [thing["role"] + (" " + quoted(thing["name"]) if "name" in thing else "")]
    words += thing["states"]
    if "value" in thing:
        words.append("value refused" if thing["value"] is None
                     else "value " + quoted(thing["value"]))
    words += [f"{key} {quoted(thing[key])}" for key in ("description",) if key in thing]
    words += [f"key {thing['shortcut']}"] if "shortcut" in thing else []
    words += [f"action {thing['action']}"] if "action" in thing else []
    words += ["by Tab"] if thing["window"] in seen["tabs"] and thing["child"] == 0 else []
    return ", ".join(words) + " at " + units(thing["rect"], seen)


def each_of(thing, depth=0):
    """The object and all in it, each with its depth."""
    yield thing, depth
    for child in thing.get("children", []):
        yield from each_of(child, depth + 1)


def tree_text(states):
    """All states of a dialog, each with the events that led to it."""
    lines = []
    for seen in states:
        lines.append(f"== {seen['state']}")
        lines += [f"event: {event['event']}, {short(event['object'])}"
                  for event in seen["events"] if event["object"] is not None]
        lines += ["  " * depth + described(thing, seen) for thing, depth in each_of(seen["tree"])]
        lines.append("")
    return "\n".join(lines)


def short(thing):
    return thing["role"] + (" " + quoted(thing["name"]) if "name" in thing else "")


def is_same(one, other):
    return (one["window"], one["child"]) == (other["window"], other["child"])


def holds(group, thing):
    (left, top, width, height), (x, y, wide, high) = group["rect"], thing["rect"]
    return left <= x and top <= y and x + wide <= left + width and y + high <= top + height


class Reader:
    """Says what a screen reader would, step after step of a flow."""

    def __init__(self):
        self.tree = None
        self.groups = []
        self.focus = None

    def groups_of(self, thing):
        """The names of what it stands in, from outside; the window's own is not said again."""
        names = [each["name"] for each, depth in each_of(self.tree)
                 if depth > 0 and each["role"] in ("dialog", "grouping") and "name" in each and
                 not is_same(each, thing) and holds(each, thing)]
        return [name for number, name in enumerate(names)
                if name not in names[:number] + [self.tree.get("name")]]

    def say(self, thing):
        groups = self.groups_of(thing)
        entered = [f"{name} group" for name in groups if name not in self.groups]
        self.groups = groups
        words = [thing.get("name", ""), thing["role"]]
        words += [state for state in thing["states"] if state not in SILENT_STATES]
        if thing["role"] in CHECKABLE and "checked" not in thing["states"]:
            words.append("not checked")
        words += [thing[key] for key in ("value", "description", "shortcut") if thing.get(key)]
        return entered + [", ".join(" / ".join(word.split("\r\n\r\n")) for word in words if word)]

    def open(self, tree):
        """A window that comes to the front: its title, and its texts but for labels."""
        self.tree, self.groups = tree, []
        things = [thing for thing, _ in each_of(tree)]
        said = [f"{tree.get('name', '')} {tree['role']}"]
        groups = []
        for thing, following in zip(things, things[1:] + [{}]):
            if (thing["role"] == "static text" and "name" in thing and
                    thing["name"] != following.get("name")):
                entered, groups = groups, self.groups_of(thing)
                said += [f"{name} group" for name in groups if name not in entered]
                said += [line for line in thing["name"].splitlines() if line]
        return said

    def hear(self, step):
        said = self.echo(step["state"])
        focus, before = step.get("focus"), self.focus
        self.focus = focus
        if focus is not None and "tree" in step:
            said += self.open(step["tree"]) + self.say(focus)
        for event in step["events"]:
            if event["event"] == "alert" and event["object"]:
                said += event["object"].get("name", "").splitlines()
        if focus is None or "tree" in step:
            return said
        if before is None or not is_same(focus, before) or focus["states"] != before["states"]:
            return said + self.say(focus) + list(self.changes(step, ("name change",)))
        if focus.get("value") != before.get("value"):
            said.append(focus.get("value") or "blank")
        return said + list(self.changes(step, ("name change", "description change")))

    def changes(self, step, kinds):
        """What has changed in the window, and of the object with the focus."""
        lines = {thing["window"] for thing, _ in each_of(self.tree)}
        for event in step["events"]:
            thing = event["object"]
            if thing is None or thing["window"] not in lines or event["event"] not in kinds:
                continue
            if event["event"] == "name change":
                yield thing.get("name", "")
            elif is_same(thing, self.focus):
                yield from thing.get("description", "").splitlines()

    def echo(self, key):
        """The key goes to where the focus was."""
        focus = self.focus
        if len(key) != 1 or focus is None or focus["role"] != "text":
            return []
        return ["star" if "protected" in focus["states"] else key]


def label_of(step):
    """What is typed in a flow is nobody's business."""
    return {0: "opens", 1: "a character"}.get(len(step), step)


def transcript(steps):
    reader, lines = Reader(), []
    for step in steps:
        lines.append(f"-- {label_of(step['state'])}")
        if "unprotected" in step:
            lines.append("   (each left a protected text whose value is refused)"
                         if step["unprotected"] == 0 else f"   {step['unprotected']} unprotected")
        else:
            lines += ["   " + line for line in reader.hear(step) if line]
    return "\n".join(lines) + "\n"
