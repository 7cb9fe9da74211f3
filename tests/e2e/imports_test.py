"""What the shipped binaries have the system load: the suite and the libraries named here.

Usage: imports_test.py OBJDUMP BINARY...
"""

import re
import subprocess
import sys

SUITE = {"dlgfw.dll", "vklog.dll", "vkerrmes.dll", "vkevtsub.dll", "mvcext.dll", "mvpingui.dll"}
SYSTEM = {"advapi32.dll", "comctl32.dll", "gdi32.dll", "kernel32.dll", "msvcrt.dll", "user32.dll"}
OF_PROGRAMS = {"bcrypt.dll", "ole32.dll"}

faults = []
for binary in sys.argv[2:]:
    headers = subprocess.run([sys.argv[1], "-p", binary], check=True, capture_output=True,
                             encoding="utf-8").stdout
    imported = {name.lower() for name in re.findall(r"^\s+DLL Name: (\S+)", headers, re.MULTILINE)}
    if "kernel32.dll" not in imported:
        faults.append(f"{binary}: no imports found")
    allowed = SUITE | SYSTEM | (OF_PROGRAMS if binary.endswith(".exe") else set())
    faults += [f"{binary} imports {name}" for name in sorted(imported - allowed)]
    # The compiler's own support for the stack guard loads the cryptographic provider at attach.
    faults += [f"{binary} imports {name}" for name in re.findall(r"\bCrypt\w+", headers)]
sys.exit("\n".join(faults) or None)
