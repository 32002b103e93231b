#!/usr/bin/env bash
# Installs the Debian packages into a bare system of their own, builds a host there with what they
# brought, and runs it and a tool.
# usage: debian.sh PACKAGES_FOLDER SOURCE_FOLDER WORK_FOLDER (as root)
set -euo pipefail
packages=$1 source=$2 root=$3/amd64-root
if [ ! -e "$root.made" ]; then
    rm -rf "$root"
    mkdir -p "$3"
    debootstrap --variant=minbase --include=g++,cmake,make,pkg-config,librecast1,libtinygltf2d bookworm "$root" >"$root.log"
    touch "$root.made"
fi
rm -rf "$root/host" && mkdir "$root/host"
cp "$packages"/*.deb "$root/host"
cp "$source/tests/package/CMakeLists.txt" "$source/worlds/harbour.xml" "$root/host"
mkdir "$root/host/examples" && cp "$source"/examples/{smallesthost,owncallbacks}.cpp "$root/host/examples"
chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root bash -euc '
    cd /host
    dpkg -i *.deb >/dev/null
    for way in find_package pkg-config; do
        cmake -S . -B $way -DWAY=$way -DZUNO_SOURCE=/host -DCMAKE_BUILD_TYPE=Release >/dev/null
        cmake --build $way >/dev/null
        $way/consumer harbour.xml | tail -n 1 | grep -x "left behind: 0 blocks"
    done
    zunopath info harbour.xml | head -n 1
    find_package/owncallbacks harbour.xml | grep "^reported by"
    zunobake --version
    ls /usr/share/man/man1/zunopath.1.gz /usr/share/bash-completion/completions/zunobake \
        /usr/share/zsh/vendor-completions/_zunotools >/dev/null
    dpkg -P zunopathfinder-tools libzunopathfinder-dev libzunopathfinder1 >/dev/null
    ! ls /usr/lib | grep zuno'
