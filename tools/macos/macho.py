"""Reads arm64 Mach-O executables: only the parts that the bundle's check and its signing need."""

import struct
from dataclasses import dataclass, field

LC_SEGMENT_64, LC_SYMTAB, LC_LOAD_DYLIB, LC_LOAD_WEAK_DYLIB = 0x19, 0x2, 0xC, 0x80000018
LC_REEXPORT_DYLIB, LC_CODE_SIGNATURE, LC_BUILD_VERSION, LC_UUID = 0x8000001F, 0x1D, 0x32, 0x1B
MAGIC_64, ARM64, EXECUTE = 0xFEEDFACF, 0x0100000C, 2
TWO_LEVEL = 0x80


@dataclass
class Section:
    segment: str
    name: str
    address: int
    size: int
    offset: int


@dataclass
class MachO:
    data: bytes
    flags: int = 0
    commands: list = field(default_factory=list)  # number, offset, size
    sections: list = field(default_factory=list)
    segments: dict = field(default_factory=dict)  # name -> offset of its command
    libraries: list = field(default_factory=list)  # install names in the order of their ordinals
    weak_libraries: list = field(default_factory=list)
    undefined: dict = field(default_factory=dict)  # symbol -> library
    minimum_version: str = ""
    sdk_version: str = ""
    platform: int = 0
    signature: tuple = (0, 0)  # offset, size
    uuid: bytes = b""

    def section_data(self, name):
        return b"".join(self.data[s.offset : s.offset + s.size] for s in self.sections if s.name == name)

    def strings(self, name):
        return [text.decode("utf-8") for text in self.section_data(name).split(b"\0") if text]


def _text(data):
    return data.split(b"\0")[0].decode("utf-8")


def _version(number):
    return f"{number >> 16}.{number >> 8 & 255}" + (f".{number & 255}" if number & 255 else "")


def _read_segment(image, offset):
    name = _text(image.data[offset + 8 : offset + 24])
    image.segments[name] = offset
    (count,) = struct.unpack_from("<I", image.data, offset + 64)
    for index in range(count):
        at = offset + 72 + 80 * index
        address, size, place = struct.unpack_from("<QQI", image.data, at + 32)
        image.sections.append(
            Section(_text(image.data[at + 16 : at + 32]), _text(image.data[at : at + 16]), address, size, place)
        )


def _read_symbols(image, offset):
    symbols, count, strings, _ = struct.unpack_from("<IIII", image.data, offset + 8)
    for index in range(count):
        name, kind, _, description, _ = struct.unpack_from("<IBBHQ", image.data, symbols + 16 * index)
        if kind & 0x0E == 0 and kind & 0x01:  # external and undefined
            end = image.data.index(b"\0", strings + name)
            ordinal = description >> 8
            library = image.libraries[ordinal - 1] if 0 < ordinal <= len(image.libraries) else "any library"
            image.undefined[image.data[strings + name : end].decode()] = library


def read(path):
    with open(path, "rb") as file:
        image = MachO(file.read())
    magic, cpu, _, kind, count, _, image.flags, _ = struct.unpack_from("<IIIIIIII", image.data)
    if (magic, cpu, kind) != (MAGIC_64, ARM64, EXECUTE):
        raise ValueError("no arm64 Mach-O executable")
    offset = 32
    for _ in range(count):
        command, size = struct.unpack_from("<II", image.data, offset)
        image.commands.append((command, offset, size))
        offset += size
    for command, offset, size in image.commands:
        if command == LC_SEGMENT_64:
            _read_segment(image, offset)
        elif command in (LC_LOAD_DYLIB, LC_LOAD_WEAK_DYLIB, LC_REEXPORT_DYLIB):
            (at,) = struct.unpack_from("<I", image.data, offset + 8)
            image.libraries.append(_text(image.data[offset + at : offset + size]))
            if command != LC_LOAD_DYLIB:
                image.weak_libraries.append(image.libraries[-1])
        elif command == LC_BUILD_VERSION:
            image.platform, minimum, sdk = struct.unpack_from("<III", image.data, offset + 8)
            image.minimum_version, image.sdk_version = _version(minimum), _version(sdk)
        elif command == LC_UUID:
            image.uuid = image.data[offset + 8 : offset + 24]
        elif command == LC_CODE_SIGNATURE:
            image.signature = struct.unpack_from("<II", image.data, offset + 8)
    for command, offset, _ in image.commands:
        if command == LC_SYMTAB:
            _read_symbols(image, offset)
    return image
