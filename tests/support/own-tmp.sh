#!/bin/sh
# Runs a command in a mount namespace with an empty "/tmp/" of its own: own-tmp.sh COMMAND [ARGUMENT …]
# OWN_TMP_KEEP names folders under /tmp that stay in their place (the checkout always does).
set -eu
here=$(cd "$(dirname "$0")/../.." && pwd)
user_namespace=
[ "$(id -u)" -eq 0 ] || user_namespace=r
exec unshare -m$user_namespace sh -euc '
    here=$1; shift
    kept=
    for folder in "$here" ${OWN_TMP_KEEP:-}; do
        case $folder in
        /tmp/*) kept="$kept $folder" ;;
        esac
    done
    [ -z "$kept" ] || mount --rbind /tmp /mnt
    mount -t tmpfs -o mode=1777,size=96m none /tmp
    for folder in $kept; do
        mkdir -p "$folder"
        mount --rbind "/mnt/${folder#/tmp/}" "$folder"
    done
    cd "$here"
    export OWN_TMP=1
    exec "$@"
' own-tmp "$here" "$@"
