#!/usr/bin/env bash
# What gdb shows of each kind of value. usage: run.sh PROGRAM PRINTERS
set -euo pipefail
shown=$(gdb -nx -batch -iex 'set auto-load no' -x "$2" -ex 'set style enabled off' -ex 'break stopHere' -ex run -ex up \
    -ex 'print text' -ex 'print place' -ex 'print three' -ex 'print ids' -ex 'print heap' -ex 'print *mesh.mPtr' \
    -ex 'print second' "$1" 2>&1)
expect() {
    grep -qF -- "$1" <<<"$shown" || { echo "gdb doesn't show: $1"; echo "$shown"; exit 1; }
}
expect '= "harbour"'
expect '= (1, 2.5, -3)'
expect '= Array of 3 = {7, 7, 7}'
expect '= IDVector of 2 = {[0] = 10, [2] = 12}'
expect '= null'
expect '= NavMeshContainer: 0 nodes, 1 vertices, 0 heights, cubes of 0.5 = {mNormal = (0, 0, 0)'
expect '= ZUNO::NavMesh::NavMeshContainer at 0x'
expect ', 2 holders'
