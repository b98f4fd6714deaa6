#!/bin/sh
# Installs the packages, uses what they bring, and removes them: check-installed.sh BUILD PACKAGES
# Runs as root in a root that is thrown away; BUILD has a simulated card and its downloads.
set -eu
build=$PWD/$1 packages=$2
image=$build/fuzz/seeds/full/image/000
host=$build/tests/consumer/readme_show.cpp
signed=$build/fuzz/seeds/full/image/002
roots=$build/tests/consumer/root-keys
verify=$PWD/docs/api/examples/verify_image.cpp
work=$(mktemp -d)
# Without a pcscd to recommend nothing is fetched: what they depend on has to be there.
dpkg --install "$packages"/*.deb

expect()
{
    grep -q "$1" "$work/out" || {
        cat "$work/out"
        echo "no '$1'"
        exit 1
    }
}

echo "== the program"
scard --version >"$work/out"
expect '^scard 0'
scard show --utc "$image" >"$work/out"
expect '^Days'
dpkg --listfiles scard-tools >"$work/out"
expect '^/usr/share/man/man1/scard.1.gz$'
expect '^/usr/share/bash-completion/completions/scard$'

echo "== a host, found by CMake and by pkg-config"
cmake -S tests/consumer/host -B "$work/host" -DSOURCE="$host" >"$work/out"
cmake --build "$work/host" >"$work/out"
"$work/host/host" "$image" >"$work/out" 2>&1
expect 'minutes of driving'
# shellcheck disable=SC2046 # a list of words
g++ -std=c++17 -fPIC "$host" -o "$work/by-pkg-config" $(pkg-config --cflags --libs scard)
"$work/by-pkg-config" "$image" >"$work/out" 2>&1
expect 'minutes of driving'
ldd "$work/by-pkg-config" >"$work/out"
expect 'libscard.so.1 => /lib/.*/libscard.so.1'

echo "== a host that verifies"
cmake -S tests/consumer/host -B "$work/verify" -DSOURCE="$verify" -DLIBRARY=scard::verify -DPARTS=verify \
    -DCMAKE_DISABLE_FIND_PACKAGE_OpenSSL=ON >"$work/out"
cmake --build "$work/verify" >"$work/out"
tests/consumer/check-verify-host.sh "$signed" "$roots" "$work/verify/host"
# shellcheck disable=SC2046 # a list of words
g++ -std=c++17 -fPIC "$verify" -o "$work/verify-by-pkg-config" $(pkg-config --cflags --libs scardverify)
tests/consumer/check-verify-host.sh "$signed" "$roots" "$work/verify-by-pkg-config"
ldd "$work/verify-by-pkg-config" >"$work/out"
expect 'libscardverify.so.1 => /lib/.*/libscardverify.so.1'

echo "== the example"
tests/example/check-example.sh . "$work/example" /usr "$build/simulator/scard-simcard"

echo "== removing them"
packages="libscard1 libscardverify1 libscard-dev scard-tools"
# shellcheck disable=SC2086 # a list of words
dpkg --listfiles $packages | grep -E 'scard|aux' >"$work/files"
# shellcheck disable=SC2086
dpkg --purge $packages
status=0
while read -r file; do
    [ ! -e "$file" ] && [ ! -L "$file" ] || {
        echo "stays: $file"
        status=1
    }
done <"$work/files"
exit $status
