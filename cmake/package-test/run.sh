#!/usr/bin/env bash
# run.sh install TREE BUILD                                    installs a build to an empty TREE
# run.sh cmake|pkg-config TREE LIBDIR SCRATCH COMPILER         builds the outside host against the TREE and runs it
set -euo pipefail
if [ "$1" = install ]; then
    rm -rf "$2"
    exec cmake --install "$3" --prefix "$2"
fi
way=$1 tree=$2 libdir=$3 scratch=$4 compiler=$5
source=$(cd "$(dirname "$0")" && pwd)
rm -rf "$scratch"
mkdir -p "$scratch"
# The tree is moved first: nothing in it may rely on where it was installed.
cp -a "$tree" "$scratch/tree"
case $way in
cmake)
    cmake -S "$source" -B "$scratch/build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_PREFIX_PATH="$scratch/tree"
    cmake --build "$scratch/build"
    "$scratch/build/outside"
    ;;
pkg-config)
    export PKG_CONFIG_PATH=$scratch/tree/$libdir/pkgconfig
    # shellcheck disable=SC2046 # flags are words
    "$compiler" -std=c++17 -Wall -Wextra -Wpedantic -Werror -o "$scratch/outside" "$source/outside.cpp" \
        $(pkg-config --cflags --libs quelide)
    LD_LIBRARY_PATH=$scratch/tree/$libdir "$scratch/outside"
    ;;
esac
