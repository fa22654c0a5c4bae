"""The Objective-C runtime for an emulated program: classes, messages, reference counts, pools and blocks.

The program's own classes come from its metadata, the types of the system's from platform/macos/sdk/. The effect of
`-[NSData length]` is the entry "NSData length" of the effects, that of the function `CFRelease` is "CFRelease".
"""

import contextlib
import struct
from collections import Counter

from declared import Declared
from program import WORD, Fault, Program

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


class Runtime(Program):
    """`effects` is the table of them, `quiet` names classes and calls that are not noted in the transcript."""

    def __init__(self, path, effects, quiet):
        self.effects, self.quiet, self.declared = RUNTIME | effects, quiet, Declared()
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

    # Messages

    def implements(self, thing, selector):
        return next((cls.methods[selector] for cls in thing.cls.chain() if selector in cls.methods), 0)

    def send(self, thing, selector, *arguments):
        """A message from the system to an object of the program."""
        with self.pool():
            return self._sent(thing, selector, *arguments)

    def ask(self, thing, selector, *arguments):
        """Notes the object, truth value or rectangle that the program answers."""
        with self.pool():
            word = self._sent(thing, selector, *arguments)
            kind = self.encodings[self.implements(thing, selector)][0]
            answer = self.thing(word) if kind == "@" else bool(word & 1) if kind == "B" else tuple(map(self.real, range(4)))
            self.note(f"{thing.name} {selector} -> {shown(answer)}")

    def _sent(self, thing, selector, *arguments):
        code = self.implements(thing, selector)
        if not code:
            raise Fault(f"{thing.name} does not implement {selector}")
        if selector not in self.selectors:
            self.selectors[selector] = self.place(selector.encode() + b"\0")
        words = [each.address if isinstance(each, Thing) else each for each in arguments]
        return self.call(code, thing.address, self.selectors[selector], *words)

    def message(self, receiver, selector, above=None):
        """Returns the program's own method, or runs the effect of the system's."""
        if not receiver:
            for index in range(4):
                self.set_real(index, 0.0)
            return 0
        thing = self.thing(receiver)
        is_class = thing.cls.name == "Class"
        cls = above or (thing.value if is_class else thing.cls)
        key = cls.name, is_class, selector
        if key not in self.found:
            self.found[key] = self._found(cls, is_class, selector)
        found = self.found[key]
        return found if isinstance(found, int) else found(thing)

    def _found(self, cls, is_class, selector):
        for each in cls.chain():
            own = each.class_methods if is_class else each.methods
            if selector in own:
                return own[selector]
            effect, member = self.effects.get(f"{each.name} {selector}"), self.declared.member(each.name, is_class, selector)
            if effect is None and member and member.property:
                effect = self._accessor(member, is_class and each.name)
            if effect and member:
                # A question is not noted, only what changes something.
                is_question = member.result not in ("", "B") and not member.is_owned or member.property and not member.arguments
                is_quiet = is_question or not self.quiet.isdisjoint((each.name, f"{each.name} {selector}"))
                return lambda thing: self._run_method(thing, member, effect, is_class, is_quiet)
        raise Fault(f"unknown effect: {'+' if is_class else '-'}[{cls.name} {selector}]")

    def _run_method(self, thing, member, effect, is_class, is_quiet):
        arguments = self.arguments(member.arguments, 2)
        if not is_quiet:
            words = (f"{word}:{shown(value)}" for word, value in zip(member.name.split(":"), arguments))
            self.note(f"{'+' if is_class else '-'}[{thing.name.strip('<>')} {' '.join(words) or member.name}]")
        value = self.box(effect(self, thing, *arguments)) if member.result == "@" else effect(self, thing, *arguments)
        if member.result == "@" and not (member.is_owned and value is thing):
            self.retain(value)
            if not member.is_owned:
                self.autorelease(value)
        self.set_result(member.result, value)

    def _accessor(self, member, owner):
        """A property keeps what it is set to. An object that it must have is made when it is asked for, once for a class."""
        if member.made == owner:
            return lambda _, cls: self.shared(cls.name)
        if member.arguments:
            return lambda _, thing, value: self.set_field(thing, member.property, value, member.is_held)

        def look(_, thing):
            if member.property not in thing.fields and member.is_held and member.made in self.declared.classes:
                self.set_field(thing, member.property, self.new(member.made))
            if member.is_fixed and member.property not in thing.fields:
                raise Fault(f"unknown value: {thing.name}.{member.property}")
            return thing.fields.get(member.property)

        return look

    # Arguments and functions

    def arguments(self, kinds, words):
        reals, values = 0, []
        for kind in kinds:
            if kind[0] in "df":
                parts = tuple(self.real(reals + index, f"<{kind[0]}") for index in range(len(kind)))
                reals += len(kind)
                values.append(parts if len(parts) > 1 else parts[0])
            else:
                values.append(self._argument(kind, self.word(words)))
                words += 1
        return values

    def _argument(self, kind, word):
        if kind in "@s":
            return self.thing(word) if kind == "@" else self.text_at(word)
        if kind in "iq":
            bits = 32 if kind == "i" else 64
            return (word & 2**bits - 1 ^ 1 << bits - 1) - (1 << bits - 1)
        if kind == "B":
            return bool(word & 0xFF)
        if kind[0] == "M":
            return struct.unpack(f"<{kind[1:]}d", self.read(word, 8 * int(kind[1:])))
        return Pointer(word) if kind == "p" else word & {"C": 0xFF, "I": 2**32 - 1, "Q": WORD}[kind]

    def set_result(self, kind, value):
        if kind[:1] == "d":
            for index, part in enumerate(value if isinstance(value, tuple) else (value or 0.0,) * len(kind)):
                self.set_real(index, float(part))
        elif kind[:1] == "M":
            self.write(self.word(8), value)
        elif kind:
            self.set_word(0, value.address if isinstance(value, Thing) else int(value or 0))

    def imported_function(self, name):
        short = name[1:].replace("$", "_")
        effect, declared = self.effects.get(short), self.declared.functions.get(short)
        if declared and effect is None and declared.is_owned:
            effect = self._creation(declared)
        if effect is None:
            return lambda: self._unknown(name)
        if declared:
            return lambda: self._run_function(declared, effect)
        if short.startswith("objc_msgSend"):
            return lambda: effect(self)
        count = effect.__code__.co_argcount - 1
        return lambda: self._run_plain(effect, count)

    def _unknown(self, name):
        raise Fault(f"unknown effect: {name}")

    def _run_plain(self, effect, count):
        result = effect(self, *(self.word(index) for index in range(count)))
        if result is not None:
            self.set_result("d" if isinstance(result, float) else "Q", result)

    def _run_function(self, declared, effect):
        arguments = self.arguments(declared.arguments, 0)
        if not declared.result and declared.name not in self.quiet:
            self.note(f"{declared.name}({', '.join(map(shown, arguments))})")
        value = effect(self, *arguments)
        value = self.box(value) if declared.result == "@" else value
        self.set_result(declared.result, self.retain(value) if declared.is_owned else value)

    def _creation(self, declared):
        """An object that is shown as the call that made it."""

        def create(_, *arguments):
            made = self.new(declared.made, name=f"{declared.name}({', '.join(map(shown, arguments))})")
            made.parts += [self.retain(each) for each in arguments if isinstance(each, Thing)]
            return made

        return create


# What compiled code calls by itself.


def send_super(s):
    receiver, cls = s.read_words(s.word(0), 2)
    s.set_word(0, receiver)
    return s.message(receiver, s.text_at(s.word(1)), s.class_at(cls).above)


def alloc_init(s, cls):
    thing = s.instance(s.class_at(cls))
    code = s.implements(thing, "init")
    return s.call(code, thing.address, 0) if code else thing


def store_strong(s, place, address):
    old = s.thing(s.read_word(place))
    s.retain(s.thing(address))
    s.write_words(place, address)
    s.release(old)


def store_weak(s, place, address):
    s.write_words(place, address)
    s.weak.pop(place, None)
    if address:
        s.weak[place] = s.thing(address)
    return address


RUNTIME = {
    "objc_msgSend": lambda s: s.message(s.word(0), s.text_at(s.word(1))),
    "objc_msgSendSuper2": send_super,
    "objc_alloc": lambda s, cls: s.instance(s.class_at(cls)),
    "objc_alloc_init": alloc_init,
    "objc_release": lambda s, address: s.release(s.thing(address)),
    "objc_retainBlock": lambda s, address: s.retain(s.copied(s.thing(address))),
    "Block dealloc": Runtime.end_block,
    "objc_storeStrong": store_strong,
    "objc_storeWeak": store_weak,
    "objc_destroyWeak": lambda s, place: s.weak.pop(place, None) and None,
    "objc_loadWeakRetained": lambda s, place: s.retain(s.weak.get(place)) or 0,
    "objc_autoreleasePoolPush": lambda s: s.pools.append([]) or len(s.pools),
    "objc_autoreleasePoolPop": lambda s, mark: s.pop_pools(mark - 1),
    "NSObject isKindOfClass:": lambda s, thing, cls: cls.value in thing.cls.chain(),
}
RUNTIME |= dict.fromkeys(("objc_retain", "objc_retainAutoreleasedReturnValue"), lambda s, place: s.retain(s.thing(place)))
RUNTIME |= dict.fromkeys(
    ("objc_retainAutorelease", "objc_retainAutoreleaseReturnValue"), lambda s, place: s.autorelease(s.retain(s.thing(place)))
)
RUNTIME["objc_autoreleaseReturnValue"] = lambda s, place: s.autorelease(s.thing(place))
RUNTIME |= dict.fromkeys(("NSObject init", "NSObject class"), lambda s, thing: thing)
