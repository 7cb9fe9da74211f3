"""The source that wixl reads, made of what the package holds."""

from xml.sax.saxutils import quoteattr

from contents import SETUP_KEY, code, file_id


def element(name, *children, **attributes):
    words = "".join(f" {key}={quoteattr(str(value))}" for key, value in attributes.items())
    if not children:
        return f"<{name}{words}/>"
    inner = "\n".join(children).replace("\n", "\n  ")
    return f"<{name}{words}>\n  {inner}\n</{name}>"


def component(package, each):
    win64 = "yes" if each.is64 else "no"
    files = [element("File", Id=file_id(name), Name=name.rpartition("/")[2], Source=name,
                     **({"KeyPath": "yes"} if index == 0 else {}))
             for index, name in enumerate(each.files)]
    values = [element("RegistryValue", Id=f"{each.id}_{name}", Root="HKLM", Key=key, Name=name,
                      Type="string", Value=text,
                      **({"KeyPath": "yes"} if not files and index == 0 else {}))
              for index, (key, name, text) in enumerate(each.values)]
    folder = [] if files else [element("CreateFolder")]
    return element("Component", *files, *values, *folder, Id=each.id, Win64=win64,
                   Guid=code("component", each.id))


def directory(package, name, folders):
    """A folder with its components and its folders."""
    parts = [component(package, each) for each in package.components() if each.folder == name]
    parts += [directory(package, child, folders) for child, parent, _ in folders if parent == name]
    named = {child: text for child, _, text in folders}.get(name)
    return element("Directory", *parts, Id=name, **({"Name": named} if named else {}))


def feature(package, each):
    parts = [element("ComponentRef", Id=one.id) for one in each.components]
    parts += [feature(package, child) for child in package.features if child.parent == each.id]
    return element("Feature", *parts, Id=each.id, Title=each.title, Description=each.description,
                   Level=1, AllowAdvertise="no")


def remembered(name, value, is64=True):
    search = element("RegistrySearch", Id=f"Search_{name}", Root="HKLM", Key=SETUP_KEY, Name=value,
                     Type="raw", Win64="yes" if is64 else "no")
    return element("Property", search, Id=name)


def properties(package):
    yield element("Property", Id="ARPNOMODIFY", Value="1")
    yield element("Property", Id="ARPCOMMENTS", Value="The PIN dialogs of the Veskara smart-card suite")
    yield remembered("REMEMBEREDLANGUAGE", "Language")
    yield remembered("INSTALLDIR", "Folder")
    yield remembered("INSTALLDIR32", "Folder", is64=False)
    for each in package.features:
        if each.is_optional:
            yield remembered(each.memory, each.id, each.components[0].is64)


def wix_source(package):
    folders = list(package.folders())
    roots = dict.fromkeys(parent for _, parent, _ in folders
                          if parent.startswith(("ProgramFiles", "Windows")))
    product = element(
        "Product",
        element("Package", InstallerVersion=500, Compressed="yes", InstallScope="perMachine",
                Description=package.NAME, Manufacturer=package.MANUFACTURER),
        element("MajorUpgrade",
                DowngradeErrorMessage="A newer version of [ProductName] is already installed."),
        element("Media", Id=1, Cabinet="package.cab", EmbedCab="yes"),
        *properties(package),
        element("Directory", *(directory(package, root, folders) for root in roots),
                Id="TARGETDIR", Name="SourceDir"),
        *(feature(package, each) for each in package.features if not each.parent),
        Id=package.product_code, Name=package.NAME, Language=1033, Version=package.version,
        Manufacturer=package.MANUFACTURER, UpgradeCode=package.UPGRADE_CODE)
    return ('<?xml version="1.0" encoding="utf-8"?>\n' +
            element("Wix", product, xmlns="http://schemas.microsoft.com/wix/2006/wi") + "\n")
