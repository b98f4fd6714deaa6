#!/bin/sh
# The library that checks signatures shows what its hosts call and nothing more, takes of libscard the names of the EFs
# alone, and needs OpenSSL's cryptography, where libscard needs nothing of it: check-verify-symbols.sh LIBRARY
set -eu
status=0
shown=$(nm -DC --defined-only "$1" | cut -d' ' -f3-)
for function in readRootKey verifyImage keyIdentifierText ApplicationReport::count; do
    echo "$shown" | grep -q "^scard::verify::$function(" || { echo "does not show scard::verify::$function"; status=1; }
done
# What is inline in the headers of others leaves symbols that are weak.
if nm -DC --defined-only "$1" | grep -v ' [VWu] ' | grep -v ' T scard::verify::'; then
    echo "shows this beside its interface"
    status=1
fi
if echo "$shown" | grep 'scard::verify::detail::'; then
    echo "shows its internals"
    status=1
fi

used=$(nm -DC --undefined-only "$1" | sed 's/^ *[A-Za-z] //' | grep -E '^(scard|aux)::')
[ "$used" = "scard::efName(unsigned short, bool)" ] || { echo "takes of libscard: $used"; status=1; }

needed=$(objdump -p "$1" | awk '$1 == "NEEDED" { print $2 }')
echo "$needed" | grep -qx libcrypto.so.3 || { echo "does not link OpenSSL: is this the library?"; status=1; }
for library in $needed; do
    case $library in
    libscard.so.1 | libaux.so.1 | libQt5Core.so.5 | libcrypto.so.3) ;; # libaux comes with libscard
    libstdc++.so.6 | libgcc_s.so.1 | libc.so.6 | libm.so.6 | ld-linux*.so.*) ;;
    libasan.so.* | libubsan.so.*) ;;
    *) echo "links $library"; status=1 ;;
    esac
done
objdump -p "$1" | grep -q 'SONAME *libscardverify.so.1$' || { echo "soname is not libscardverify.so.1"; status=1; }
exit $status
