"""What the documents say is so: the commands in their console blocks print what stands below them, and the README lists
exactly the algorithms that are registered.

Arguments: the host, the project's root, an empty folder to work in.
"""
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys

host, root, scratch = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]), pathlib.Path(sys.argv[3])
shutil.rmtree(scratch, ignore_errors=True)
scratch.mkdir(parents=True)
(scratch / "Examples").symlink_to(root.resolve() / "Examples")
environment = {**os.environ, "PATH": f"{host.parent}:{os.environ['PATH']}"}
problems, commands = [], 0


def lines(text):
    # What `what()` leaves at the end of a line, editors take away.
    return [line.rstrip() for line in text.rstrip("\n").split("\n")]


for name in ("README.md", "Documentation/UserGuide.md"):
    for block in re.findall(r"^```console\n(.*?)^```$", (root / name).read_text(), re.M | re.S):
        for command, expected in re.findall(r"^\$ (.*)\n((?:(?!\$ ).*\n)*)", block, re.M):
            commands += 1
            done = subprocess.run(["bash", "-c", command], cwd=scratch, env=environment, text=True,
                                  stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
            if lines(done.stdout) != lines(expected):
                problems.append(f"{name}: {command}\nprints\n{done.stdout}and not\n{expected}")

rows = re.findall(r"^\| [^|]* \| `(\w[\w:]*)` \| (.*) \|$", (root / "README.md").read_text(), re.M)
listed = {(namespace, algorithm) for namespace, names in rows for algorithm in re.findall(r"`(\w+)`", names)}
registered = {(entry["namespace"], entry["name"])
              for entry in json.loads(subprocess.check_output([host, "list", "--json"]))}
problems += [f"README.md lacks {'::'.join(entry)}" for entry in sorted(registered - listed)]
problems += [f"README.md has {'::'.join(entry)}, which is not registered" for entry in sorted(listed - registered)]

print("\n".join(problems))
print(f"{commands} commands, {len(registered)} algorithms, {len(problems)} wrong")
sys.exit(1 if problems or not commands or not registered else 0)
