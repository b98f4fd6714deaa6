#!/bin/sh
# Builds the Debian packages for this machine and looks at them as somebody who installs them does: in a scratch root, with
# a host of the README found by CMake and by pkg-config, the program, and the example's window. `test-packages.sh armhf`
# cross-builds those for 32-bit ARM and tries them under emulation. Comes after scripts/test.sh, whose simulated card and
# downloads it uses.
set -eu
cd "$(dirname "$0")/.."
here=build/release
[ -e $here/fuzz/seeds/full/image/000 ] || {
    echo "test-packages.sh: run scripts/test.sh first" >&2
    exit 1
}

packages()
{
    echo "== $1"
    cmake --preset "$1"
    cmake --build --preset "$1"
    rm -f build/"$1"/*.deb
    cpack --preset "$1"
    for each in build/"$1"/*.deb; do
        echo "$each"
        dpkg-deb --field "$each" Package Architecture Depends
    done
    lintian --fail-on error build/"$1"/*.deb
}

if [ "${1:-}" = armhf ]; then
    scripts/install-packages.sh arm packages
    scripts/arm-root.sh
    DPKG_ADMINDIR=$PWD/build/armroot/dpkg packages debian-armhf
    exec tests/packages/check-armhf.sh $here build/debian-armhf build/armroot
fi

scripts/install-packages.sh packages
packages debian
exec scripts/in-scratch-root.sh / tests/packages/check-installed.sh $here build/debian
