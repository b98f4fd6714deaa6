#!/bin/sh
# Installs what building, testing and the demo need, by Debian package name; as root, or through sudo.
# What is named behind it adds what the sanitizers (clang), 32-bit ARM under emulation (arm), the look at the sources
# (style), packages and the example host (packages), coverage (coverage), and a Debian root of one's own (root) need.
set -eu
packages="
    build-essential
    cmake
    doxygen
    iproute2
    libbenchmark-dev
    libgmock-dev
    libgtest-dev
    libpcsclite-dev
    libssl-dev
    ninja-build
    openssl
    pcscd
    pkg-config
    python3-jsonschema
    qtbase5-dev
    tzdata
    vsmartcard-vpcd
"
for more in "$@"; do
    case $more in
    clang) packages="$packages clang libclang-rt-14-dev llvm" ;; # llvm names the functions that leak
    arm) packages="$packages g++-arm-linux-gnueabihf gpg mmdebstrap qemu-user" ;;
    style) packages="$packages clang-format clang-tidy" ;;
    packages) packages="$packages dpkg-dev file lintian xauth xvfb" ;;
    coverage) packages="$packages gcovr" ;;
    root) packages="$packages gpg mmdebstrap" ;;
    *)
        echo "install-packages.sh: what is $more?" >&2
        exit 2
        ;;
    esac
done
missing=
for package in $packages; do
    state=$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null) || state=
    [ "$state" = installed ] || missing="$missing $package"
done
[ -n "$missing" ] || exit 0

as_root=
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || {
        echo "install-packages.sh: these packages are missing, and there is no sudo:$missing" >&2
        exit 1
    }
    as_root=sudo
fi
echo "Installing:$missing"
$as_root apt-get update -q
# shellcheck disable=SC2086 # a list of words
$as_root env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends $missing
