"""The library exports qel::, EnumInfo, what belongs to them, and two C functions. Nothing else, and nothing of the inside.

Arguments: nm, the library.
"""
import re
import subprocess
import sys

import project

OURS = r"(?:qel::|EnumInfo\b)"
ALLOWED = re.compile("|".join([
    r"QuelideLoadLibrary$", r"QuelideUnloadLibrary$",
    OURS,
    # a function template: its return type stands before it
    r"[\w:<>,*&\[\]() ]+ qel::[\w:]+<",
    rf"(?:typeinfo|typeinfo name|vtable|VTT) for {OURS}",
    rf"construction vtable for qel::[\w:<>,* ]+-in-{OURS}",
    rf"(?:non-virtual|virtual|covariant return) thunk to {OURS}",
    rf"guard variable for {OURS}",
]))
# A class that is inside the library, by its suffix.
INSIDE = re.compile(r"\b[A-Z]\w*(?:Private|Runner|Dispatcher|Generic|Body)(?:<[^()]*>)?(?:::|$)")

nm, library = sys.argv[1:]
lines = subprocess.run([nm, "-D", "-C", "--defined-only", library], check=True, capture_output=True,
                       text=True).stdout.splitlines()
symbols = [line.split(" ", 2)[2] for line in lines]
problems = [symbol for symbol in symbols if not ALLOWED.match(symbol)]
problems += [f"of the inside: {symbol}" for symbol in symbols if INSIDE.search(symbol.split("(")[0])]
problems += [f"missing: {needed}" for needed in ("QuelideLoadLibrary", "QuelideUnloadLibrary") if needed not in symbols]
project.finish(problems, len(symbols))
