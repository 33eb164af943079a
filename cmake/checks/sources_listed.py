"""Each unit stands in exactly one list of a CMakeLists.txt: that of its own folder or of one above it."""
import re

import project

problems, checked = [], 0
outside = project.ROOT / "cmake" / "package-test"  # a project of its own, with one unit
for unit in project.files(".cpp"):
    if outside in unit.parents:
        continue
    checked += 1
    hits = 0
    for folder in unit.parents:
        lists = folder / "CMakeLists.txt"
        if lists.is_file():
            text = re.sub(r"#.*", "", lists.read_text())
            words = re.findall(r'[^\s()"]+', text)
            hits += words.count(unit.relative_to(folder).as_posix())
        if folder == project.ROOT:
            break
    if hits != 1:
        problems.append(f"{project.name(unit)}: stands in {hits} lists")
project.finish(problems, checked)
