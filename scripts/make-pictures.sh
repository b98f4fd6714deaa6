#!/bin/sh
# Takes the pictures of the documentation anew, of three simulated cards that it downloads with build/release, and
# puts them into docs/images/. Needs the Debian packages chromium, xvfb, xterm, imagemagick, fonts-dejavu-core and
# tzdata beside those of scripts/install-packages.sh.
set -eu
cd "$(dirname "$0")/.."
scripts=$PWD/scripts
build=$PWD/build/release
images=$PWD/docs/images
for program in "$build/cli/scard" "$build/simulator/scard-simcard"; do
    [ -x "$program" ] || {
        echo "make-pictures.sh: $program is missing; build the preset release first" >&2
        exit 69
    }
done
for command in chromium Xvfb xterm import mogrify montage; do
    command -v $command >/dev/null || {
        echo "make-pictures.sh: $command is missing; install chromium xvfb xterm imagemagick" >&2
        exit 69
    }
done
mkdir -p "$images"
work=$(mktemp -d)
server=
trap 'if [ -n "$server" ]; then kill $server; fi; rm -rf "$work"' EXIT
mkdir "$work/bin"
ln -s "$build/cli/scard" "$build/simulator/scard-simcard" "$work/bin/"
cd "$work"
export PATH="$work/bin:$PATH" TZ=Europe/Berlin LC_ALL=C.UTF-8

for kind in driver-g2v2 workshop-g2v2 company-g2; do
    "$scripts/with-virtual-reader.sh" sh -euc '
        scard-simcard --kind "$1" >simcard.log 2>&1 &
        card=$!
        trap "kill $card 2>/dev/null || true" EXIT
        mv "$(scard download --wait 20 --to . --quiet)" "${1%%-*}.ddd"
    ' make-pictures.sh $kind
done

scard-simcard --write-roots .
roots="--root root-g1.bin --root root-g2-nist-p256.bin"
# One byte of the vehicles in the second application, changed behind the download.
cp driver.ddd changed.ddd
printf X | dd of=changed.ddd bs=1 seek=50000 conv=notrunc status=none

# Chromium refuses to run as root with its sandbox.
sandbox=
[ "$(id -u)" -ne 0 ] || sandbox=--no-sandbox

# Few colours keep the pictures small.
smaller() {
    mogrify -strip +dither -colors 96 -define png:compression-level=9 "$1"
    mv "$1" "$images/"
}

# page KIND WIDTH HEIGHT PICTURE
page() {
    chromium --headless $sandbox --disable-gpu --no-first-run --disable-background-networking \
        --disable-component-update --disable-sync --hide-scrollbars --user-data-dir="$work/profile" \
        --window-size="$2,$3" --screenshot="$work/$4" "file://$work/$1.html" >chromium.log 2>&1
}

# terminal COLUMNS LINES PICTURE COMMAND: the first lines of what the command prints
terminal() {
    cat >typed.sh <<EOF
printf '\033[?25l\$ %s\n' "$4"
$4
touch printed
sleep 60
EOF
    rm -f printed
    xterm -geometry "$1x300+0+0" -b 8 -bg '#16191c' -fg '#e4e6e8' -fa 'DejaVu Sans Mono' -fs 10 +sb -e sh typed.sh &
    terminal=$!
    tries=100
    until [ -e printed ]; do
        tries=$((tries - 1))
        [ $tries -gt 0 ]
        sleep 0.1
    done
    sleep 1
    import -window root "$3"
    kill $terminal
    wait $terminal 2>/dev/null || true
    # What is right of the terminal is the screen's black.
    height=$(($2 * 17 + 8))
    mogrify -crop "x$height+0+0" +repage -bordercolor black -fuzz 1% -trim +repage "$3"
    smaller "$3"
}

for kind in driver workshop company; do
    # shellcheck disable=SC2086 # a list of words
    scard show $roots --html $kind.html $kind.ddd
    page $kind 1100 1400 html-$kind.png
    smaller html-$kind.png
done
# The top of the page and its days, beside each other.
page driver 360 3200 long.png
montage "long.png[360x1300+0+0]" "long.png[360x1300+0+1695]" -tile 2x1 -geometry +10+10 -background '#8b9299' \
    html-phone.png
smaller html-phone.png

Xvfb -displayfd 3 -screen 0 1400x5600x24 -nolisten tcp 3>display 2>xvfb.log &
server=$!
tries=100
until [ -s display ]; do
    tries=$((tries - 1))
    [ $tries -gt 0 ] && kill -0 $server
    sleep 0.1
done
DISPLAY=:$(cat display)
export DISPLAY
terminal 80 76 text-driver-80.png "scard show --from 2024-02-20 driver.ddd"
terminal 120 69 text-driver-120.png "scard show --from 2024-02-20 driver.ddd"
terminal 120 46 text-workshop-120.png "scard show --from 2024-02-27 workshop.ddd"
terminal 120 48 text-company-120.png "scard show company.ddd"
terminal 140 80 text-verify.png "scard verify $roots changed.ddd"
ls -l "$images"
