#!/bin/sh
# Builds the library, puts a simulated driver card of version 2.2 into a virtual reader behind a pcscd of its own,
# downloads it with `scard download`, shows the file's records, proves that it is genuine, and shows the driver's last
# days. The file stays under /tmp/; nothing else does.
set -eu
cd "$(dirname "$0")/.."
scripts/install-packages.sh
echo "== Building"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
{ cmake --preset release && cmake --build --preset release --target scard_cli scard-simcard; } >"$log" 2>&1 || {
    cat "$log" >&2
    exit 1
}
scripts/with-virtual-reader.sh sh -euc '
    card=build/release/simulator/scard-simcard
    echo "== Putting a simulated driver card into the virtual reader"
    $card --kind driver-g2v2 --surname Mustermann --first-names Jana --nation 0D --days 60 &
    cardPid=$!
    trap "kill $cardPid 2>/dev/null || true" EXIT
    scard=build/release/cli/scard
    echo "== scard download"
    $scard download --wait 20 | tee /run/demo.out
    file=$(sed -n "s/^File: *//p" /run/demo.out)
    [ -f "$file" ] || exit 1
    echo "== scard records"
    $scard records "$file"
    $card --write-roots /run
    echo "== scard verify"
    $scard verify --root /run/root-g1.bin --root /run/root-g2-nist-p256.bin "$file"
    echo "== scard show"
    $scard show --from 2024-02-25 "$file"
'
