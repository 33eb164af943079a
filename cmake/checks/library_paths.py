"""An installed file names no folder of the machine that it was built on.

Arguments: the installed tree, then the folders that must not be named.
"""
import pathlib
import re
import sys

import project

tree, folders = pathlib.Path(sys.argv[1]), sys.argv[2:]
# From its root on: the project's own Core/src/ is none of these, whatever they are called.
named = {folder: re.compile(rb"(?<![\w.-])" + re.escape(folder).encode() + b"/") for folder in folders}
paths = [path for path in tree.rglob("*") if path.is_file()]
project.finish([f"{path.relative_to(tree)}: {folder}" for path in paths
                for folder, pattern in named.items() if pattern.search(path.read_bytes())], len(paths))
