"""Each public header compiles alone, as C++17 and without a warning; names no std:: or boost:: outside of function bodies; and
says of each exported class what it is.

Arguments: the include folders, and after -- the compiler command.
"""
import concurrent.futures
import os
import pathlib
import re
import subprocess
import sys

import project

split = sys.argv.index("--")
folders, compiler = [pathlib.Path(word) for word in sys.argv[1:split]], sys.argv[split + 1:]


def without_bodies(text):
    """The text of a header without comments, literals, #include lines and function bodies; line breaks stay."""
    keep_lines = lambda match: "\n" * match[0].count("\n") or " "
    text = re.sub(r"//[^\n]*|/\*.*?\*/|\"(?:\\.|[^\"\\\n])*\"|(?<!\w)'(?:\\.|[^'\\\n])+'|#\s*include[^\n]*", keep_lines, text, flags=re.S)
    text = text.replace("\\\n", " \n")  # macros are read like code
    out, depth, head = [], 0, ""
    for char in text:
        if depth:
            depth += {"{": 1, "}": -1}.get(char, 0)
            out.append("\n" if char == "\n" else "")
            if not depth:
                head = ""
            continue
        if char == "{" and "(" in head and not re.search(r"\b(namespace|class|struct|union|enum)\b[^()]*$", head):
            depth = 1
            continue
        head = "" if char in ";{}" else head + char
        out.append(char)
    return "".join(out)


def check(folder, path):
    header = path.relative_to(folder).as_posix()
    problems = [f"{header}:{number}: {' '.join(line.split())}"
                for number, line in enumerate(without_bodies(path.read_text()).split("\n"), 1)
                if re.search(r"\b(?:std|boost)::", line)]
    lines = path.read_text().split("\n")
    for number, line in enumerate(lines):
        if re.match(r"(template <.*> )?(class|struct) QEL_API \w+(?!.*;)", line):
            above = lines[number - 1] if not lines[number - 1].startswith("template") else lines[number - 2]
            if not above.startswith(("///", " */")):
                problems.append(f"{header}:{number + 1}: no comment says what it is: {line}")
    run = subprocess.run([*compiler, "-std=c++17", "-fsyntax-only", "-Wall", "-Wextra", "-Wpedantic", "-Werror", "-x", "c++",
                          *[f"-I{name}" for name in folders], "-"],
                         input=f"#include <{header}>\n#include <{header}>\n", capture_output=True, text=True)
    if run.returncode:
        problems.append(f"{header}: does not compile alone as C++17\n{run.stderr}")
    return problems


headers = [(folder, path) for folder in folders for path in sorted(folder.rglob("*.h"))]
with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
    found = [problem for problems in pool.map(lambda header: check(*header), headers) for problem in problems]
project.finish(found, len(headers))
