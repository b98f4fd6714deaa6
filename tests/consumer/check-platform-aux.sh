#!/bin/sh
# A platform's own libaux takes the place of ours, headers included, here and for hosts:
# check-platform-aux.sh LIBSCARD BUILD CMAKE LIBAUX HOST IMAGE
set -eu
libscard=$1 build=$2 cmake=$3 libaux=$4 host=$5 image=$6
here=$(cd "$(dirname "$0")" && pwd)
rm -rf "$build"
mkdir -p "$build/platform/include/aux" "$build/platform/lib"
cp "$libscard"/aux/*.h "$build/platform/include/aux/"
for library in "${libaux%/*}"/libaux.so*; do
    cp -P "$library" "$build/platform/lib/"
done
run()
{
    "$@" >"$build/log" 2>&1 || { cat "$build/log"; exit 1; }
}
run "$cmake" -S "$libscard" -B "$build/library" -DSCARD_PROGRAM=OFF -DSCARD_VERIFY=OFF -DSCARD_SYSTEM_AUX=ON \
    -DCMAKE_BUILD_TYPE=Debug -DCMAKE_UNITY_BUILD=ON -DCMAKE_UNITY_BUILD_BATCH_SIZE=0 \
    -DCMAKE_PREFIX_PATH="$build/platform"
run "$cmake" --build "$build/library"

find "$build/library" -name '*.o.d' -exec cat {} + | tr ' ' '\n' | grep '/aux/.*\.h$' | sort -u >"$build/headers"
grep -q "^$build/platform/include/aux/Error.h" "$build/headers" || { echo "the platform's headers are not used"; exit 1; }
if grep -v "^$build/platform/" "$build/headers"; then
    echo "these headers of ours are used beside the platform's"
    exit 1
fi
if [ -d "$build/library/aux" ]; then
    echo "our own libaux is built"
    exit 1
fi

run "$cmake" --install "$build/library" --prefix "$build/installed"
if find "$build/installed" -name "*aux*" ! -name FindAux.cmake | grep .; then
    echo "our own libaux is installed"
    exit 1
fi
run "$cmake" -S "$here/host" -B "$build/host" -DCMAKE_PREFIX_PATH="$build/installed;$build/platform" -DSOURCE="$host"
run "$cmake" --build "$build/host"
"$build/host/host" "$image" 2>&1 | grep -q 'minutes of driving' || { echo "the host does not run"; exit 1; }
# shellcheck disable=SC2046 # lists of words
PKG_CONFIG_PATH=$(find "$build/installed" -name pkgconfig) run sh -c \
    'g++ -std=c++17 -fPIC "$1" -o "$2" $(pkg-config --cflags --libs scard)' sh "$host" "$build/host/by-pkg-config"
ldd "$build/host/host" | grep -q "libaux.so.1 => $build/platform/lib/" || { echo "the host takes another libaux"; exit 1; }
