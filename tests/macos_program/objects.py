"""Objective-C objects for an emulated program: classes, reference counts, pools and blocks.

The program's own classes come from its metadata, the types of the system's from platform/macos/sdk/.
"""

import contextlib
from collections import Counter

from declared import Declared
from program import Fault, Program

INSTANCES = 0x400000000  # where the system's objects are; nothing is mapped there
HAS_COPY, IS_GLOBAL = 1 << 25, 1 << 28  # flags of a block
UTF16 = 0x7D0  # flags of a constant string that is not ASCII


class Class:
    def __init__(self, name, above, size=0, methods=(), class_methods=()):
        """A class of the system has size 0."""
        self.name, self.above, self.size, self.methods, self.class_methods = name, above, size, dict(methods), dict(class_methods)

    def chain(self):
        found = self
        while found:
            yield found
            found = found.above


class Thing:
    """An object. A new one has no references; an immortal one needs none."""

    def __init__(self, address, cls, value, name, is_immortal, fields):
        self.address, self.cls, self.value, self.name, self.is_immortal, self.fields = address, cls, value, name, is_immortal, fields
        self.count, self.buffers = 0, []  # references to it, its memory
        self.parts = value if isinstance(value, list) else []  # objects to which it has a reference


class Pointer(int):
    """The address of memory of the program."""


def shown(value):
    """The text of an argument in a transcript."""
    if value is None or isinstance(value, Pointer):
        return "pointer" if value else "nil"
    if isinstance(value, bool):
        return "YES" if value else "NO"
    if isinstance(value, float):
        return f"{value:.6g}"
    if isinstance(value, tuple):
        parts = [shown(each) for each in value]
        return f"{{{{{parts[0]}, {parts[1]}}}, {{{parts[2]}, {parts[3]}}}}}" if len(parts) == 4 else f"{{{', '.join(parts)}}}"
    if not isinstance(value, Thing):
        return str(value)
    plain = value.value
    if isinstance(plain, str):
        return f'@"{plain}"'
    if isinstance(plain, (bool, int, float)):
        return shown(plain)
    if isinstance(plain, bytearray):
        return f"<{len(plain)} bytes>"
    if isinstance(plain, list) and value.cls.name.endswith("Array"):
        return f"[{', '.join(map(shown, plain))}]"
    if isinstance(plain, dict):
        return f"{{{', '.join(f'{shown(key)}: {shown(each)}' for key, each in plain.values())}}}"
    return value.name


class Objects(Program):
    def __init__(self, path, effects):
        self.effects, self.declared = effects, Declared()
        self.things, self.pools, self.weak = {}, [], {}  # address -> object; lists; location -> object
        self.classes, self.own_classes, self.found, self.singletons = {}, {}, {}, {}
        self.encodings = {}  # code of a method of the program -> its types
        self.next_instance, self.numbers, self.selectors, self.transcript = INSTANCES, Counter(), {}, []
        super().__init__(path)
        listed = self.sections["__objc_classlist"]
        for address in self.read_words(listed.address, listed.size // 8):
            self.class_at(address)

    def note(self, text):
        self.transcript.append(text)

    def text(self):
        return "\n".join(self.transcript)

    # Classes

    def class_named(self, name):
        if name not in self.classes:
            above = self.declared.superclass(name)
            self.classes[name] = Class(name, self.class_named(above) if above else None)
        return self.classes[name]

    def class_at(self, address):
        """The class whose object is there, or None."""
        if address in self.own_classes:
            return self.own_classes[address]
        if name := next((name for name, place in self.imports.items() if place == address), None):
            return self.class_named(name[len("_OBJC_CLASS_$_") :]) if name.startswith("_OBJC_CLASS") else None
        if not self.is_in("__objc_data", address):
            return None
        metaclass, above, _, _, data = self.read_words(address, 5)
        name = self.text_at(self.read_word(data + 24))
        methods = [self._methods(each) for each in (data, self.read_word(metaclass + 32))]
        self.own_classes[address] = self.classes[name] = Class(name, self.class_at(above), self.read_word(data + 8, "<i"), *methods)
        return self.classes[name]

    def _methods(self, data):
        if methods := self.read_word(data + 32):
            for index in range(self.read_word(methods + 4, "<i")):
                name, types, code = self.read_words(methods + 8 + 24 * index, 3)
                self.encodings[code] = self.text_at(types)
                yield self.text_at(name), code

    def is_in(self, name, address):
        section = self.sections[name]
        return section.address <= address < section.address + section.size

    # Objects

    def new(self, class_name, value=None, name="", is_immortal=False, address=None, **fields):
        """An object without a reference."""
        if address is None:
            address, self.next_instance = self.next_instance, self.next_instance + 16
        self.numbers[class_name] += 1
        name = name or f"<{class_name}#{self.numbers[class_name]}>"
        self.things[address] = Thing(address, self.class_named(class_name), value, name, is_immortal, fields)
        return self.things[address]

    def instance(self, cls):
        """A new instance, which the caller owns."""
        size = next((each.size for each in cls.chain() if each.size), 0)
        thing = self.new(cls.name, address=self.allocate(size, content=bytes(size)) if size else None)
        for each in reversed(list(cls.chain())):
            if code := each.methods.get(".cxx_construct"):
                self.call(code, thing.address, 0)
        return self.retain(thing)

    def shared(self, class_name, name=""):
        if (class_name, name) not in self.singletons:
            self.singletons[class_name, name] = self.new(class_name, name=name, is_immortal=True)
        return self.singletons[class_name, name]

    def box(self, value):
        """The object for a Python value."""
        if value is None or isinstance(value, Thing):
            return value
        if isinstance(value, (bool, int, float, str)):
            return self.new("NSString" if isinstance(value, str) else "NSNumber", value)
        if isinstance(value, bytes):
            return self.new("NSData", bytearray(value))
        if isinstance(value, list):
            return self.new("NSArray", [self.retain(self.box(each)) for each in value])
        made = self.new("NSDictionary", {})
        for key, each in value.items():
            self.set_item(made, self.box(key), self.box(each))
        return made

    def set_item(self, dictionary, key, value):
        dictionary.parts += self.retain(key), self.retain(value)
        dictionary.value[key.value] = key, value

    def set_field(self, thing, name, value, is_held=True):
        value, old = self.copied(value) if isinstance(value, Thing) else value, thing.fields.get(name)
        thing.fields[name] = value
        if is_held and value is not None:
            thing.parts.append(self.retain(value))
        if is_held and old is not None:
            thing.parts.remove(old)
            self.release(old)

    def buffer(self, thing, data):
        """Memory with the data, which lives as long as the object."""
        if not thing.buffers:
            thing.buffers.append(self.allocate(len(data), content=bytes(data)))
        return thing.buffers[0]

    def thing(self, address):
        if not address:
            return None
        if address in self.things:
            return self.things[address]
        if self.is_in("__cfstring", address):
            flags, place, length = self.read_words(address + 8, 3)
            text = self.read(place, 2 * length).decode("utf-16-le") if flags == UTF16 else self.read(place, length).decode()
            return self.new("NSString", text, is_immortal=True, address=address)
        if cls := self.class_at(address):
            return self.new("Class", cls, name=cls.name, is_immortal=True, address=address)
        with contextlib.suppress(Exception):
            if self.read_word(address) in (self.imports["__NSConcreteStackBlock"], self.imports["__NSConcreteGlobalBlock"]):
                return Thing(address, self.class_named("Block"), None, "<block>", True, {})
        raise Fault(f"use of the object at {address:#x}, which was deallocated")

    def retain(self, thing):
        if thing is not None:
            thing.count += 1
        return thing

    def release(self, thing):
        if thing is None or thing.is_immortal:
            return
        if thing.count < 1:
            raise Fault(f"over-release of {thing.name}")
        thing.count -= 1
        if thing.count == 0:
            self._deallocate(thing)

    def autorelease(self, thing):
        if thing is not None:
            if not self.pools:
                raise Fault(f"{thing.name} is autoreleased without a pool")
            self.pools[-1].append(thing)
        return thing

    def pop_pools(self, count):
        """Leaves that many. What is released may autorelease something in turn."""
        while len(self.pools) > count:
            while self.pools[-1]:
                self.release(self.pools[-1].pop())
            self.pools.pop()

    @contextlib.contextmanager
    def pool(self):
        count = len(self.pools)
        self.pools.append([])
        yield
        self.pop_pools(count)

    def _deallocate(self, thing):
        for location in [place for place, target in self.weak.items() if target is thing]:
            self.write_words(location, 0)
            del self.weak[location]
        for cls in thing.cls.chain():
            if effect := self.effects.get(f"{cls.name} dealloc"):
                effect(self, thing)
            if code := cls.methods.get(".cxx_destruct"):
                self.call(code, thing.address, 0)
        del self.things[thing.address]
        for part in thing.parts:
            self.release(part)
        for address in thing.buffers:
            self.free(address)
        if thing.address < INSTANCES:
            self.free(thing.address)

    def living(self):
        return Counter(thing.cls.name for thing in self.things.values() if not thing.is_immortal)

    # Blocks

    def copied(self, thing):
        """The block itself when it is on the heap or captures nothing; else a copy, without a reference."""
        if thing is None or thing.cls.name != "Block" or thing.address in self.things:
            return thing
        flags = self.read_word(thing.address + 8, "<i")
        if flags & IS_GLOBAL:
            return thing
        _, size, copy = self.read_words(self.read_word(thing.address + 24), 3)
        made = self.new("Block", name="<block>", address=self.allocate(size, content=self.read(thing.address, size)))
        if flags & HAS_COPY:
            self.call(copy, made.address, thing.address)
        return made

    def end_block(self, thing):
        if self.read_word(thing.address + 8, "<i") & HAS_COPY:
            self.call(self.read_word(self.read_word(thing.address + 24) + 24), thing.address)

    def run_block(self, block, *arguments):
        return self.call(self.read_word(block.address + 16), block.address, *arguments)
