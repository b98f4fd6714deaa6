#!/bin/sh
# Runs a command as root in a copy of a system that is thrown away afterwards: in-scratch-root.sh ROOT COMMAND [ARGUMENT …]
# What it installs or writes lands in memory; ROOT (/ is this machine) stays as it is. The checkout keeps its place.
# Only root may lay one file system over another: others need sudo.
set -eu
[ "$(id -u)" -eq 0 ] || exec sudo "$0" "$@"
here=$(cd "$(dirname "$0")/.." && pwd)
root=$1
shift
exec unshare -m sh -euc '
    here=$1 root=$2
    shift 2
    scratch=$here/build/scratch
    mkdir -p "$scratch"
    mount -t tmpfs -o mode=0755 none "$scratch"
    mkdir "$scratch/written" "$scratch/work" "$scratch/root"
    mount -t overlay -o "lowerdir=$root,upperdir=$scratch/written,workdir=$scratch/work" none "$scratch/root"
    cd "$scratch/root"
    for folder in dev proc sys; do
        mkdir -p $folder
        mount --rbind /$folder $folder
    done
    mkdir -p old-root tmp
    mount -t tmpfs -o mode=1777 none tmp
    mkdir -p "./$here"
    mount --bind "$here" "./$here"
    [ "$root" = / ] || cp /etc/resolv.conf etc/
    pivot_root . old-root
    umount -l old-root
    cd "$here"
    exec "$@"
' in-scratch-root "$here" "$root" "$@"
