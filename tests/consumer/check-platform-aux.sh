#!/bin/sh
# A platform's own libaux takes the place of ours, headers included: check-platform-aux.sh SOURCE BUILD CMAKE LIBAUX
set -eu
source=$1 build=$2 cmake=$3 libaux=$4
rm -rf "$build"
mkdir -p "$build/platform/include/aux" "$build/platform/lib"
cp "$source"/aux/*.h "$build/platform/include/aux/"
for library in "${libaux%/*}"/libaux.so*; do
    cp -P "$library" "$build/platform/lib/"
done
"$cmake" -S "$source" -B "$build/library" -DSCARD_DEVELOPER=OFF -DSCARD_SYSTEM_AUX=ON -DCMAKE_BUILD_TYPE=Debug \
    -DCMAKE_PREFIX_PATH="$build/platform" >"$build/log" 2>&1 || { cat "$build/log"; exit 1; }
"$cmake" --build "$build/library" --parallel 2 >"$build/log" 2>&1 || { cat "$build/log"; exit 1; }

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
