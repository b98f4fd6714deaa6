#!/bin/sh
# A host that verifies tells a genuine download, one under a root key that it does not have, and a changed one apart:
# check-verify-host.sh IMAGE ROOT_KEYS HOST … IMAGE is a driver's download of version 2.2, ROOT_KEYS a folder with both
# root keys of the simulated card, HOST what starts the program of docs/api/examples/verify_image.cpp.
set -eu
image=$1 roots=$2
shift 2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The last output has this line.
says()
{
    grep -qxF "$1" "$work/out" || {
        cat "$work/out"
        echo "the output lacks: $1"
        exit 1
    }
}
# expect CODE LINE COMMAND …
expect()
{
    code=$1 line=$2
    shift 2
    got=0
    "$@" >"$work/out" 2>&1 || got=$?
    says "$line"
    [ $got -eq "$code" ] || {
        echo "ended with $got, not $code: $*"
        exit 1
    }
}
unknown='Verdict: consistent, but signed under a root key that was not given'
expect 0 'Verdict: genuine' "$@" "$image" "$roots/root-g1.bin" "$roots/root-g2-nist-p256.bin"
says 'Generation 1: 12 of 12 signatures hold'
says 'Generation 2: 20 of 20 signatures hold'
expect 1 "$unknown" "$@" "$image"
says 'Generation 1: 0 of 12 signatures hold'
says 'Generation 2: 20 of 20 signatures hold'
expect 1 "$unknown" "$@" "$image" "$roots/root-g1.bin"
expect 2 "$image holds no root key: it is neither 144 bytes of a root key nor a root certificate" "$@" "$image" "$image"

cp "$image" "$work/changed"
middle=$(($(wc -c <"$image") / 2))
byte=$(od -A n -t u1 -j $middle -N 1 "$image")
# shellcheck disable=SC2059 # the byte is the format
printf "\\$(printf %03o $((byte ^ 1)))" | dd of="$work/changed" bs=1 seek=$middle conv=notrunc status=none
expect 1 'Verdict: altered' "$@" "$work/changed" "$roots/root-g1.bin" "$roots/root-g2-nist-p256.bin"
says 'Generation 1: 12 of 12 signatures hold'
says 'Generation 2: 19 of 20 signatures hold'
