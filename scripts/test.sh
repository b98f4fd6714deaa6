#!/bin/sh
# Installs what is needed, looks at the sources' style, builds, and runs all tests: Release; again with address,
# undefined-behaviour and integer-conversion sanitizers; and a host with a worker thread with the thread sanitizer.
set -eu
cd "$(dirname "$0")/.."
scripts/install-packages.sh clang style

scripts/check-style.sh

# Tests at a reader mostly wait for it: they run beside what comes behind them.
running=
trap 'kill $running 2>/dev/null || true' EXIT
waiting=
for preset in release sanitize; do
    echo "== $preset"
    cmake --preset $preset
    cmake --build --preset $preset
    ctest --preset $preset --label-regex waits >build/$preset/waiting-tests.log 2>&1 &
    running="$running $!"
    waiting="$waiting $preset:$!"
    ctest --preset $preset --label-exclude waits
done

echo "== thread"
cmake --preset thread
cmake --build --preset thread
ctest --preset thread

status=0
for each in $waiting; do
    echo "== ${each%:*}, tests at a reader"
    wait "${each#*:}" || status=1
    cat "build/${each%:*}/waiting-tests.log"
done
running=
exit $status
