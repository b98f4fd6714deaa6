#!/usr/bin/python3
"""Checks a download with the program openssl: check-with-openssl.py IMAGE ROOT-G1 ROOT-G2

Opens each certificate with the key of its issuer, from the root's file on, then checks the signature behind each
record. Tells how many certificates and signatures hold, and how many do not, for each generation. Here the bytes are
only laid out; what they prove is left to openssl.
"""
import subprocess
import sys
import tempfile

DIGESTS = {
    "2a8648ce3d030107": "sha256", "2b2403030208010107": "sha256",
    "2b81040022": "sha384", "2b240303020801010b": "sha384",
    "2b240303020801010d": "sha512", "2b81040023": "sha512",
}
RSA = bytes.fromhex("06092a864886f70d0101010500")
ELLIPTIC_CURVE = bytes.fromhex("06072a8648ce3d0201")


def write(name, content):
    with open(f"{folder}/{name}", "wb") as file:
        file.write(content)
    return f"{folder}/{name}"


def openssl(*arguments):
    done = subprocess.run(("openssl",) + arguments, capture_output=True, check=False)
    return done.stdout if done.returncode == 0 else None


def der(tag, *parts):
    content = b"".join(parts)
    size = len(content)
    if size < 0x80:
        return bytes([tag, size]) + content
    length = size.to_bytes((size.bit_length() + 7) // 8, "big")
    return bytes([tag, 0x80 + len(length)]) + length + content


def number(value):
    value = value.lstrip(b"\0") or b"\0"
    return der(0x02, b"\0" + value if value[0] >= 0x80 else value)


def public_key(algorithm, key):
    return der(0x30, der(0x30, algorithm), der(0x03, b"\0", key))


def rsa_key(modulus, exponent):
    return public_key(RSA, der(0x30, number(modulus), number(exponent)))


def signature_of_plain(plain):
    half = len(plain) // 2
    return der(0x30, number(plain[:half]), number(plain[half:]))


def holds(key, digest, data, signature):
    return openssl(
        "dgst", "-" + digest, "-verify", write("key", key), "-keyform", "DER",
        "-signature", write("signature", signature), write("data", data)) is not None


def open_certificate(certificate, issuer):
    """The key in a certificate of the first generation; None when its issuer did not sign it."""
    opened = openssl(
        "pkeyutl", "-verifyrecover", "-pubin", "-keyform", "DER", "-inkey", write("key", issuer),
        "-pkeyopt", "rsa_padding_mode:none", "-in", write("front", certificate[:128]))
    if opened is None or opened[:1] + opened[-1:] != b"\x6a\xbc":
        return None
    content = opened[1:107] + certificate[128:186]
    digest = openssl("dgst", "-sha1", "-binary", write("content", content))
    return rsa_key(content[28:156], content[156:164]) if digest == opened[107:127] else None


def objects(data):
    """Tag, bytes with tag and length, value, one behind the other."""
    while data:
        size = 2 if data[0] & 0x1F == 0x1F else 1
        tag, position = data[:size], size
        length = data[position]
        position += 1
        if length > 0x80:
            count = length - 0x80
            length = int.from_bytes(data[position:position + count], "big")
            position += count
        yield tag.hex(), data[:position + length], data[position:position + length]
        data = data[position + length:]


class Certificate:
    """Of the second generation."""

    def __init__(self, data):
        parts = {tag: (whole, value) for tag, whole, value in objects(next(objects(data))[2])}
        self.signed, body = parts["7f4e"]
        self.signature = signature_of_plain(parts["5f37"][1])
        fields = {tag: value for tag, _, value in objects(body)}
        key = {tag: value for tag, _, value in objects(fields["7f49"])}
        self.key = public_key(ELLIPTIC_CURVE + der(0x06, key["06"]), key["86"])
        self.digest = DIGESTS[key["06"].hex()]

    def is_signed_by(self, issuer):
        return holds(issuer.key, issuer.digest, self.signed, self.signature)


def records_of(image):
    position = 0
    while position < len(image):
        end = position + 5 + int.from_bytes(image[position + 3:position + 5], "big")
        yield image[position:position + 2].hex(), image[position + 2], image[position + 5:end]
        position = end


def tell(what, outcomes):
    print(f"{what} {outcomes.count(True)} hold {outcomes.count(False)} fail")


def check_first(certificates, pairs, root):
    outcomes, key = [], rsa_key(root[8:136], root[136:144])
    for fid in ("c108", "c100"):
        if key is not None:
            key = open_certificate(certificates[fid], key)
            outcomes.append(key is not None)
    tell("G1 certificates", outcomes)
    tell("G1 signatures", [holds(key, "sha1", *pair) for pair in pairs] if key else [])


def check_second(files, pairs, root_file):
    root = Certificate(root_file)
    certificates = {fid: Certificate(files[fid]) for fid in ("c108", "c100", "c101")}
    outcomes = [root.is_signed_by(root), certificates["c108"].is_signed_by(root)]
    outcomes += [certificates[fid].is_signed_by(certificates["c108"]) for fid in ("c100", "c101")]
    tell("G2 certificates", outcomes)
    card = certificates["c101"]
    tell("G2 signatures", [holds(card.key, card.digest, data, signature_of_plain(plain)) for data, plain in pairs])


def main(image, root_g1, root_g2):
    certificates, pairs, last = {0: {}, 2: {}}, {0: [], 2: []}, b""
    for fid, kind, payload in records_of(image):
        if kind in (1, 3):
            pairs[kind - 1].append((last, payload))
        elif fid.startswith("c1"):
            certificates[kind][fid] = payload
        last = payload
    check_first(certificates[0], pairs[0], root_g1)
    if certificates[2]:
        check_second(certificates[2], pairs[2], root_g2)


def read(path):
    with open(path, "rb") as file:
        return file.read()


with tempfile.TemporaryDirectory() as folder:
    main(*(read(path) for path in sys.argv[1:]))
