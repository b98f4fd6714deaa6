#!/bin/sh
# Builds the example's window against the installed library, as anybody would, and uses it at a simulated card:
# check-example.sh SOURCE BUILD PREFIX SIMCARD
#
# PICTURE in the environment names a PNG file for a picture of the window.
set -eu
source=$(realpath "$1") build=$(realpath -m "$2") prefix=$(realpath "$3") simcard=$(realpath "$4")
mkdir -p "$build"
{
    cmake -S "$source/tests/example" -B "$build" -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_BUILD_TYPE= \
        -DCMAKE_CXX_FLAGS=-O0 -DCMAKE_CXX_COMPILER="${CXX:-g++}"
    cmake --build "$build" --parallel 2
} >"$build/log" 2>&1 || {
    cat "$build/log"
    exit 1
}
# The screen is inside, too: its socket is in /tmp.
export OWN_TMP_KEEP="${OWN_TMP_KEEP:-} $build $prefix ${simcard%/*}" SIMCARD="$simcard"
export QT_LOGGING_RULES=default.debug=false
export TZ=:America/New_York LC_ALL=C.UTF-8 # where a day of the card begins on the calendar day before
exec "$source/tests/support/own-tmp.sh" "$source/scripts/with-virtual-reader.sh" \
    xvfb-run --auto-servernum --server-args="-screen 0 1280x1024x24" "$build/window_tests"
