"""Objective-C messages and imported functions for an emulated program.

The effect of `-[NSData length]` is the entry "NSData length" of the effects, that of the function `CFRelease` is "CFRelease".
"""

import struct

from objects import Objects, Pointer, Thing, shown
from program import WORD, Fault


class Runtime(Objects):
    """`effects` is the table of effects; `quiet` names classes and calls that are not noted in the transcript."""

    def __init__(self, path, effects, quiet):
        self.quiet = quiet
        super().__init__(path, RUNTIME | effects)

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
                # A query is not noted, only a call that changes something.
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
        """A property keeps the value that is set. An unset object is made at the first read; a class's shared object is made once."""
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


# Functions that compiled code calls implicitly.


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
