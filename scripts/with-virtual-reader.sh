#!/bin/sh
# Runs a command beside a pcscd of its own with one virtual reader: with-virtual-reader.sh COMMAND [ARGUMENT …]
#
# Both run in namespaces of their own (mounts, network, processes): a pcscd that already runs on this machine is
# neither seen nor disturbed, and nothing is left when the command ends. A simulated card connects to the
# reader on 127.0.0.1, TCP port 36865, inside.
set -eu
PATH=$PATH:/usr/sbin:/sbin # pcscd and ip are not in every user's path
export PATH
user_namespace=
[ "$(id -u)" -eq 0 ] || user_namespace=r
exec unshare -mnp$user_namespace --mount-proc --fork --kill-child sh -euc '
    ip link set lo up
    mount -t tmpfs none /run
    mkdir -p /run/pcscd /run/readers
    cat >/run/readers/virtual <<EOF
FRIENDLYNAME "Simulated reader"
DEVICENAME   /dev/null:0x9001
LIBPATH      /usr/lib/pcsc/drivers/serial/libifdvpcd.so
CHANNELID    0x9001
EOF
    pcscd --foreground --config /run/readers >/run/pcscd.log 2>&1 &
    pcscd=$!
    tries=200
    until [ -S /run/pcscd/pcscd.comm ]; do
        tries=$((tries - 1))
        if [ $tries -eq 0 ] || ! kill -0 $pcscd 2>/dev/null; then
            echo "with-virtual-reader.sh: pcscd did not start:" >&2
            cat /run/pcscd.log >&2
            exit 70
        fi
        sleep 0.05
    done
    status=0
    "$@" || status=$?
    kill $pcscd 2>/dev/null || true
    wait $pcscd 2>/dev/null || true
    exit $status
' with-virtual-reader "$@"
