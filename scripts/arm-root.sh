#!/bin/sh
# Unpacks a Debian armhf system into build/armroot, from the archive that this machine installs from, unless it is
# there. Nothing of it is started. What its packages say of their libraries goes to build/armroot/dpkg, where
# dpkg-shlibdeps finds which packages our own have to depend on.
set -eu
cd "$(dirname "$0")/.."
root=$PWD/build/armroot
mkdir -p build
exec 9>build/armroot.lock
flock 9
[ ! -e "$root/complete" ] || exit 0
archive=$(scripts/debian-archive.sh)
rm -rf "$root"
remember='
    database=$1/dpkg
    mkdir -p "$database/info"
    echo 1 >"$database/info/format" # file names with the architecture
    for package in "$1"/var/cache/apt/archives/*.deb; do
        name=$(dpkg-deb --field "$package" Package):armhf
        dpkg-deb --ctrl-tarfile "$package" | tar -x -O ./symbols >"$database/symbols" 2>/dev/null || continue
        mv "$database/symbols" "$database/info/$name.symbols"
        dpkg-deb --fsys-tarfile "$package" | tar -t | sed -n "s|/$||; s|^\./|$1/|p" >"$database/info/$name.list"
        dpkg-deb --field "$package" | sed "/^Package:/a Status: install ok installed" >>"$database/status"
        echo >>"$database/status"
    done
'
mmdebstrap --quiet --variant=extract --architectures=armhf --extract-hook="$remember" \
    --include=libbenchmark-dev,libc6-dev,libgmock-dev,libgtest-dev,libpcsclite-dev,libssl-dev,libstdc++-12-dev \
    --include=qtbase5-dev bookworm "$root" "deb $archive bookworm main"
rm -rf "$root/tmp" # the emulator would take it for the programs' "/tmp/"
touch "$root/complete"
