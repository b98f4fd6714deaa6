#!/bin/sh
# Prints the archive that this machine installs Debian 12 from.
set -eu
archive=$(apt-get indextargets --format '$(REPO_URI) $(CODENAME)' 'Created-By: Packages' 'Component: main' |
    sed -n 's/ bookworm$//p' | head -n 1)
[ -n "$archive" ] || {
    echo "debian-archive.sh: this machine knows no archive of Debian 12; try apt-get update" >&2
    exit 1
}
echo "$archive"
