#!/bin/sh
# libscard calls only these functions of PC/SC, and shows none of its internals: check-symbols.sh LIBRARY
set -eu
allowed="SCardConnect SCardDisconnect SCardEstablishContext SCardFreeMemory SCardGetStatusChange SCardListReaders
    SCardReleaseContext SCardStatus SCardTransmit g_rgSCardT1Pci pcsc_stringify_error"

status=0
used=$(nm -D --undefined-only "$1" | awk '{ print $NF }' | grep -E '^(SCard|g_rgSCard|pcsc_)' | sort -u)
[ -n "$used" ] || { echo "no PC/SC function is used: is this the library?"; exit 1; }
for symbol in $used; do
    case " $(echo $allowed) " in
    *" $symbol "*) ;;
    *) echo "calls $symbol"; status=1 ;;
    esac
done

shown=$(nm -DC --defined-only "$1" | cut -d' ' -f3-)
for class in SCardReader SCardGeneric SCardDriverG1 SCardDriverG2 SCardWorkshopG1 SCardWorkshopG2 SCardCompanyG1 \
    SCardCompanyG2; do
    echo "$shown" | grep -q "scard::$class::staticMetaObject" || { echo "does not show scard::$class"; status=1; }
done
echo "$shown" | grep -q "scard::SCardMeta::staticMetaObject" || { echo "does not show scard::SCardMeta"; status=1; }
echo "$shown" | grep -q '^scard::efName(' || { echo "does not show scard::efName"; status=1; }
if echo "$shown" | grep -E '(^|[^a-z_])scard::detail::'; then
    echo "shows its internals"
    status=1
fi

needed=$(objdump -p "$1" | awk '$1 == "NEEDED" { print $2 }')
for library in $needed; do
    case $library in
    libQt5Core.so.5 | libpcsclite.so.1 | libaux.so.1) ;;
    libstdc++.so.6 | libgcc_s.so.1 | libc.so.6 | libm.so.6 | ld-linux*.so.*) ;;
    libasan.so.* | libubsan.so.*) ;;
    *) echo "links $library"; status=1 ;;
    esac
done
objdump -p "$1" | grep -q 'SONAME *libscard.so.1$' || { echo "soname is not libscard.so.1"; status=1; }
exit $status
