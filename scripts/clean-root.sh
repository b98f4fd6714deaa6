#!/bin/sh
# Tries a fresh clone in a minimal Debian root, where nothing is installed that is not named: clean-root.sh [COMMAND …]
# Without a command: what the README promises, and the packages. The root stays in build/clean-root, the clone in
# build/clean-clone, what was installed is gone afterwards.
set -eu
cd "$(dirname "$0")/.."
scripts/install-packages.sh root
root=$PWD/build/clean-root
clone=$PWD/build/clean-clone
[ -e "$root/complete" ] || {
    rm -rf "$root"
    mkdir -p build
    archive=$(scripts/debian-archive.sh)
    mmdebstrap --quiet --variant=minbase bookworm "$root" "deb $archive bookworm main"
    touch "$root/complete"
}
rm -rf "$clone"
git clone --quiet . "$clone"
if [ $# -eq 0 ]; then
    set -- sh -euc 'scripts/demo.sh && scripts/test.sh && scripts/test-packages.sh'
fi
exec "$clone/scripts/in-scratch-root.sh" "$root" "$@"
