"""The administrative template: policies for the policy editor (ADMX), and their texts (ADML)."""

from xml.etree import ElementTree

from schema import CULTURES

NAMESPACE = "http://schemas.microsoft.com/GroupPolicy/2006/07/PolicyDefinitions"
PREFIX = "veskara"
TARGET = "Quillon.Policies.Veskara"
SUPPORTED = "SUPPORTED_Product"
FILE = "mvpingui"


def element(parent, tag, text=None, **attributes):
    child = ElementTree.SubElement(parent, tag, {name: str(value)
                                                 for name, value in attributes.items()})
    child.text = text
    return child


def document(root):
    ElementTree.indent(root)
    return ElementTree.tostring(root, encoding="utf-8", xml_declaration=True) + b"\n"


def head(tag, schema):
    return ElementTree.Element(tag, {"xmlns": NAMESPACE, "revision": schema.revision,
                                     "schemaVersion": "1.0"})


def value_of(policy, tag, number):
    element(element(policy, tag), "decimal", value=number)


def add_element(elements, key, setting):
    place = {"id": setting.id, "valueName": setting.value}
    if setting.key.lower() != key.lower():
        place["key"] = setting.key
    if setting.choices:
        choices = element(elements, "enum", required="true", **place)
        for name, number in setting.choices.items():
            item = element(choices, "item", displayName=f"$(string.{setting.id}_{name})")
            element(element(item, "value"), "decimal", value=number)
    elif setting.is_number():
        element(elements, "decimal", minValue=setting.limits[0], maxValue=setting.limits[1], **place)
    else:
        # Characters; of one byte each in the code pages that have room for that many.
        element(elements, "text", maxLength=setting.size - 1, **place)


def add_policy(policies, schema, policy):
    settings = [schema.by_id[name] for name in policy.elements]
    first = schema.by_id[policy.switch] if policy.switch else settings[0]
    attributes = {"name": policy.id, "class": "Machine",
                  "displayName": f"$(string.{policy.id})",
                  "explainText": f"$(string.{policy.id}_Explain)", "key": first.key}
    if settings:
        attributes["presentation"] = f"$(presentation.{policy.id})"
    if policy.switch:
        attributes["valueName"] = first.value
    made = element(policies, "policy", **attributes)
    element(made, "parentCategory", ref=policy.category)
    element(made, "supportedOn", ref=SUPPORTED)
    if policy.switch:
        value_of(made, "enabledValue", policy.on)
        value_of(made, "disabledValue", policy.off)
    if settings:
        elements = element(made, "elements")
        for setting in settings:
            add_element(elements, first.key, setting)


def definitions(schema):
    """The bytes of the ADMX file."""
    root = head("policyDefinitions", schema)
    element(element(root, "policyNamespaces"), "target", prefix=PREFIX, namespace=TARGET)
    element(root, "resources", minRequiredRevision=schema.revision)
    element(element(element(root, "supportedOn"), "definitions"), "definition", name=SUPPORTED,
            displayName="$(string.SUPPORTED_Product)")
    categories = element(root, "categories")
    for category in schema.categories:
        made = element(categories, "category", name=category.id,
                       displayName=f"$(string.Category_{category.id})")
        if category.parent:
            element(made, "parentCategory", ref=category.parent)
    policies = element(root, "policies")
    for policy in schema.policies:
        add_policy(policies, schema, policy)
    return document(root)


def strings(schema, language):
    """The texts of a language by their names in the template."""
    def text(*names):
        return schema.shown_text(language, *names)

    yield SUPPORTED, text("supported")
    for category in schema.categories:
        yield f"Category_{category.id}", text("category", category.id)
    for policy in schema.policies:
        yield policy.id, text("policy", policy.id, "title")
        yield f"{policy.id}_Explain", text("policy", policy.id, "explain")
        for name in policy.elements:
            for choice in schema.by_id[name].choices:
                yield f"{name}_{choice}", text("choice", name, choice)


def add_presentation(presentations, schema, language, policy):
    made = element(presentations, "presentation", id=policy.id)
    for name in policy.elements:
        setting, label = schema.by_id[name], schema.shown_text(language, "setting", name)
        if setting.choices:
            default = list(setting.choices.values()).index(setting.default)
            element(made, "dropdownList", label, refId=name, noSort="true", defaultItem=default)
        elif setting.is_number():
            element(made, "decimalTextBox", label, refId=name, defaultValue=setting.suggested())
        else:
            element(element(made, "textBox", refId=name), "label", label)


def resources(schema, language):
    """The bytes of the ADML file of a language."""
    root = head("policyDefinitionResources", schema)
    element(root, "displayName", schema.text(language, "name"))
    element(root, "description", schema.text(language, "description"))
    tables = element(root, "resources")
    table = element(tables, "stringTable")
    for name, text in strings(schema, language):
        element(table, "string", text, id=name)
    presentations = element(tables, "presentationTable")
    for policy in schema.policies:
        if policy.elements:
            add_presentation(presentations, schema, language, policy)
    return document(root)


def files(schema):
    """Every file of the template, by its place in the folder of policy definitions."""
    yield f"{FILE}.admx", definitions(schema)
    for language, culture in CULTURES.items():
        yield f"{culture}/{FILE}.adml", resources(schema, language)
