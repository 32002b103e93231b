#!/usr/bin/env bash
# Builds and runs the host of each language over the C library; all must print what the host in C++
# prints, which asks the exports themselves. A language that is not there is said to be skipped.
# usage: run.sh SOURCE_FOLDER BUILD_FOLDER
set -euo pipefail
examples=$1/examples/languages mesh=$1/worlds/harbour.xml build=$2
work=$build/languages
rm -rf "$work"
mkdir -p "$work"
export LD_LIBRARY_PATH=$build/lib ZUNO_LIBRARY=$build/lib/libzunoc.so PYTHONDONTWRITEBYTECODE=1

run_c() { "$build/bin/host_c" "$mesh"; }
run_python() { python3 "$examples/python/host.py" "$mesh"; }
run_luajit() { (cd "$examples/lua" && luajit host.lua "$mesh"); }
run_mcs() {
    mcs -warnaserror -out:"$work/Host.exe" "$examples"/csharp/*.cs && mono "$work/Host.exe" "$mesh"
}
run_rustc() {
    rustc --edition 2021 -O -D warnings --crate-type rlib --crate-name zuno -o "$work/libzuno.rlib" "$examples/rust/zuno.rs" &&
        rustc --edition 2021 -O -D warnings --extern zuno="$work/libzuno.rlib" -L "$build/lib" -o "$work/host" "$examples/rust/host.rs" &&
        "$work/host" "$mesh"
}

"$build/bin/host_cpp" "$mesh" >"$work/expected"
grep -q '^digest' "$work/expected"
failed=0
for language in C:c:true Python:python:python3 LuaJIT:luajit:luajit C#:mcs:mcs Rust:rustc:rustc; do
    IFS=: read -r name runner program <<<"$language"
    if ! command -v "$program" >/dev/null; then
        echo "SKIPPED $name: there is no $program, and it can't be installed"
    elif ! "run_$runner" >"$work/$name" 2>"$work/$name.errors"; then
        echo "FAILED $name:"
        cat "$work/$name.errors"
        failed=1
    elif ! diff "$work/expected" "$work/$name"; then
        echo "FAILED $name: it prints something else"
        failed=1
    else
        echo "$name: $(tail -n 1 "$work/$name"), as the exports give a host in C++"
    fi
done
exit $failed
