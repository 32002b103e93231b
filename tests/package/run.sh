#!/usr/bin/env bash
# Builds hosts outside the repository in one of the ways that hosts have, and runs them.
# usage: run.sh WAY SOURCE_FOLDER BUILD_FOLDER [TOOLCHAIN [EMULATOR]]
# WAY: find_package (from an installed build; with each header alone), pkg-config,
# add_subdirectory, FetchContent, static (as find_package, from a build of its own)
set -euo pipefail
way=$1 source=$2 build=$3 toolchain=${4:-} emulator=${5:-}
work=$build/package/$way
prefix=$work/prefix
rm -rf "$work"
mkdir -p "$work"
configure() { # SOURCE BUILD [OPTION...]
    cmake -S "$1" -B "$2" -G Ninja -DCMAKE_BUILD_TYPE=Release \
        ${toolchain:+-DCMAKE_TOOLCHAIN_FILE="$toolchain"} "${@:3}" >"$work/log" || { cat "$work/log"; exit 1; }
}
make() { # BUILD
    cmake --build "$1" >"$work/log" || { cat "$work/log"; exit 1; }
}
if [ "$way" = static ]; then
    build=$work/library
    configure "$source" "$build" -DCMAKE_UNITY_BUILD=ON -DBUILD_SHARED_LIBS=OFF -DZUNO_BUILD_TOOLS=OFF -DZUNO_BUILD_TESTS=OFF
    make "$build"
fi
ways=(-DWAY="$way" -DZUNO_SOURCE="$source")
case $way in
find_package | pkg-config | static)
    cmake --install "$build" --prefix "$prefix" >/dev/null
    ways+=(-Dzunopathfinder_ROOT="$prefix")
    if [ "$way" = find_package ]; then ways+=(-DHEADERS="$prefix/include/zunopathfinder"); fi
    ;;
esac
case $way in add_subdirectory | FetchContent) ways+=(-DCMAKE_UNITY_BUILD=ON) ;; esac
export PKG_CONFIG_PATH=$prefix/lib/pkgconfig LD_LIBRARY_PATH=$prefix/lib
configure "$source/tests/package" "$work/build" "${ways[@]}"
make "$work/build"
if [ "$way" = find_package ]; then # in a project without C++, too
    configure "$source/tests/package/c" "$work/c" -DZUNO_SOURCE="$source" -Dzunopathfinder_ROOT="$prefix"
    make "$work/c"
fi
if [ -e "$work/build/consumer.exe" ]; then # finds its libraries beside itself
    cp "$prefix"/bin/*.dll "$work/build"
fi
for host in consumer owncallbacks withouttypes; do
    program=$(find "$work/build" -maxdepth 1 \( -name "$host" -o -name "$host.exe" \))
    [ -n "$program" ] || continue
    ${emulator:+"$emulator"} "$program" "$source/worlds/harbour.xml" >"$work/out" 2>"$work/errors"
    tr -d '\r' <"$work/out" | tail -n 1 | grep -x "left behind: 0 blocks"
    # the report of the rule that the host breaks goes where it says
    case $host in
    owncallbacks) grep -q "^reported by .*isValidID" "$work/out" ;;
    withouttypes) grep -q "Assertion failed: isValidID" "$work/errors" ;;
    esac
done
if [ "$way" = pkg-config ]; then # and a host in C, by zuno.h alone
    cc -std=c99 "$source/examples/languages/c/host.c" -o "$work/host" $(pkg-config --cflags --libs zunoc)
    "$work/host" "$source/worlds/harbour.xml" | grep '^digest'
fi
