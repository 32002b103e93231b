#!/usr/bin/env bash
# Installs the build, builds a host against the package, and runs it.
# usage: run.sh SOURCE_FOLDER BUILD_FOLDER
set -euo pipefail
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install "$2" --prefix "$work/prefix" >/dev/null
cmake -S "$1/tests/package" -B "$work/build" -DCMAKE_PREFIX_PATH="$work/prefix" \
    -DEXAMPLE="$1/examples/smallesthost.cpp" >/dev/null
cmake --build "$work/build" >/dev/null
LD_LIBRARY_PATH="$work/prefix/lib" "$work/build/consumer" "$1/worlds/harbour.xml" | tail -n 1 |
    grep -x "left behind: 0 blocks"
