#!/bin/sh
# Unpacks a Debian armhf system into build/armroot, from the archive that this machine installs from, unless it is
# there. Nothing of it is started.
set -eu
cd "$(dirname "$0")/.."
root=$PWD/build/armroot
mkdir -p build
exec 9>build/armroot.lock
flock 9
[ ! -e "$root/complete" ] || exit 0
archive=$(apt-get indextargets --format '$(REPO_URI) $(CODENAME)' 'Created-By: Packages' 'Component: main' |
    sed -n 's/ bookworm$//p' | head -n 1)
rm -rf "$root"
mmdebstrap --quiet --variant=extract --architectures=armhf \
    --include=libbenchmark-dev,libc6-dev,libgmock-dev,libgtest-dev,libpcsclite-dev,libssl-dev,libstdc++-12-dev \
    --include=qtbase5-dev bookworm "$root" "deb $archive bookworm main"
rm -rf "$root/tmp" # the emulator would take it for the programs' "/tmp/"
touch "$root/complete"
