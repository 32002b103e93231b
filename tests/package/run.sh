#!/usr/bin/env bash
# Builds a host outside the repository in one of the ways that hosts have, and runs it.
# usage: run.sh WAY SOURCE_FOLDER BUILD_FOLDER [TOOLCHAIN [EMULATOR]]
# WAY: find_package (from an installed build; with each header alone), pkg-config,
# add_subdirectory, FetchContent
set -euo pipefail
way=$1 source=$2 toolchain=${4:-} emulator=${5:-}
work=$3/package/$way
prefix=$work/prefix
rm -rf "$work"
ways=(-DWAY="$way" -DZUNO_SOURCE="$source")
case $way in
find_package | pkg-config)
    cmake --install "$3" --prefix "$prefix" >/dev/null
    ways+=(-Dzunopathfinder_ROOT="$prefix")
    if [ "$way" = find_package ]; then ways+=(-DHEADERS="$prefix/include/zunopathfinder"); fi
    ;;
esac
PKG_CONFIG_PATH=$prefix/lib/pkgconfig cmake -S "$source/tests/package" -B "$work/build" -G Ninja \
    -DCMAKE_BUILD_TYPE=Release ${toolchain:+-DCMAKE_TOOLCHAIN_FILE="$toolchain"} "${ways[@]}" >/dev/null
cmake --build "$work/build" >/dev/null
if [ -e "$work/build/consumer.exe" ]; then # finds its libraries beside itself
    cp "$prefix"/bin/*.dll "$work/build"
fi
LD_LIBRARY_PATH=$prefix/lib ${emulator:+"$emulator"} "$work"/build/consumer* "$source/worlds/harbour.xml" |
    tr -d '\r' | tail -n 1 | grep -x "left behind: 0 blocks"
