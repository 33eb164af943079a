"""An installed file names no folder of the machine that it was built on.

Arguments: the installed tree, then the folders that must not be named.
"""
import pathlib
import sys

import project

tree, folders = pathlib.Path(sys.argv[1]), [folder.encode() for folder in sys.argv[2:]]
paths = [path for path in tree.rglob("*") if path.is_file()]
project.finish([f"{path.relative_to(tree)}: {folder.decode()}" for path in paths
                for folder in folders if folder + b"/" in path.read_bytes()], len(paths))
