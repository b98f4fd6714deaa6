#!/bin/sh
# Searches for inputs that break a target: fuzz.sh TARGET SECONDS. scripts/install-packages.sh clang brings what it needs.
# The inputs that reach new code are kept under build/fuzz, a finding is written to fuzz/findings/TARGET, from
# where the ordinary tests replay it. A hang of ten seconds and more than 512 MB of memory are findings.
set -eu
cd "$(dirname "$0")/.."
target=${1:?"fuzz.sh TARGET SECONDS"}
seconds=${2:?"fuzz.sh TARGET SECONDS"}
build=$PWD/build/fuzz
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz
corpus=$build/corpus/$target
findings=$PWD/fuzz/findings/$target
kept=$PWD/fuzz/corpus/$target
mkdir -p "$corpus" "$findings" "$kept"
LSAN_OPTIONS=suppressions=$PWD/tests/support/lsan.supp:print_suppressions=0
ASAN_OPTIONS=quarantine_size_mb=16
OWN_TMP_KEEP=$build
TZ=:Europe/Berlin
LC_ALL=C.UTF-8
export ASAN_OPTIONS LSAN_OPTIONS LC_ALL OWN_TMP_KEEP TZ
tests/support/own-tmp.sh "$build/fuzz/fuzz_seeds" "$build/seeds"
status=0
tests/support/own-tmp.sh "$build/fuzz/fuzz_$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=512 \
    -max_len=8192 -print_final_stats=1 -verbosity=1 -artifact_prefix="$findings/" \
    "$corpus" "$kept" "$build/seeds/$target" >"$build/$target.log" 2>&1 || status=$?
grep -E 'INFO: Loaded|INITED|DONE|^stat::|^broken|ERROR|SUMMARY|written to' "$build/$target.log" || tail -n 20 "$build/$target.log"
rmdir "$findings" "$kept" 2>/dev/null || :
exit $status
