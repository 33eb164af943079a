"""All C++ is as clang-format writes it."""
import subprocess
import sys

import project

paths = project.files(".cpp", ".h")
run = subprocess.run([sys.argv[1], "--dry-run", *paths], capture_output=True, text=True)
wrong = sorted({line.split(":")[0] for line in run.stderr.splitlines() if "clang-format-violations" in line})
project.finish([f"{path}: run ./dev format" for path in wrong], len(paths))
