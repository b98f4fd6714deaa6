#!/bin/sh
# Runs the example programs of docs/api/examples at a simulated card: check-examples.sh EXAMPLES_BINARY_DIR SIMCARD
# Started inside own-tmp.sh and with-virtual-reader.sh, for downloads go to "/tmp/".
set -eu
examples=$1 simcard=$2
work=$(mktemp -d)
export HOME="$work" TZ=:UTC QT_LOGGING_RULES='default.debug=false'
cardPid=

takeCardOut() {
    [ -z "$cardPid" ] || kill "$cardPid" 2>/dev/null || true
    [ -z "$cardPid" ] || wait "$cardPid" 2>/dev/null || true
    cardPid=
}
trap 'takeCardOut; rm -rf "$work"' EXIT

fail() {
    echo "FAILED: $1" >&2
    [ ! -f "$work/out" ] || cat "$work/out" >&2
    exit 1
}

# Waits until a file has a line that matches: waitForLine FILE PATTERN
waitForLine() {
    tries=400
    until grep -q "$2" "$1" 2>/dev/null; do
        tries=$((tries - 1))
        [ $tries -gt 0 ] || fail "no '$2' came"
        sleep 0.05
    done
}

# The reader needs a moment to see that a card is gone; until then it would take the next one for it.
waitUntilOut() {
    tries=200
    until "$examples/example_download_with_progress" 2>&1 | grep -q 'SCardConnect() Failed'; do
        tries=$((tries - 1))
        [ $tries -gt 0 ] || fail "the reader still sees a card"
        sleep 0.05
    done
}

# putCardIn KIND [OPTION …]: the same holder on each
putCardIn() {
    takeCardOut
    waitUntilOut
    : >"$work/card"
    "$simcard" --surname Mustermann --first-names Jana --nation 0D --last-day 2024-03-05 --kind "$@" >"$work/card" &
    cardPid=$!
    waitForLine "$work/card" '^Card of kind'
}

# Runs an example, and keeps what it says and its exit code: run NAME [ARGUMENT …]
run() {
    program=example_$1
    shift
    code=0
    "$examples/$program" "$@" >"$work/out" 2>&1 || code=$?
}

endedWith() {
    [ $code -eq "$1" ] || fail "$program ended with $code, not $1"
}

# The last output has a line that is, or with -E matches, this.
says() {
    grep -q "$@" "$work/out" || fail "the output lacks: $*"
}

saysNot() {
    ! grep -q "$@" "$work/out" || fail "the output has: $*"
}

# The same at a card that was just put in, which the reader does not see at once.
runAtCard() {
    tries=100
    while :; do
        run "$@"
        grep -q 'SCardConnect() Failed' "$work/out" || return 0
        tries=$((tries - 1))
        [ $tries -gt 0 ] || fail "the reader does not see the card"
        sleep 0.05
    done
}

echo "== download_with_progress, without a card"
run download_with_progress
endedWith 1
says -F 'Failure: open: SCardConnect() Failed: '
saysNot '^File:'

echo "== wait_for_card"
"$examples/example_wait_for_card" 30 >"$work/wait" 2>&1 &
waitPid=$!
waitForLine "$work/wait" '^Waiting for a card$'
putCardIn driver-g1
waitForLine "$work/wait" '^Downloaded: take the card out$'
! grep -q '^The card is out$' "$work/wait" || fail "the card was out before it was taken out"
takeCardOut
code=0
wait $waitPid || code=$?
cp "$work/wait" "$work/out"
[ $code -eq 0 ] || fail "example_wait_for_card ended with $code"
says '^The card is out$'
rm -f /tmp/C_*.DDD
run wait_for_card 1
endedWith 1
saysNot '^A card is there$'

echo "== download_with_progress"
putCardIn driver-g2v2
runAtCard download_with_progress
endedWith 0
says -x 'Type: DriverCard'
says -x 'Holder: Jana, Mustermann'
says -x 'Language: German'
says -x 'Progress: 10*0 %'
file=$(sed -n 's/^File: \(.*\), [0-9]* bytes$/\1/p' "$work/out")
size=$(sed -n 's/^File: .*, \([0-9]*\) bytes$/\1/p' "$work/out")
[ -f "$file" ] && [ "$(wc -c <"$file")" -eq "$size" ] && [ "$size" -gt 100000 ] || fail "no file of that size"
case $file in
/tmp/C_*_J_Mustermann_D*.DDD) ;;
*) fail "another file name: $file" ;;
esac
cp "$file" "$work/driver-g2v2.DDD"

echo "== read_image"
run read_image "$work/driver-g2v2.DDD"
endedWith 0
says -x 'Holder: Jana, Mustermann'
says -E '^First generation: [1-9][0-9]+ days, [1-9][0-9]+ minutes of driving$'
says -E '^Second generation: [1-9][0-9]+ days, [1-9][0-9]+ minutes of driving$'
says -x '  last day 2024-03-05'
says -E '^  vehicle [A-Z].* from [0-9]+ to [0-9]+ km$'
says -E '^  event [0-9]+ in [A-Z]'
says -E '^  from [A-Z]* to [A-Z]+$'
run read_image "$work/card"
endedWith 1
says -x "No driver card's download"

echo "== write_elsewhere"
rm -f /tmp/C_*.DDD
mkdir "$work/downloads"
run write_elsewhere "$work/downloads"
endedWith 0
set -- "$work"/downloads/*
[ $# -eq 1 ] && [ "$(wc -c <"$1")" -eq "$size" ] || fail "the file was not brought"
says -xF "Brought: $1"
[ -z "$(find /tmp -maxdepth 1 -name 'C_*.DDD')" ] || fail "the file is still under /tmp/"
run write_elsewhere "$work/no-such-folder"
endedWith 1
says -E '^Still there: /tmp/C_.*\.DDD$'
[ -f "$(sed -n 's/^Still there: //p' "$work/out")" ] || fail "the file is nowhere"

echo "== download_in_thread"
run download_in_thread
endedWith 0
says -x 'Holder: Jana, Mustermann'
says -E '^Days: [1-9][0-9]+$'
says -x 'The main thread went on'

echo "== react_to_errors"
run react_to_errors
endedWith 0
says -x 'Downloaded'
putCardIn driver-g1 --refuse-sign 6982
runAtCard react_to_errors
endedWith 1
says -F 'The card keeps this to itself.'
says -x 'There is no whole file'
putCardIn driver-g1 --pull-at 50
runAtCard react_to_errors
endedWith 1
# The moment decides in which way a pulled card shows.
says -E '^The (card was pulled|reader does not reach the card|download cannot go on)\.'
says -x 'There is no whole file'

# The last command of a download tells the card of it: with a refusal behind it nothing fails any more.
fails=0 works=1024
while [ $((works - fails)) -gt 1 ]; do
    middle=$(((fails + works) / 2))
    putCardIn driver-g1 --fail-at $middle:6581
    runAtCard react_to_errors
    if [ $code -eq 0 ]; then works=$middle; else fails=$middle; fi
done
[ $fails -gt 100 ] || fail "a download of $works commands"
putCardIn driver-g1 --fail-at $fails:6581
runAtCard react_to_errors
endedWith 1
says -F 'The card cannot be written any more.'
says -x 'The file is whole'
putCardIn driver-g1 --fail-at $((fails - 10)):6F00
runAtCard react_to_errors
endedWith 1
says -F 'The card refuses with 6f00.'
says -x 'There is no whole file'
