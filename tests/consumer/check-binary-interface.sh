#!/bin/sh
# What hosts are linked against is what it was: check-binary-interface.sh LIBRARY …
# docs/binary-interface.md says what may change, and when; the lists are made anew with list-binary-interface.py.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
status=0
for library in "$@"; do
    name=${library##*/}
    name=${name%%.*}
    namespace=${name#lib}
    [ "$namespace" != scardverify ] || namespace=scard::verify
    "$here/list-binary-interface.py" "$namespace" "$library" | diff "$here/binary-interface/$name.so.1.txt" - || {
        echo "the binary interface of $name changed: < as it is kept, > as it was built"
        status=1
    }
done
exit $status
