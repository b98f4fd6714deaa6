#!/bin/sh
# Installs what is needed, builds, and runs all tests: Release, then with address and undefined-behaviour
# sanitizers.
set -eu
cd "$(dirname "$0")/.."
scripts/install-packages.sh
for preset in release sanitize; do
    echo "== $preset"
    cmake --preset $preset -DSCARD_WARNINGS_AS_ERRORS=ON
    cmake --build --preset $preset
    ctest --preset $preset
done
