"""A unit that is compiled for a higher instruction set defines no weak function without an architecture in its name: the
linker keeps one copy of each, maybe this one, and the library would die on an older processor.

Arguments: nm, the objects.
"""
import re
import subprocess
import sys

import project

ARCHITECTURE = re.compile(r"sse4_1|avx2?\b|arch_128_tag|Sse41|SSE41")
nm, objects = sys.argv[1], sys.argv[2:]
problems = []
for path in objects:
    for line in subprocess.run([nm, "-C", path], check=True, capture_output=True, text=True).stdout.splitlines():
        kind, symbol = line[17:].split(" ", 1)
        if kind == "W" and not ARCHITECTURE.search(symbol):
            problems.append(f"{path.rsplit('/', 1)[1]}: {symbol}")
project.finish(problems, len(objects))
