"""No text of the project names a path of the machine that it was written on."""
import re

import project

HOME = re.compile(r"(?<![\w.$}/])/(?:work|home|root|Users|farm)/[\w.-]+|(?<![\w.$}])/tmp/(?:build|clone)\b")
problems, checked = [], 0
for path in project.files():
    try:
        lines = path.read_text(encoding="utf-8").splitlines()
    except UnicodeDecodeError:
        continue  # a picture
    checked += 1
    for number, line in enumerate(lines, 1):
        for found in HOME.findall(line):
            problems.append(f"{project.name(path)}:{number}: {found}")
project.finish(problems, checked)
