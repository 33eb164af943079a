"""A module includes its own headers and those of modules of a lower layer. Tests may look further."""
import re

import project

LAYERS = [{"Math", "Core"},
          {"PointOperations", "LinearFiltering", "Miscellaneous", "Analysis", "Tools"},
          {"Filtering"},
          {"NonlinearFiltering", "Morphology", "Segmentation"},
          {"Classification", "Geometry"},
          {"Registration"}]
RANK = {module: rank for rank, layer in enumerate(LAYERS) for module in layer}
EVERYTHING = "qel/quelide.h"  # the header of all headers

sources = [path for path in project.files(".cpp", ".h") if path.relative_to(project.ROOT).parts[0] in RANK]
owner = {path.relative_to(project.ROOT / module / "include").as_posix(): module
         for path in sources for module in [path.relative_to(project.ROOT).parts[0]]
         if path.relative_to(project.ROOT).parts[1] == "include"}
problems, checked = [], 0
for path in sources:
    module, kind = path.relative_to(project.ROOT).parts[:2]
    if kind == "tests" or project.name(path).endswith("include/" + EVERYTHING):
        continue
    checked += 1
    for number, line in enumerate(path.read_text().splitlines(), 1):
        found = re.match(r'\s*#\s*include\s*["<]([^">]+)[">]', line)
        if not found:
            continue
        target = found[1]
        used = owner.get(target) if target.startswith("qel/") else target.split("/")[0]
        if target == EVERYTHING:
            problems.append(f"{project.name(path)}:{number}: <{target}> is for hosts")
        elif target.startswith("qel/") and used is None:
            problems.append(f"{project.name(path)}:{number}: no module has <{target}>")
        elif used in RANK and used != module and RANK[used] >= RANK[module] and {used, module} != LAYERS[0]:
            problems.append(f"{project.name(path)}:{number}: {module} stands below {used}")
project.finish(problems, checked)
