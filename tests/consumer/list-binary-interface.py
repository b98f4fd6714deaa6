#!/usr/bin/env python3
"""Lists what hosts are linked against: list-binary-interface.py NAMESPACE LIBRARY

The exported symbols of the namespace, and the virtual functions of each of its classes in slot order. Both are read off
the built library: symbols from its dynamic table, slots from the relocations of its virtual tables. What the compiler
leaves of the standard library's templates is no interface.
"""
import re
import subprocess
import sys


def lines_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout.splitlines()


def readable(names):
    text = "\n".join(names)
    return subprocess.run(["c++filt"], check=True, capture_output=True, input=text, text=True).stdout.split("\n")


def symbols(library):
    """(name, address, size, is exported) of each symbol that is defined"""
    for table in ("--dyn-syms", "--symbols"):
        for line in lines_of("readelf", "-W", table, library):
            fields = line.split()
            if len(fields) >= 8 and re.match(r"\d+:$", fields[0]) and fields[6] != "UND":
                name = fields[7].split("@")[0]
                yield name, int(fields[1], 16), int(fields[2], 0), table == "--dyn-syms"


def relocations(library):
    """address -> (symbol or None, address that it points to)"""
    found = {}
    for line in lines_of("readelf", "-W", "--relocs", library):
        fields = line.split()
        if len(fields) < 4 or not re.fullmatch(r"[0-9a-f]{8,16}", fields[0]):
            continue
        if "RELATIVE" in fields[2]:
            found[int(fields[0], 16)] = (None, int(fields[3], 16))
        elif len(fields) >= 5:
            found[int(fields[0], 16)] = (fields[4].split("@")[0], None)
    return found


def main(namespace, library):
    place = "".join(f"{len(part)}{part}" for part in namespace.split("::"))
    ours = re.compile(rf"_Z(T[VIS])?N?K?{place}")
    word = 8
    everything = sorted(symbols(library))
    exported = sorted({name for name, _, _, shown in everything if shown and ours.match(name)})
    print("# Exported symbols")
    for name, text in zip(exported, readable(exported)):
        print(f"{name}  {text}")

    at = {address: name for name, address, _, _ in everything}
    pointers = relocations(library)
    print("\n# Virtual functions, in slot order")
    for name, address, size, shown in everything:
        if not shown or not name.startswith(f"_ZTVN{place}"):
            continue
        print(readable([name])[0].replace("vtable for ", "class "))
        slots = []
        for pointer in range(address + 2 * word, address + size, word):
            symbol, target = pointers.get(pointer, (None, None))
            slots.append(symbol or at[target])
        for number, text in enumerate(readable(slots)):
            print(f"  {number:2}  {text}")


main(*sys.argv[1:])
