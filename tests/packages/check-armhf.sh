#!/bin/sh
# Unpacks the packages for 32-bit ARM, builds a host with what they bring, and runs it and the program under emulation:
# what they say of a download is what those of this machine say. check-armhf.sh BUILD PACKAGES ARMROOT
set -eu
build=$1 packages=$2 armroot=$PWD/$3
machine=arm-linux-gnueabihf
image=$build/fuzz/seeds/full/image/000
signed=$build/fuzz/seeds/full/image/002
roots=$build/tests/consumer/root-keys
unpacked=$PWD/$packages/unpacked
rm -rf "$unpacked"
for package in "$packages"/*.deb; do
    dpkg-deb --extract "$package" "$unpacked"
done
lib=$unpacked/usr/lib/$machine

# compiled SOURCE HOST PACKAGE
compiled()
{
    # shellcheck disable=SC2046 # a list of words
    $machine-g++ --sysroot="$armroot" -std=c++17 -fPIC "$1" -o "$2" \
        $(PKG_CONFIG_LIBDIR=$lib/pkgconfig:$armroot/usr/lib/$machine/pkgconfig PKG_CONFIG_SYSROOT_DIR='' \
            pkg-config --cflags --libs "$3" | sed "s| -I/usr/include| -I$armroot/usr/include|g")
}
compiled "$build/tests/consumer/readme_show.cpp" "$packages/host" scard
emulated()
{
    qemu-arm -L "$armroot" -E LD_LIBRARY_PATH="$lib" "$@"
}
emulated "$packages/host" "$image" 2>"$packages/there.txt"
"$build/tests/consumer/readme_show" "$image" 2>"$packages/here.txt"
grep -q 'minutes of driving' "$packages/here.txt"
cmp "$packages/here.txt" "$packages/there.txt"

emulated "$unpacked/usr/bin/scard" show --json --utc "$image" >"$packages/there.txt"
"$build/cli/scard" show --json --utc "$image" >"$packages/here.txt"
cmp "$packages/here.txt" "$packages/there.txt"
compiled docs/api/examples/verify_image.cpp "$packages/verify" scardverify
tests/consumer/check-verify-host.sh "$signed" "$roots" \
    qemu-arm -L "$armroot" -E LD_LIBRARY_PATH="$lib" "$packages/verify"
echo "the host and the program say the same on both machines"
