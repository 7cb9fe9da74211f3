"""Rules of what a screen reader gets, checked on everything that a listener was told.

Each rule is a function that takes one state of a dialog, or one flow, and yields what breaks it.
"""

import re

from access_text import each_of, transcript

# What is typed into the flows, which no text in them has, and the code that a dialog shows.
SECRET_CHARACTERS = "579"
SHOWN_CODE = "0123456789ABCDEF"
# Everything else that can be typed into is a secret.
PLAIN_FIELDS = ("Challenge:", "days before expiry")
RULES = "PIN rules"
TAKES_INPUT = ("push button", "check button", "radio button", "link", "text", "list", "spin box")
# A part of its list, and a part of the field before it, which the arrow keys turn.
PROGRESS = "VkProgressBar"
# What the system says of a window that says nothing of itself.
ROLELESS = ("client", "window")
PARTS = ("SysHeader32", "msctls_updown32")


def name_of(thing):
    return f"{thing['role']} \"{thing.get('name', '')}\""


def things_of(seen):
    return [thing for thing, _ in each_of(seen["tree"])]


def named(seen):
    """Every control that takes the focus has a name, and so has every window; what can take it, and
    a bar of progress, has a role besides."""
    for thing in things_of(seen):
        seen_to = thing["class"] == PROGRESS or (
            "focusable" in thing["states"] and thing["class"] not in PARTS)
        if seen_to and "invisible" not in thing["states"]:
            if not thing.get("name") or thing["role"] in ROLELESS:
                yield f"a {thing['role']} of the class {thing['class']} has no name or no role"
            continue
        if (thing["role"] in TAKES_INPUT or thing is seen["tree"]) and not thing.get("name") \
                and thing["class"] not in PARTS:
            yield f"a {thing['role']} has no name"


def groups_named(seen):
    """Every group of controls, be it a box or a panel, is a named one."""
    for thing, depth in each_of(seen["tree"]):
        if depth > 0 and thing["role"] in ("grouping", "dialog") and not thing.get("name"):
            yield f"a {thing['role']} has no name"


def pictures_nameless(seen):
    """A picture is decoration: what it tells stands in the text beside it."""
    for thing in things_of(seen):
        if thing["role"] in ("graphic", "separator") and thing.get("name"):
            yield f"{name_of(thing)} is said"


def by_keyboard(seen):
    """What can be worked with is reached by Tab, the arrow keys of its group, or an access key; in
    a notice, which takes no focus, a reader does its action."""
    buttons = [thing for thing in things_of(seen) if thing["role"] == "radio button"]
    grouped = any(thing["window"] in seen["tabs"] for thing in buttons)
    for thing in things_of(seen):
        if thing["role"] not in TAKES_INPUT and "action" not in thing:
            continue
        by_arrows = thing["class"] in PARTS or thing in buttons and grouped
        by_action = seen["kind"] == "notice" and "action" in thing
        if not (thing["window"] in seen["tabs"] or "shortcut" in thing or by_arrows or by_action or
                "unavailable" in thing["states"]):
            yield f"{name_of(thing)} is reached by the mouse alone"


def rules_spoken(seen):
    """Each line of the rules says whether it is met."""
    for panel in things_of(seen):
        if panel["role"] == "dialog" and panel.get("name") == RULES:
            for thing in panel.get("children", []):
                if thing["role"] == "static text" and \
                        not re.search(", (not )?met$", thing.get("name", "")):
                    yield f"{name_of(thing)} does not say whether it is met"


def read_in_order(seen):
    """What stands above is read before."""
    if seen["kind"] == "message box":
        return
    # In a notice the links stand in groups of their own.
    apart = ("graphic", "separator") if seen["kind"] == "notice" else (
        "graphic", "separator", "grouping")
    for parent in things_of(seen):
        children = [child for child in parent.get("children", [])
                    if child["role"] not in apart]
        for before, after in zip(children, children[1:]):
            if after["rect"][1] + after["rect"][3] <= before["rect"][1]:
                yield f"{name_of(after)} is read behind {name_of(before)}"


def field_protected(thing):
    if thing["role"] != "text" or thing["class"] != "Edit" or thing.get("name") in PLAIN_FIELDS:
        return
    if "protected" not in thing["states"]:
        yield f"{name_of(thing)} is not protected"
    if thing.get("value", "") is not None:
        yield f"{name_of(thing)} gives its value"
    if not thing.get("name"):
        yield "a protected field has no name"


def fields_protected(seen):
    """A PIN edit is protected, its value is refused, and its name is its label's; events of it, from
    the first focus on, tell the same."""
    for event in seen["events"]:
        yield from field_protected(event["object"] or {"role": None})
    labels = {thing.get("name") for thing in things_of(seen)
              if thing["role"] in ("static text", "radio button")}
    for thing in things_of(seen):
        yield from field_protected(thing)
        if "protected" in thing["states"] and thing.get("name") not in labels:
            yield f"{name_of(thing)} is not called as its label"


def code_kept(seen):
    """The code that is shown is not said."""
    for thing in things_of(seen):
        for key in ("name", "value", "description"):
            if SHOWN_CODE in (thing.get(key) or "").replace("-", ""):
                yield f"{name_of(thing)} gives the code away"


STATE_RULES = (named, groups_named, pictures_nameless, by_keyboard, rules_spoken, read_in_order,
               fields_protected, code_kept)


def changes_announced(states):
    """A line of the rules that has turned from one state to the next has raised an event."""
    for before, after in zip(states, states[1:]):
        names = {thing["window"]: thing.get("name") for thing in things_of(before)}
        told = [event["object"]["window"] for event in after["events"]
                if event["event"] == "name change" and event["object"]]
        for thing in things_of(after):
            if (re.search(", (not )?met$", thing.get("name", "")) and
                    names.get(thing["window"], thing["name"]) != thing["name"] and
                    thing["window"] not in told):
                yield f"{after['state']}: {name_of(thing)} has changed unannounced"


def heard_of(step):
    """All objects that a step of a flow has told of."""
    if "tree" in step:
        yield from things_of(step)
    yield from (event["object"] for event in step["events"] if event["object"])
    if step.get("focus"):
        yield step["focus"]


def types_secrets(steps):
    return any(step["state"] and step["state"] in SECRET_CHARACTERS for step in steps)


def keys_arrive(steps):
    """What is typed comes into protected fields, each of which Tab leaves, and something tells of
    it."""
    if not types_secrets(steps):
        return
    if "star" not in transcript(steps).split():
        yield "no protected field had the focus when it was typed"
    places = [(step.get("focus") or {}).get("window") for step in steps]
    for step, before, after in zip(steps[1:], places, places[1:]):
        if step["state"] in ("Tab", "Shift+Tab") and before == after:
            yield f"{step['state']} left the focus where it was"
    if len(set(places)) == 1 and not any(step["events"] for step in steps[1:]):
        yield "no key has arrived"


def secrets_kept(steps):
    """Nothing of what was typed is in anything that was told or would be spoken."""
    if not types_secrets(steps):
        return
    for step in steps:
        for thing in heard_of(step):
            yield from field_protected(thing)
            told = " ".join(str(thing.get(key)) for key in
                            ("name", "value", "description", "shortcut", "action"))
            if any(character in told for character in SECRET_CHARACTERS):
                yield f"{name_of(thing)} tells of the secret"
    if any(character in transcript(steps) for character in SECRET_CHARACTERS):
        yield "the secret is spoken"


def keys_protected(steps):
    for step in steps:
        if step.get("unprotected", 0) != 0:
            yield f"after {step['unprotected']} of many keys the field was not protected"


FLOW_RULES = (keys_arrive, secrets_kept, keys_protected)


def unheard(names, dialogs, flows):
    """What is wrong when less was heard than was asked for; nothing when it was not."""
    missing = [name for name in names if name not in dialogs and name not in flows]
    if missing:
        return f"there is no dialog or flow {', '.join(missing)}"
    return "" if names or dialogs and flows else "nothing was heard"


def broken(dialogs, flows):
    """What breaks the rules. Both map a name to its states or steps."""
    for name, states in dialogs.items():
        for seen in states:
            for rule in STATE_RULES:
                yield from (f"{name}, {seen['state']}: {what}" for what in rule(seen))
        yield from (f"{name}, {what}" for what in changes_announced(states))
    for name, steps in flows.items():
        for rule in FLOW_RULES:
            yield from (f"{name}: {what}" for what in rule(steps))
