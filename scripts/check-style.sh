#!/bin/sh
# Fails when clang-format would change a file, or clang-tidy finds something in the libraries, the program, the
# simulated card or the example host. Each of these is looked at as one unit: most of the time goes into the headers of
# others.
set -eu
cd "$(dirname "$0")/.."
scripts/install-packages.sh style

sources()
{
    find "$@" \( -name 'build*' -o -name .git \) -prune -o \( -name '*.cpp' -o -name '*.h' \) -print
}

echo "== clang-format"
sources . | xargs clang-format --dry-run -Werror

work=build/style
rm -rf $work
mkdir -p $work
# tidy NAME FOLDER …: their sources but main.cpp, which may have the names of others for itself
tidy()
{
    name=$1
    shift
    sources "$@" | grep '\.cpp$' | grep -v '/main\.cpp$' | sort | sed "s|.*|#include \"$PWD/&\"|" >$work/"$name".cpp
    # shellcheck disable=SC2046 # a list of words
    clang-tidy --quiet --header-filter="^$PWD/" $work/"$name".cpp -- -std=c++17 -fPIC -I. -I"$1" -I$work \
        $(pkg-config --cflags Qt5Widgets libpcsclite | sed 's/-I/-isystem /g') >$work/"$name".log 2>&1 || {
        cat $work/"$name".log
        echo "clang-tidy finds something in $*"
        return 1
    }
}

echo "== clang-tidy"
/usr/lib/qt5/bin/moc scard/SCardMeta.h -o $work/moc_SCardMeta.cpp
tidy program cli &
program=$!
tidy library scard aux
tidy verify scardverify
tidy simulator simulator
tidy example examples/window
wait $program
