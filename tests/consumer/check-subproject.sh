#!/bin/sh
# As a part of another project the library builds alone: no tests, no program, no OpenSSL, none of our warnings. With
# SCARD_VERIFY=ON it brings the library that checks signatures.
# check-subproject.sh LIBSCARD FOLDER CMAKE SOURCE IMAGE VERIFY SIGNED_IMAGE ROOT_KEYS
set -eu
libscard=$1 folder=$2 cmake=$3 source=$4 image=$5 verify=$6 signed=$7 roots=$8
here=$(cd "$(dirname "$0")" && pwd)
rm -rf "$folder"
mkdir -p "$folder"
build()
{
    {
        "$cmake" -S "$here/subproject" -B "$folder" -DLIBSCARD="$libscard" -DCMAKE_UNITY_BUILD=ON \
            -DCMAKE_UNITY_BUILD_BATCH_SIZE=0 -DCMAKE_EXPORT_COMPILE_COMMANDS=ON "$@" &&
            "$cmake" --build "$folder"
    } >"$folder/log" 2>&1 || { cat "$folder/log"; exit 1; }
}
build -DSOURCE="$source" -DCMAKE_DISABLE_FIND_PACKAGE_OpenSSL=ON
"$folder/host" "$image" 2>&1 | grep -q 'minutes of driving' || { echo "does not tell what is on the card"; exit 1; }

status=0
if find "$folder" -name '*scardverify*' | grep .; then
    echo "builds this for signatures without being told to"
    status=1
fi
build -DSOURCE="$verify" -DLIBRARY=scard::verify -DSCARD_VERIFY=ON -DCMAKE_DISABLE_FIND_PACKAGE_OpenSSL=OFF
"$here/check-verify-host.sh" "$signed" "$roots" "$folder/host" || status=1

ctest --test-dir "$folder" -N | grep -q 'Total Tests: 0' || { echo "brings tests with it"; status=1; }
if grep -Eo ' -(W[a-z][a-z-]*|Werror[^ ]*)' "$folder/compile_commands.json"; then
    echo "brings these warnings with it"
    status=1
fi
if find "$folder/libscard" -type f -executable ! -name 'lib*.so*' ! -path '*/CMakeFiles/*' | grep .; then
    echo "builds these programs too"
    status=1
fi
exit $status
