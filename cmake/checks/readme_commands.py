"""Each command that a document tells to type exists, and so does each file that it links to.

Argument: the command-line host, where it is built.
"""
import re
import subprocess
import sys

import project

host = sys.argv[1] if len(sys.argv) > 1 else ""
dev = set(subprocess.run([project.ROOT / "dev", "help"], check=True, capture_output=True, text=True)
          .stdout.replace("./dev ", "\n./dev ").split("\n"))
dev = {line.split()[1] for line in dev if line.startswith("./dev ")}
host_commands = set()
if host:
    usage = subprocess.run([host, "--help"], check=True, capture_output=True, text=True).stdout
    host_commands = set(re.findall(r"^\s+([a-z]+)\b", usage, re.M))

problems, checked = [], 0
for path in project.files(".md"):
    text = path.read_text()
    code = "\n".join(re.findall(r"```.*?```|`[^`\n]+`", text, re.S))
    for command in re.findall(r"\./dev +([a-z]+)", code):
        checked += 1
        if command not in dev:
            problems.append(f"{project.name(path)}: ./dev {command} is no command")
    for command in re.findall(r"(?:^\$? *|[`/])quelide +([a-z]+)", code, re.M):
        checked += 1
        if host and command not in host_commands:
            problems.append(f"{project.name(path)}: quelide {command} is no command")
    for script in re.findall(r"(?<![\w./])\.?(?:\w+/)+[\w-]+\.(?:sh|py|cpp|h|md)\b", code):
        checked += 1
        if not (project.ROOT / script).exists() and not (path.parent / script).exists() and not script.startswith(("qel/", "tbb/")):
            problems.append(f"{project.name(path)}: no file {script}")
    for link in re.findall(r"\]\(([^)#\s]+)[^)]*\)", text):
        if "://" not in link:
            checked += 1
            if not (path.parent / link).exists():
                problems.append(f"{project.name(path)}: no file {link}")
project.finish(problems, checked)
