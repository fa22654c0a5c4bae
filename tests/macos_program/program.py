"""An arm64 program for macOS in the memory of an emulated processor.

The address of an import leaves the emulation. Its effect is a Python function, which may call the program again.
"""

import struct
import sys
from collections import Counter
from pathlib import Path

import unicorn
from unicorn.arm64_const import UC_ARM64_REG_D0, UC_ARM64_REG_LR, UC_ARM64_REG_PC, UC_ARM64_REG_SP, UC_ARM64_REG_X0

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tools" / "macos"))
import macho  # noqa: E402

# Where memory is, and how much: the stack, the imports' addresses, imported variables and constants, the heap.
STACK, EXITS, DATA, HEAP = 0x60000000, 0x70000000, 0x78000000, 0x80000000
SIZES = {STACK: 0x800000, EXITS: 0x10000, DATA: 0x40000, HEAP: 0x10000000}
GUARD = b"\xbb" * 16  # after each allocation
CPU_MAX = 3
WORD = 2**64 - 1


class Fault(Exception):
    """Something that the program must not do."""


class Program:
    def __init__(self, path):
        self.image = macho.read(path)
        self.sections = {section.name: section for section in self.image.sections}
        self.unicorn = unicorn.Uc(unicorn.UC_ARCH_ARM64, unicorn.UC_MODE_ARM)
        self.unicorn.ctl_set_cpu_model(CPU_MAX)
        for start, size in SIZES.items():
            self.unicorn.mem_map(start, size)
        self.unicorn.reg_write(UC_ARM64_REG_SP, STACK + SIZES[STACK] - 0x1000)
        self.heap_top, self.blocks, self.freed = HEAP, {}, {}  # address -> size
        self.data_top, self.imports = DATA, {}  # name -> address
        self.exits, self.calls = [], Counter()
        self.add_exit("", None)  # where a call from outside ends
        self.segments = [self._load(offset) for offset in self.image.segments.values()]
        for address, name, addend in self._bindings():
            self.write_words(address, self.import_address(name) + addend)

    # Memory

    def read(self, address, size):
        return bytes(self.unicorn.mem_read(address, size)) if size else b""

    def write(self, address, data):
        if data:
            self.unicorn.mem_write(address, bytes(data))

    def read_word(self, address, layout="<Q"):
        return struct.unpack(layout, self.read(address, struct.calcsize(layout)))[0]

    def read_words(self, address, count):
        return struct.unpack(f"<{count}Q", self.read(address, 8 * count))

    def write_words(self, address, *words):
        self.write(address, struct.pack(f"<{len(words)}Q", *(word & WORD for word in words)))

    def text_at(self, address):
        data, size = b"", 64
        while b"\0" not in data:
            data, size = self.read(address, size), size * 2
        return data.split(b"\0")[0].decode("utf-8")

    def allocate(self, size, alignment=16, content=b""):
        """Memory that is never allocated a second time, so that a use after its end is detected."""
        address = self.heap_top + alignment - 1 & -alignment
        self.heap_top = address + size + 31 & -16
        if self.heap_top > HEAP + SIZES[HEAP]:
            raise Fault("the heap is full")
        self.write(address, content + b"\xaa" * (size - len(content)) + GUARD)
        self.blocks[address] = size
        return address

    def free(self, address):
        if address and address not in self.blocks:
            raise Fault(f"free of {address:#x}, which is not allocated")
        if address:
            self.check_guard(address)
            self.freed[address] = self.blocks.pop(address)
            self.write(address, b"\xdd" * self.freed[address])

    def check_guard(self, address):
        if self.read(address + self.blocks[address], len(GUARD)) != GUARD:
            raise Fault(f"memory after the {self.blocks[address]} bytes at {address:#x} was written")

    def check_heap(self):
        for address in self.blocks:
            self.check_guard(address)
        for address, size in self.freed.items():
            if self.read(address, size) != b"\xdd" * size:
                raise Fault(f"freed memory at {address:#x} was written")

    def place(self, data):
        address, self.data_top = self.data_top, self.data_top + len(data) + 15 & -16
        self.write(address, data)
        return address

    # Registers and calls

    def word(self, index):
        return self.unicorn.reg_read(UC_ARM64_REG_X0 + index)

    def set_word(self, index, value):
        self.unicorn.reg_write(UC_ARM64_REG_X0 + index, value & WORD)

    def real(self, index, layout="<d"):
        """An argument; the ninth and later are on the stack."""
        if index >= 8:
            return self.read_word(self.stack() + 8 * (index - 8), layout)
        return struct.unpack_from(layout, struct.pack("<Q", self.unicorn.reg_read(UC_ARM64_REG_D0 + index) & WORD))[0]

    def set_real(self, index, value):
        self.unicorn.reg_write(UC_ARM64_REG_D0 + index, struct.unpack("<Q", struct.pack("<d", value))[0])

    def stack(self):
        return self.unicorn.reg_read(UC_ARM64_REG_SP)

    def call(self, function, *arguments):
        """Calls with whole and real numbers as the arguments; returns the word that the function returns."""
        for index, value in enumerate(value for value in arguments if not isinstance(value, float)):
            self.set_word(index, value)
        for index, value in enumerate(value for value in arguments if isinstance(value, float)):
            self.set_real(index, value)
        self.unicorn.reg_write(UC_ARM64_REG_LR, EXITS + 8)
        address = function
        while True:
            try:
                self.unicorn.emu_start(address, EXITS)
            except unicorn.UcError as error:
                at, caller = (self.unicorn.reg_read(each) for each in (UC_ARM64_REG_PC, UC_ARM64_REG_LR))
                raise Fault(f"{error} at {at:#x}, called from {caller:#x}") from None
            name, effect = self.exits[self.word(16)]
            if effect is None:
                return self.word(0)
            self.calls[name] += 1
            back = self.unicorn.reg_read(UC_ARM64_REG_LR)
            address = effect() or back

    def add_exit(self, name, effect):
        """An address whose two instructions name the effect and leave. The effect returns the next address, or 0 to return."""
        number = len(self.exits)
        self.exits.append((name, effect))
        address = EXITS + 8 + 8 * number
        branch = (EXITS - address - 4 >> 2) & 0x3FFFFFF
        self.write(address, struct.pack("<II", 0xD2800010 | number << 5, 0x14000000 | branch))  # mov x16, #number; b EXITS
        return address

    def import_address(self, name):
        if name not in self.imports:
            data = self.imported_data(name)
            self.imports[name] = self.add_exit(name, self.imported_function(name)) if data is None else self.place(data)
        return self.imports[name]

    # The file

    def _load(self, offset):
        address, size, start, length = struct.unpack_from("<QQQQ", self.image.data, offset + 24)
        if length:
            self.unicorn.mem_map(address, size + 0x3FFF & -0x4000)
            self.write(address, self.image.data[start : start + length])
        return address

    def _command(self, number, layout):
        offset = next(offset for command, offset, _ in self.image.commands if command == number)
        return struct.unpack_from(layout, self.image.data, offset + 8)

    def entry(self):
        return self.segments[1] + self._command(0x80000028, "<Q")[0]

    def _bindings(self):
        """Address, symbol and addend of each import, from the eager and the lazy binding opcodes."""
        _, _, eager, eager_size, _, _, lazy, lazy_size = self._command(0x80000022, "<8I")
        for start, size in ((eager, eager_size), (lazy, lazy_size)):
            yield from self._bound(iter(self.image.data[start : start + size]))

    def _bound(self, code):
        def number():
            value = shift = 0
            while True:
                byte = next(code)
                value, shift = value | (byte & 0x7F) << shift, shift + 7
                if byte < 0x80:
                    return value

        name, address, addend = "", 0, 0
        for byte in code:
            operation, small = byte & 0xF0, byte & 0x0F
            if operation == 0x20:
                number()
            elif operation == 0x40:
                name = bytes(iter(code.__next__, 0)).decode()
            elif operation == 0x60:
                addend = number()  # none here is negative
            elif operation == 0x70:
                address = self.segments[small] + number()
            elif operation == 0x80:
                address = address + number() & WORD
            elif operation >= 0x90:
                count = number() if operation == 0xC0 else 1
                skip = number() if operation in (0xA0, 0xC0) else 8 * small if operation == 0xB0 else 0
                for _ in range(count):
                    yield address, name, addend
                    address = address + 8 + skip & WORD
