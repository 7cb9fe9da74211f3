"""The bill of materials (SPDX 2.3) of a release: every file with its hashes, its licence, the
compiler that made it and what is linked into it. The same release gives the same bytes."""

import dataclasses
import hashlib
import json
import pathlib
import re
import subprocess
import time
import urllib.parse
import uuid

NAMESPACE = uuid.UUID("0f7a7a0e-6b1c-4d7e-8a94-5c3f8f3f1d52")
TOP = pathlib.Path(__file__).resolve().parent.parent
OWNER = "Organization: The Veskara authors"
COPYRIGHT = "Copyright (c) 2026 The Veskara authors"
GCC_LICENCE = "GPL-3.0-or-later WITH GCC-exception-3.1"
CRT_LICENCE = "LicenseRef-mingw-w64-runtime"
THREADS_LICENCE = "MIT AND BSD-3-Clause"
LICENCES_OF_TEXTS = {"LICENSE": "MIT", "cli11": "BSD-3-Clause", "nlohmann-json": "MIT",
                     "gcc-runtime": GCC_LICENCE, "mingw-w64-runtime": CRT_LICENCE,
                     "winpthreads": THREADS_LICENCE}
DEBIAN_NAMES = {"x64": "x86-64", "x86": "i686"}


@dataclasses.dataclass
class Material:
    """What a release is made with or holds a part of, as Debian's package has it."""
    id: str
    name: str
    package: str
    licence: str
    copyright: str
    supplier: str = "Organization: Debian"

    def version(self):
        return subprocess.run(["dpkg-query", "-W", "-f=${Version}", self.package], check=True,
                              capture_output=True, text=True).stdout

    def entry(self):
        version = self.version()
        locator = f"pkg:deb/debian/{self.package}@{urllib.parse.quote(version)}"
        return {"SPDXID": self.id, "name": self.name, "versionInfo": version,
                "supplier": self.supplier, "downloadLocation": "NOASSERTION",
                "filesAnalyzed": False, "licenseConcluded": self.licence,
                "licenseDeclared": self.licence, "copyrightText": self.copyright,
                "externalRefs": [{"referenceCategory": "PACKAGE-MANAGER",
                                  "referenceType": "purl", "referenceLocator": locator}]}


def compilers(architecture):
    """The tools that make the binaries of an architecture: only code has been compiled."""
    name = DEBIAN_NAMES[architecture]
    target = name.replace("-", "_") + "-w64-mingw32"
    return [Material(f"SPDXRef-compiler-{architecture}", f"GCC for {target}",
                     f"g++-mingw-w64-{name}-posix", "GPL-3.0-or-later",
                     "Copyright (C) Free Software Foundation, Inc."),
            Material(f"SPDXRef-linker-{architecture}", f"GNU binutils for {target}",
                     f"binutils-mingw-w64-{name}", "GPL-3.0-or-later",
                     "Copyright (C) Free Software Foundation, Inc.")]


def runtimes(architecture):
    """What a part of is in every binary that holds code."""
    name = DEBIAN_NAMES[architecture]
    crt = f"mingw-w64-{name}-dev"
    return [Material(f"SPDXRef-libstdcxx-{architecture}", "libstdc++",
                     f"g++-mingw-w64-{name}-posix", GCC_LICENCE,
                     "Copyright (C) Free Software Foundation, Inc."),
            Material(f"SPDXRef-libgcc-{architecture}", "libgcc and libssp",
                     f"gcc-mingw-w64-{name}-posix", GCC_LICENCE,
                     "Copyright (C) Free Software Foundation, Inc."),
            Material(f"SPDXRef-mingw-w64-{architecture}", "mingw-w64 runtime", crt, CRT_LICENCE,
                     "Copyright (c) 2009-2016 by the mingw-w64 project"),
            Material(f"SPDXRef-winpthreads-{architecture}", "winpthreads", crt, THREADS_LICENCE,
                     "Copyright (c) 2011-2016 mingw-w64 project")]


HEADERS = [Material("SPDXRef-cli11", "CLI11", "libcli11-dev", "BSD-3-Clause",
                    "Copyright (c) 2017-2020 University of Cincinnati"),
           Material("SPDXRef-nlohmann-json", "JSON for Modern C++", "nlohmann-json3-dev", "MIT",
                    "Copyright (c) 2013-2022 Niels Lohmann")]


def hashes(path):
    data = path.read_bytes()
    return [{"algorithm": name, "checksumValue": hashlib.new(name.lower(), data).hexdigest()}
            for name in ("SHA1", "SHA256")]


def linked_into(name):
    """The materials that the file has a part of."""
    folder, last = name.split("/")[0], name.split("/")[-1]
    if folder not in DEBIAN_NAMES or last == "mvpinguirc.dll":
        return []
    return runtimes(folder) + (HEADERS if last == "pinhost.exe" else [])


def licence(name):
    parts = ["MIT"] + [material.licence for material in linked_into(name)]
    if name.startswith("licences/"):
        parts = [LICENCES_OF_TEXTS[pathlib.PurePath(name).stem]]
    return " AND ".join(f"({part})" if " WITH " in part else part
                        for part in dict.fromkeys(" AND ".join(parts).split(" AND ")))


def file_entry(stage, path):
    name = path.relative_to(stage).as_posix()
    concluded = licence(name)
    own = not name.startswith("licences/") or name == "licences/LICENSE.txt"
    return {"SPDXID": "SPDXRef-File-" + re.sub(r"[^A-Za-z0-9.]", "-", name), "fileName": "./" + name,
            "fileTypes": ["BINARY" if path.suffix in (".dll", ".exe") else "TEXT"],
            "checksums": hashes(path), "licenseConcluded": concluded,
            "licenseInfoInFiles": ["NOASSERTION"],
            "copyrightText": COPYRIGHT if own else "NOASSERTION"}


def product_entry(files, version):
    """The verification code is defined by the standard: a hash of the sorted hashes."""
    sums = sorted(entry["checksums"][0]["checksumValue"] for entry in files)
    code = hashlib.sha1("".join(sums).encode()).hexdigest()
    return {"SPDXID": "SPDXRef-mvpingui", "name": "mvpingui", "versionInfo": version,
            "supplier": OWNER, "downloadLocation": "NOASSERTION", "filesAnalyzed": True,
            "packageVerificationCode": {"packageVerificationCodeValue": code},
            "licenseConcluded": licence("x64/pinhost.exe"), "licenseDeclared": "MIT",
            "licenseInfoFromFiles": ["NOASSERTION"], "copyrightText": COPYRIGHT,
            "primaryPackagePurpose": "LIBRARY"}


def artefact_entry(path, version):
    """A file that holds all the others: the package, the archive."""
    return {"SPDXID": "SPDXRef-Artefact" + path.suffix, "name": path.name, "versionInfo": version,
            "packageFileName": path.name, "supplier": OWNER, "downloadLocation": "NOASSERTION",
            "filesAnalyzed": False, "checksums": hashes(path),
            "licenseConcluded": licence("x64/pinhost.exe"), "licenseDeclared": "MIT",
            "copyrightText": COPYRIGHT,
            "primaryPackagePurpose": "INSTALL" if path.suffix == ".msi" else "ARCHIVE"}


def source_entry(version, source):
    return {"SPDXID": "SPDXRef-source", "name": "mvpingui-source", "versionInfo": version,
            "supplier": OWNER, "downloadLocation": "NOASSERTION", "filesAnalyzed": False,
            "sourceInfo": source, "licenseConcluded": "MIT", "licenseDeclared": "MIT",
            "copyrightText": COPYRIGHT, "primaryPackagePurpose": "SOURCE"}


def relationships(files, artefacts):
    """Triples: what, how it relates, to what."""
    yield "SPDXRef-DOCUMENT", "DESCRIBES", "SPDXRef-mvpingui"
    yield "SPDXRef-mvpingui", "GENERATED_FROM", "SPDXRef-source"
    for artefact in artefacts:
        yield "SPDXRef-DOCUMENT", "DESCRIBES", artefact["SPDXID"]
        yield artefact["SPDXID"], "CONTAINS", "SPDXRef-mvpingui"
    for entry in files:
        name, own = entry["fileName"][2:], entry["SPDXID"]
        yield "SPDXRef-mvpingui", "CONTAINS", own
        if name.startswith("licences/"):
            continue
        yield own, "GENERATED_FROM", "SPDXRef-source"
        if entry["fileTypes"] == ["BINARY"]:
            for tool in compilers(name.split("/")[0]):
                yield tool.id, "BUILD_TOOL_OF", own
        for material in linked_into(name):
            yield own, "GENERATED_FROM" if material in HEADERS else "STATIC_LINK", material.id


def make_bill(stage, artefacts, output, version, source, seconds):
    """Writes to output what is in stage and what holds it (artefacts, paths). source says what it was
    made of; seconds is the time that the bill states."""
    files = [file_entry(stage, path)
             for path in sorted(stage.rglob("*")) if path.is_file()]
    holders = [artefact_entry(path, version) for path in artefacts]
    found = [name for name in DEBIAN_NAMES if (stage / name).is_dir()]
    materials = [each for name in found for each in compilers(name) + runtimes(name)] + HEADERS
    product = product_entry(files, version)
    crt = (TOP / "licences/mingw-w64-runtime.txt").read_text(encoding="utf-8")
    links = [{"spdxElementId": one, "relationshipType": kind, "relatedSpdxElement": other}
             for one, kind, other in relationships(files, holders)]
    contents = hashlib.sha256("".join(entry["checksums"][1]["checksumValue"]
                                      for entry in files + holders).encode()).hexdigest()
    document = {
        "spdxVersion": "SPDX-2.3", "dataLicense": "CC0-1.0", "SPDXID": "SPDXRef-DOCUMENT",
        "name": f"mvpingui-{version}",
        "documentNamespace": f"urn:uuid:{uuid.uuid5(NAMESPACE, contents)}",
        "creationInfo": {
            "created": time.strftime("%Y-%m-%dT%H:%M:%SZ", time.gmtime(seconds)),
            "creators": [OWNER, f"Tool: mvpingui-release-{version}"]},
        "packages": [product, *holders, source_entry(version, source),
                     *(material.entry() for material in materials)],
        "files": files,
        "hasExtractedLicensingInfos": [{"licenseId": CRT_LICENCE, "name": "mingw-w64 runtime",
                                        "extractedText": crt}],
        "relationships": links}
    output.write_text(json.dumps(document, indent=1, ensure_ascii=False) + "\n", encoding="utf-8")
