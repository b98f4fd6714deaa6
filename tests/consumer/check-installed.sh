#!/bin/sh
# What the README's commands install can be moved, found by CMake and by pkg-config, and run:
# check-installed.sh LIBSCARD FOLDER CMAKE SOURCE IMAGE README VERIFY SIGNED_IMAGE ROOT_KEYS. SOURCE is a host
# that tells what is on an image of a driver card, README a folder with what the README says, VERIFY a host that
# verifies. The moved tree stays in FOLDER/installed.
set -eu
libscard=$1 folder=$2 cmake=$3 source=$4 image=$5 readme=$6 verify=$7 signed=$8 roots=$9
here=$(cd "$(dirname "$0")" && pwd)
rm -rf "$folder"
mkdir -p "$folder"
run()
{
    "$@" >"$folder/log" 2>&1 || {
        cat "$folder/log"
        echo "failed: $*"
        exit 1
    }
}
says()
{
    "$@" >"$folder/out" 2>&1 && grep -q 'minutes of driving' "$folder/out" || {
        cat "$folder/out"
        echo "does not tell what is on the card: $*"
        exit 1
    }
}

sed "s|build/own|$folder/own|g; s|/usr/local|$folder/first|g; s|^sudo ||; /^ldconfig/d" "$readme/install.sh" >"$folder/install.sh"
cd "$libscard"
run sh -eu "$folder/install.sh"
mv "$folder/first" "$folder/installed"
installed=$folder/installed
lib=$(find "$installed" -name libscard.so.1 -printf '%h')
if grep -rlF -e "$folder/first" -e "$folder/own" "$installed" --include='*.cmake' --include='*.pc'; then
    echo "these files name the place they were built or installed at"
    exit 1
fi
for file in include/scard/SCardReader.h include/scard/records/DriverCard.h include/aux/Error.h \
    include/scardverify/VerifyImage.h share/man/man1/scard.1 \
    share/bash-completion/completions/scard share/doc/libscard/LICENSE; do
    [ -f "$installed/$file" ] || { echo "not installed: $file"; exit 1; }
done
if find "$installed" -path '*detail*' | grep .; then
    echo "installs internals"
    exit 1
fi
if grep -rliE 'openssl|libcrypto' "$installed/include" "$lib" --include='*.h' --include='*.cmake' --include='*.pc'; then
    echo "these files bring OpenSSL to hosts"
    exit 1
fi
run "$installed/bin/scard" records "$image"
ldd "$installed/bin/scard" | grep -q "libscard.so.1 => $installed/" || { echo "the program takes another library"; exit 1; }

for wanted in 0 0.1; do
    run "$cmake" -S "$here/host" -B "$folder/host-$wanted" -DCMAKE_PREFIX_PATH="$installed" -DSOURCE="$source" \
        -DWANTED=$wanted
done
run "$cmake" --build "$folder/host-0.1"
says "$folder/host-0.1/host" "$image"
ldd "$folder/host-0.1/host" | grep -q "libscard.so.1 => $installed/" || { echo "the host takes another library"; exit 1; }
if "$cmake" -S "$here/host" -B "$folder/host-2" -DCMAKE_PREFIX_PATH="$installed" -DSOURCE="$source" -DWANTED=2 \
    >"$folder/log" 2>&1; then
    echo "takes itself for version 2"
    exit 1
fi
grep -q 'scardConfig.cmake, version: ' "$folder/log" || { cat "$folder/log"; exit 1; }

# OpenSSL is the library's matter, not its host's.
run "$cmake" -S "$here/host" -B "$folder/host-verify" -DCMAKE_PREFIX_PATH="$installed" -DSOURCE="$verify" \
    -DLIBRARY=scard::verify -DPARTS=verify -DCMAKE_DISABLE_FIND_PACKAGE_OpenSSL=ON
run "$cmake" --build "$folder/host-verify"
"$here/check-verify-host.sh" "$signed" "$roots" "$folder/host-verify/host"
ldd "$folder/host-verify/host" | grep -q "libscardverify.so.1 => $installed/" || {
    echo "verifies by another library"
    exit 1
}
if objdump -p "$folder/host-verify/host" | grep 'NEEDED.*libcrypto'; then
    echo "the host that verifies is linked with OpenSSL"
    exit 1
fi
if "$cmake" -S "$here/host" -B "$folder/host-part" -DCMAKE_PREFIX_PATH="$installed" -DSOURCE="$verify" \
    -DPARTS=no-such-part >"$folder/log" 2>&1; then
    echo "has parts that there are not"
    exit 1
fi

run "$cmake" -S "$readme" -B "$folder/readme" -DCMAKE_PREFIX_PATH="$installed"
run "$cmake" --build "$folder/readme"

PKG_CONFIG_PATH=$lib/pkgconfig
export PKG_CONFIG_PATH
# shellcheck disable=SC2046 # lists of words
run g++ -std=c++17 -fPIC "$source" -o "$folder/host" $(pkg-config --cflags --libs scard)
LD_LIBRARY_PATH=$lib says "$folder/host" "$image"
# shellcheck disable=SC2046 # lists of words
run g++ -std=c++17 -fPIC "$verify" -o "$folder/verify" $(pkg-config --cflags --libs scardverify)
LD_LIBRARY_PATH=$lib "$here/check-verify-host.sh" "$signed" "$roots" "$folder/verify"
cd "$folder"
cp "$readme/host.cpp" .
run sh "$readme/build.sh"
ldd host | grep -q libscard.so.1 || { echo "the README's command links no library"; exit 1; }
