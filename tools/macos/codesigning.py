"""Ad-hoc code signatures of application bundles, made and read without a Mac."""

import hashlib
import plistlib
import struct
from pathlib import Path

CODE_DIRECTORY, REQUIREMENTS, ENTITLEMENTS, DER_ENTITLEMENTS = 0xFADE0C02, 0xFADE0C01, 0xFADE7171, 0xFADE7172
EMBEDDED, CMS = 0xFADE0CC0, 0xFADE0B01
# The place of a blob in the signature, and the negative number of its hash in the directory.
SLOT_INFO, SLOT_REQUIREMENTS, SLOT_RESOURCES, SLOT_ENTITLEMENTS, SLOT_DER, SLOT_CMS = 1, 2, 3, 5, 7, 0x10000
ADHOC, RUNTIME, LINKER_SIGNED = 0x2, 0x10000, 0x20000
PAGE = 4096

RULES = {
    "^Resources/": True,
    "^Resources/.*\\.lproj/": {"optional": True, "weight": 1000.0},
    "^Resources/.*\\.lproj/locversion.plist$": {"omit": True, "weight": 1100.0},
    "^Resources/Base\\.lproj/": {"weight": 1010.0},
    "^version.plist$": True,
}
RULES2 = {
    ".*\\.dSYM($|/)": {"weight": 11.0},
    "^(.*/)?\\.DS_Store$": {"omit": True, "weight": 2000.0},
    "^.*": True,
    "^Info\\.plist$": {"omit": True, "weight": 20.0},
    "^PkgInfo$": {"omit": True, "weight": 20.0},
    "^Resources/": {"weight": 20.0},
    "^Resources/.*\\.lproj/": {"optional": True, "weight": 1000.0},
    "^Resources/.*\\.lproj/locversion.plist$": {"omit": True, "weight": 1100.0},
    "^Resources/Base\\.lproj/": {"weight": 1010.0},
    "^embedded\\.provisionprofile$": {"weight": 20.0},
    "^version\\.plist$": {"weight": 20.0},
}


def resources_of(contents):
    """The property list that seals the bundle's files other than its program."""
    files, files2 = {}, {}
    for path in sorted((contents / "Resources").rglob("*")):
        if path.is_dir():
            continue
        name, data = path.relative_to(contents).as_posix(), path.read_bytes()
        old, new = hashlib.sha1(data).digest(), {"hash2": hashlib.sha256(data).digest()}
        is_localized = ".lproj/" in name
        files[name] = {"hash": old, "optional": True} if is_localized else old
        files2[name] = new | ({"optional": True} if is_localized else {})
    return plistlib.dumps({"files": files, "files2": files2, "rules": RULES, "rules2": RULES2})


def _blob(magic, data=b""):
    return struct.pack(">II", magic, 8 + len(data)) + data


def _der(tag, data):
    if len(data) < 128:
        return bytes([tag, len(data)]) + data
    length = len(data).to_bytes((len(data).bit_length() + 7) // 8, "big")
    return bytes([tag, 0x80 | len(length)]) + length + data


def _der_value(value):
    if isinstance(value, bool):
        return _der(0x01, b"\xff" if value else b"\0")
    if isinstance(value, str):
        return _der(0x0C, value.encode())
    if isinstance(value, list):
        return _der(0x30, b"".join(map(_der_value, value)))
    raise ValueError(f"no entitlement has a value like {value!r}")


def der_of(entitlements):
    pairs = (_der(0x30, _der(0x0C, key.encode()) + _der_value(value)) for key, value in sorted(entitlements.items()))
    return _der(0x70, b"\x02\x01\x01" + _der(0xB0, b"".join(pairs)))


def pages_of(data, page=PAGE):
    return b"".join(hashlib.sha256(data[at : at + page]).digest() for at in range(0, len(data), page))


def make_signature(identifier, code, text_size, special):
    """`special` maps slots to the blobs or files whose hashes the directory holds."""
    name = identifier.encode() + b"\0"
    head_size = 96
    slots = b"".join(
        hashlib.sha256(special[slot]).digest() if slot in special else bytes(32) for slot in range(SLOT_DER, 0, -1)
    )
    hashes = head_size + len(name) + len(slots)
    code_hashes = pages_of(code)
    directory = _blob(
        CODE_DIRECTORY,
        struct.pack(">IIIIIIIBBBBI", 0x20500, ADHOC | RUNTIME, hashes, head_size, SLOT_DER, len(code_hashes) // 32,
                    len(code), 32, 2, 0, 12, 0)  # fmt: skip
        + struct.pack(">III", 0, 0, 0) + struct.pack(">Q", 0)  # scatter, team, spare, long limit
        + struct.pack(">QQQ", 0, text_size, 1)  # the program's text; it is a main program
        + struct.pack(">II", 26 << 16, 0)  # the hardened runtime's version
        + name + slots + code_hashes,
    )
    blobs = [(0, directory)]
    blobs += [(slot, special[slot]) for slot in (SLOT_REQUIREMENTS, SLOT_ENTITLEMENTS, SLOT_DER)]
    blobs.append((SLOT_CMS, _blob(CMS)))
    index, data, at = b"", b"", 12 + 8 * len(blobs)
    for slot, blob in blobs:
        index += struct.pack(">II", slot, at + len(data))
        data += blob
    return _blob(EMBEDDED, struct.pack(">I", len(blobs)) + index + data)


def special_blobs(info, resources, entitlements):
    return {
        SLOT_INFO: info,
        SLOT_REQUIREMENTS: _blob(REQUIREMENTS, struct.pack(">I", 0)),
        SLOT_RESOURCES: resources,
        SLOT_ENTITLEMENTS: _blob(ENTITLEMENTS, entitlements),
        SLOT_DER: _blob(DER_ENTITLEMENTS, der_of(plistlib.loads(entitlements))),
    }


def read_signature(data):
    """Blobs of a signature by their slots."""
    magic, length, count = struct.unpack_from(">III", data)
    if magic != EMBEDDED or length > len(data):
        raise ValueError("malformed")
    found = {}
    for number in range(count):
        slot, at = struct.unpack_from(">II", data, 12 + 8 * number)
        (size,) = struct.unpack_from(">I", data, at + 4)
        found[slot] = data[at : at + size]
    return found


def read_directory(blob):
    magic, _, version, flags, hashes, name, special, code, limit = struct.unpack_from(">IIIIIIIII", blob)
    if magic != CODE_DIRECTORY:
        raise ValueError("malformed")
    return {
        "version": version,
        "flags": flags,
        "identifier": blob[name : blob.index(b"\0", name)].decode(),
        "limit": limit,
        "page": 1 << blob[39],
        "pages": blob[hashes : hashes + 32 * code],
        "special": {slot: blob[hashes - 32 * slot : hashes - 32 * (slot - 1)] for slot in range(1, special + 1)},
    }


def bundle_parts(bundle):
    contents = Path(bundle) / "Contents"
    info = (contents / "Info.plist").read_bytes()
    properties = plistlib.loads(info)
    return contents, info, properties, contents / "MacOS" / properties["CFBundleExecutable"]
