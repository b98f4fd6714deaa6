#!/bin/sh
# Builds for 32-bit ARM with hardware floating point, as in roadside boxes, and runs what needs no reader under
# emulation: all unit tests, all tests over the stand-in for PC/SC, the inputs of the searches. What the program
# makes of simulated downloads must be, byte for byte, what build/release makes of them: scripts/test.sh comes first.
set -eu
cd "$(dirname "$0")/.."
for made in build/release/cli/scard build/release/fuzz/seeds; do
    [ -e $made ] || {
        echo "test-arm.sh: $made is missing; run scripts/test.sh first" >&2
        exit 69
    }
done
scripts/install-packages.sh arm

scripts/arm-root.sh
root=$PWD/build/armroot
cmake --preset arm
cmake --build --preset arm
ctest --preset arm

echo "== the same on both machines"
here=build/release
there=build/arm
diff -r $here/fuzz/seeds $there/fuzz/seeds
compared=0
mkdir -p $here/roots
$here/simulator/scard-simcard --write-roots $here/roots
for file in $here/fuzz/seeds/full/image/*; do
    for words in "show --json --utc" "show --utc" records; do
        # shellcheck disable=SC2086 # a list of words
        $here/cli/scard $words "$file" >$here/here.txt
        # shellcheck disable=SC2086
        qemu-arm -L "$root" $there/cli/scard $words "$file" >$here/there.txt
        cmp $here/here.txt $here/there.txt
        compared=$((compared + 1))
    done
    # 8: a company card's second application is never proven.
    verify="verify --json --root $here/roots/root-g1.bin --root $here/roots/root-g2-nist-p256.bin"
    # shellcheck disable=SC2086
    $here/cli/scard $verify "$file" >$here/here.txt || [ $? -eq 8 ]
    # shellcheck disable=SC2086
    qemu-arm -L "$root" $there/cli/scard $verify "$file" >$here/there.txt || [ $? -eq 8 ]
    cmp $here/here.txt $here/there.txt
    compared=$((compared + 1))
done
echo "$compared outputs are the same"
