#!/usr/bin/env bash
# installed.sh TREE SCRATCH FOLDER PYTHON: the module of an installed TREE works, also where the tree was moved to.
set -euo pipefail
rm -rf "$2"
cp -a "$1" "$2"
cd /
PYTHONPATH=$2/$3 "$4" -B - "$2" <<'CODE'
import sys
import numpy
import quelide
assert quelide.__file__.startswith(sys.argv[1]) and quelide._quelide.__file__.startswith(sys.argv[1])
assert quelide.BoxFilter2D(numpy.full((3, 3), 7)).tolist() == [[7] * 3] * 3
maps = open("/proc/self/maps").read()
assert sys.argv[1] in next(line for line in maps.splitlines() if "libquelide" in line), maps
CODE
