#!/usr/bin/env bash
# Installs the build, builds a host against the package, and runs it.
# usage: run.sh SOURCE_FOLDER BUILD_FOLDER [TOOLCHAIN [EMULATOR]]
set -euo pipefail
work=$2/package
rm -rf "$work"
cmake --install "$2" --prefix "$work/prefix" >/dev/null
cmake -S "$1/tests/package" -B "$work/build" -Dzunopathfinder_ROOT="$work/prefix" \
    ${3:+-DCMAKE_TOOLCHAIN_FILE="$3"} -DEXAMPLE="$1/examples/smallesthost.cpp" >/dev/null
cmake --build "$work/build" >/dev/null
if [ -e "$work/build/consumer.exe" ]; then # finds its libraries beside itself
    cp "$work"/prefix/bin/*.dll "$work/build"
fi
LD_LIBRARY_PATH="$work/prefix/lib" ${4:+"$4"} "$work"/build/consumer* "$1/worlds/harbour.xml" |
    tr -d '\r' | tail -n 1 | grep -x "left behind: 0 blocks"
