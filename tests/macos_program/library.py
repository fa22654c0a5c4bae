"""The C library, queues, timers and the log, for an emulated program. Only the scenario moves the clock."""

import math
import re
import struct

from messages import Runtime
from objects import shown
from program import Fault

SECOND = 10**9
START = 1_767_225_600  # the wall clock's, 2026-01-01T00:00:00Z
PID = 4711
LEVELS = {0: "default", 1: "info", 2: "debug", 16: "error", 17: "fault"}
PLACEHOLDER = re.compile(r"%(?:\{(\w+)\})?(s|d|u|f|ld|lu|llu)")
NUMBER_KINDS = {"d": "<i", "u": "<I", "f": "<d", "ld": "<q"}


def compared(one, other):
    return (one > other) - (one < other)


class Ended(Exception):
    """The process has ended."""


class Library(Runtime):
    def __init__(self, path, effects, documented, secret):
        """Only the documented lines may be logged. No freed memory may hold the secret."""
        self.documented, self.secret, self.now, self.errno = documented, secret, 0, 0
        self.queues, self.current, self.sources, self.fades = [], None, [], []
        super().__init__(path, EFFECTS | effects, QUIET)
        self.main_queue = self.new("OS_dispatch_queue", [], "main", True, self.imports["__dispatch_main_q"])
        self.global_queue = self.new("OS_dispatch_queue", [], "global", True)
        self.queues += [self.main_queue, self.global_queue]

    # Queues, timers, signals

    def run_on(self, queue, block, *arguments):
        before, self.current = self.current, queue
        with self.pool():
            self.run_block(block, *arguments)
        self.current = before

    def drain(self, queue):
        while queue.value:
            block = queue.value.pop(0)
            self.run_on(queue, block)
            self.release(block)

    def settle(self):
        """Runs the actions in all queues until the queues are empty."""
        while waiting := next((queue for queue in self.queues if queue.value), None):
            self.drain(waiting)

    def fire(self, source):
        source.fields["start"] = None
        handler = self.retain(source.fields["handler"])
        self.retain(source)
        self.run_on(source.fields["queue"], handler)
        self.release(handler)
        self.release(source)
        self.settle()

    def pass_time(self, seconds):
        """Fires the timers and ends the fades that are due, each at its time."""
        end = self.now + round(seconds * SECOND)
        self.settle()
        while True:
            armed = [each for each in self.sources if each.fields.get("is_active") and each.fields.get("start") is not None]
            due = [(each.fields["start"], each) for each in armed] + self.fades
            at, what = min(due, key=lambda each: each[0], default=(end + 1, None))
            if at > end:
                break
            self.now = max(self.now, at)
            if what.cls.name == "OS_dispatch_source":
                self.fire(what)
                continue
            self.fades.remove((at, what))
            self.run_on(self.main_queue, what)
            self.release(what)
            self.settle()
        self.now = end

    def raise_signal(self, number):
        for source in [each for each in self.sources if each.fields.get("is_active") and each.fields.get("signal") == number]:
            self.fire(source)

    def make_queue(self, label, attributes):
        self.queues.append(self.new("OS_dispatch_queue", [], self.text_at(label)))
        return self.retain(self.queues[-1])

    def make_source(self, kind, handle, mask, queue):
        name = next(name for name, place in self.imports.items() if place == kind)
        if name.endswith("timer") and handle:
            raise Fault("a timer that is made with a handle")
        source = self.new("OS_dispatch_source", queue=self.thing(queue), mask=mask)
        if name.endswith("signal"):
            source.fields["signal"] = handle
        self.sources.append(source)
        return self.retain(source)

    def set_timer(self, source, start, interval, leeway):
        if interval != 2**64 - 1:
            raise Fault("a timer that repeats")
        fields = self.thing(source).fields
        fields["start"] = start
        self.note(f"timer in {(start - self.now) / SECOND:g} s, leeway {leeway / SECOND:g} s, flags {fields['mask']}")

    def end_source(self, source):
        if "is_active" not in source.fields:
            raise Fault("a source that was never activated is released")
        self.sources.remove(source)

    def cancel_source(self, source):
        """Until then the system has a reference to an active source."""
        source = self.thing(source)
        if "signal" in source.fields:
            self.note(f"cancel {source.fields['signal']}")
        self.set_field(source, "handler", None)
        if source.fields["is_active"]:
            source.fields["is_active"] = False
            self.release(source)

    def run_now(self, queue, block):
        queue = self.thing(queue)
        self.note(f"wait for the queue {queue.name}")
        if queue is self.current:
            raise Fault("a queue waits for itself")
        self.drain(queue)
        self.run_on(queue, self.thing(block))

    # The C library

    def kill(self, pid, number):
        self.note(f"kill({pid}, {number})")
        raise Ended

    def free_wiped(self, address):
        """The program wipes each of its copies of the secret."""
        self.check_wiped(self.read(address, self.blocks.get(address, 0)))
        self.free(address)

    def check_wiped(self, content):
        if self.secret in content:
            raise Fault("memory that holds the secret is freed")

    def reallocated(self, old, size):
        address = self.allocate(size, content=self.read(old, min(size, self.blocks[old])) if old else b"")
        self.free(old)
        return address

    def printed(self, buffer, size, text):
        data = self.formatted(text).encode()
        self.write(buffer, data[: max(size - 1, 0)] + b"\0" if size else b"")
        return len(data)

    def formatted(self, text):
        """The variable arguments are words on the stack."""
        words = iter(self.read_words(self.stack(), 8))

        def argument(match):
            word, kind = struct.pack("<Q", next(words)), match[2][-1]
            code = "<d" if kind in "fg" else {"d": "<i", "i": "<i"}.get(match[2], "<q" if kind in "di" else "<Q")
            (value,) = struct.unpack_from(code, word)
            return (match[1] + kind.replace("u", "d")) % (self.text_at(value) if kind == "s" else value)

        return re.sub(r"(%[-+ 0#]*\d*(?:\.\d+)?)((?:ll|l|z)?[diuxsfg])", argument, self.text_at(text))

    def parsed_real(self, text, end, *_):
        number = re.match(r"[-+]?[\d.]+([eE][-+]?\d+)?", self.text_at(text))[0]
        if end:
            self.write_words(end, text + len(number))
        return float(number)

    def errno_place(self):
        self.errno = self.errno or self.place(bytes(8))
        return self.errno

    def logged(self, image, log, level, text, buffer, size):
        """Notes the line, if it is documented and the buffer is what the system expects of its format."""
        if (LEVELS[level], text) not in self.documented:
            raise Fault(f"the log line is not in docs/log-lines.md: {LEVELS[level]}: {text}")
        data, at, flags = self.read(buffer, size), 2, 0
        places, values = PLACEHOLDER.findall(text), []
        for privacy, kind in places:
            header, content = tuple(data[at : at + 2]), data[at + 2 : at + 2 + data[at + 1]]
            at += 2 + len(content)
            if kind == "s":
                expected = 0x20 | {"public": 2, "private": 1}.get(privacy, 0), 8
                flags |= 2 | (privacy == "private")
                value = self.text_at(struct.unpack("<Q", content)[0])
                values.append(value if privacy == "public" else f"<{value}>")
            else:
                expected = 0, 4 if kind in ("d", "u") else 8
                (value,) = struct.unpack(NUMBER_KINDS.get(kind, "<Q"), content)
                values.append(shown(bool(value) if privacy == "bool" else value))
            if header != expected:
                raise Fault(f"an argument of the log line {text!r} is encoded as {header}, not {expected}")
        if at != size or data[:2] != bytes([flags, len(places)]):
            raise Fault(f"the log line {text!r} has the buffer {data.hex()}")
        parts = iter(values)
        self.note(f"log {log.name} {LEVELS[level]}: {PLACEHOLDER.sub(lambda _: next(parts), text)}")


EFFECTS = {
    "malloc": lambda s, size: s.allocate(size),
    "realloc": Library.reallocated,
    "free": Library.free_wiped,
    "memcpy": lambda s, to, source, size: s.write(to, s.read(source, size)),
    "memmove": lambda s, to, source, size: s.write(to, s.read(source, size)),
    "memset": lambda s, to, byte, size: s.write(to, bytes([byte & 255]) * size),
    "bzero": lambda s, to, size: s.write(to, bytes(size)),
    "memcmp": lambda s, one, other, size: compared(s.read(one, size), s.read(other, size)),
    "memchr": lambda s, at, byte, size: (s.read(at, size).find(bytes([byte & 255])) + 1 or 1 - at) + at - 1,
    "strlen": lambda s, text: len(s.text_at(text).encode()),
    "strtod_l": Library.parsed_real,
    "snprintf": Library.printed,
    "__toupper": lambda s, letter: letter - 32 if 97 <= letter <= 122 else letter,
    "pow": lambda s: math.pow(s.real(0), s.real(1)),
    "fmod": lambda s: math.fmod(s.real(0), s.real(1)),
    "__error": Library.errno_place,
    "strerror": lambda s, code: s.place(b"error %d\0" % code),
    "realpath_DARWIN_EXTSN": lambda s, path, place: s.allocate(1024, content=s.text_at(path).encode() + b"\0"),
    "getpid": lambda s: PID,
    "signal": lambda s, number, action: s.note(f"signal({number}, {('SIG_DFL', 'SIG_IGN')[action]})"),
    "kill": Library.kill,
    "clock_gettime": lambda s, clock, place: s.write_words(place, *divmod(s.now + (0 if clock else START * SECOND), SECOND)) or 0,
    "lstat": lambda s, path, place: s.write(place, struct.pack("<iH", 0, 0o40755)) or 0 if s.exists(s.text_at(path)) else -1,
    "os_log_create": lambda s, subsystem, category: s.new("OS_os_log", name=f"{subsystem.split('.')[-1]}:{category}"),
    "os_log_type_enabled": lambda s, log, level: True,
    "_os_log_impl": Library.logged,
    "notify_register_check": lambda s, name, token: s.write(token, struct.pack("<i", 3)),
    "notify_get_state": lambda s, token, place: s.write_words(place, 1),
    "notify_cancel": lambda s, token: s.note(f"notify_cancel({token})"),
    "dispatch_queue_create": Library.make_queue,
    "dispatch_get_global_queue": lambda s, kind, flags: s.note(f"queue {kind:#x}, {flags}") or s.global_queue,
    "dispatch_async": lambda s, queue, block: s.thing(queue).value.append(s.retain(s.copied(s.thing(block)))),
    "dispatch_sync": Library.run_now,
    "dispatch_time": lambda s, base, delta: s.now + delta,
    "dispatch_source_create": Library.make_source,
    "dispatch_source_set_timer": Library.set_timer,
    "dispatch_source_set_event_handler": lambda s, source, block: s.set_field(s.thing(source), "handler", s.thing(block)),
    "dispatch_activate": lambda s, source: s.retain(s.thing(source)).fields.update(is_active=True),
    "dispatch_source_cancel": Library.cancel_source,
    "OS_dispatch_source dealloc": Library.end_source,
    "OS_dispatch_queue dealloc": lambda s, queue: s.queues.remove(queue),
}
EFFECTS |= {f"pthread_{what}": lambda s: 0 for what in ("mutex_lock", "mutex_unlock", "mutex_destroy", "cond_broadcast")}
EFFECTS |= dict.fromkeys(("pthread_self", "pthread_mach_thread_np"), lambda s: 1)
# Classes and calls without visible effects, or with many repeated calls.
QUIET = {
    "NSString", "NSMutableArray", "NSMutableDictionary", "NSMutableData", "NSAttributedString", "NSObject", "CFRelease", "_os_log_impl",
    "NSFileManager createDirectoryAtURL:withIntermediateDirectories:attributes:error:", "NSFileManager fileExistsAtPath:",
}  # fmt: skip
