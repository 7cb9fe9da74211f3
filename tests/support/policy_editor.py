"""Sets policies of an administrative template as a policy editor does, in a file for the registry.

    editor = PolicyEditor(FOLDER, "de-DE")
    text = editor.registry_text({"OtpTimeout": Enabled({"OtpTimeout": 5}), "Help": DISABLED})

A policy that is not named is not configured: its values are taken away. An element is refused when
the template's limits forbid it, or when its label is missing in the language.
"""

import dataclasses
import pathlib
from xml.etree import ElementTree

NAMESPACES = {"p": "http://schemas.microsoft.com/GroupPolicy/2006/07/PolicyDefinitions"}
DISABLED = "disabled"


@dataclasses.dataclass
class Enabled:
    elements: dict = dataclasses.field(default_factory=dict)


class Refused(Exception):
    """What a policy editor would not let its user enter."""


class PolicyEditor:
    def __init__(self, folder, culture):
        folder = pathlib.Path(folder)
        self.definitions = ElementTree.parse(folder / "mvpingui.admx").getroot()
        self.texts = ElementTree.parse(folder / culture / "mvpingui.adml").getroot()
        self.policies = {policy.get("name"): policy
                         for policy in self.definitions.iterfind(".//p:policy", NAMESPACES)}

    def values(self, policy, state):
        """(key, name, what it is set to): None for a value that is taken away."""
        key = policy.get("key")
        if policy.get("valueName"):
            way = "disabledValue" if state == DISABLED else "enabledValue"
            number = policy.find(f"p:{way}/p:decimal", NAMESPACES).get("value")
            yield key, policy.get("valueName"), int(number) if state else None
        for element in policy.iterfind("p:elements/*", NAMESPACES):
            value = None
            if isinstance(state, Enabled):
                value = self.entered(policy, element, state.elements)
            yield element.get("key", key), element.get("valueName"), value

    def entered(self, policy, element, entries):
        name, kind = element.get("id"), element.tag.rpartition("}")[2]
        shown_by = policy.get("presentation").removeprefix("$(presentation.").rstrip(")")
        presentation = self.texts.find(f".//p:presentation[@id='{shown_by}']", NAMESPACES)
        shown = presentation.find(f"*[@refId='{name}']")
        if shown is None:
            raise Refused(f"{name} is not shown")
        if kind == "text":
            text = entries.get(name, "")
            if len(text) > int(element.get("maxLength")):
                raise Refused(f"{name} has more than {element.get('maxLength')} characters")
            return text or None
        if kind == "decimal":
            number = entries.get(name, int(shown.get("defaultValue")))
            if not int(element.get("minValue")) <= number <= int(element.get("maxValue")):
                raise Refused(f"{number} is beyond the limits of {name}")
            return number
        items = element.findall("p:item", NAMESPACES)
        chosen = items[entries.get(name, int(shown.get("defaultItem")))]
        return int(chosen.find("p:value/p:decimal", NAMESPACES).get("value"))

    def registry_text(self, states):
        """What `reg import` takes: the states of the named policies, and the others not configured."""
        lines = ["Windows Registry Editor Version 5.00", ""]
        for name, policy in self.policies.items():
            for key, value, content in self.values(policy, states.get(name)):
                lines.append(f"[HKEY_LOCAL_MACHINE\\{key}]")
                written = ("-" if content is None else f"dword:{content:08x}"
                           if isinstance(content, int) else f'"{escaped(content)}"')
                lines += [f'"{value}"={written}', ""]
        return "\r\n".join(lines)


def escaped(text):
    return text.replace("\\", "\\\\").replace('"', '\\"')
