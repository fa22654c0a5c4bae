"""macOS for the emulated add-on: what classes and functions of the system do, as far as the add-on can tell.

One user's session with one display. Nothing happens by itself: a scenario moves the clock, posts notices and clicks.
"""

import math
import plistlib
import re
import struct

from objects import Runtime, shown
from program import Fault

SECOND = 10**9
START = 1_767_225_600  # the wall clock's, 2026-01-01T00:00:00Z
PID = 4711
SUPPORT = "/Users/u/Library/Application Support"
BUNDLE = f"{SUPPORT}/example.quillon.Quorvane.LockScreenAddOn/Quorvane Lock Screen.app"
CONTAINERS = "/Users/u/Library/Group Containers"
PORT = "group.example.quillon.Quorvane.messageport"
DATA = ("_OBJC_CLASS", "_OBJC_METACLASS", "_OBJC_EHTYPE", "__NSConcrete", "___CFConstantString", "__objc_empty_cache", "___std",
        "__dispatch_main_q", "__dispatch_source_type_", "__DefaultRuneLocale", "___objc_personality")  # fmt: skip
WEIGHTS = {"NSFontWeightRegular": 0.0, "NSFontWeightMedium": 0.23, "NSFontWeightSemibold": 0.3, "NSFontWeightBold": 0.4}
IDENTITY = (1.0, *(0.0,) * 4) * 3 + (1.0,)
LEVELS = {0: "default", 1: "info", 2: "debug", 16: "error", 17: "fault"}
PLACEHOLDER = re.compile(r"%(?:\{(\w+)\})?(s|d|u|f|ld|lu|llu)")
NUMBER_KINDS = {"d": "<i", "u": "<I", "f": "<d", "ld": "<q"}
DOWN, UP, MOVED, DRAGGED, CANCELLED = 1, 2, 5, 6, 40  # types of events
MOUSE = {DOWN: "mouseDown:", UP: "mouseUp:", DRAGGED: "mouseDragged:", CANCELLED: "mouseCancelled:"}
# The window server's functions: how many arguments, what they return.
WINDOW_SERVER = {"SLSMainConnectionID": (0, 77), "SLSSpaceCreate": (3, 0x500000009), "SLSSpaceSetAbsoluteLevel": (3, 0),
                 "SLSShowSpaces": (2, 0), "SLSSpaceAddWindowsAndRemoveFromSpaces": (4, 0)}  # fmt: skip


def doubles(*values):
    return struct.pack(f"<{len(values)}d", *values)


def compared(one, other):
    return (one > other) - (one < other)


class Ended(Exception):
    """The process has ended."""


class System(Runtime):
    def __init__(self, bundle, options, documented, secret, answers):
        """The lines are documented that may be logged; the answers are the main application's, by message."""
        self.options, self.documented, self.secret, self.answers = options, documented, secret, answers
        self.now, self.errno = 0, 0
        self.queues, self.current, self.sources, self.fades = [], None, [], []
        self.domains, self.observers, self.singletons = {}, [], {}
        self.ports, self.has_main_application, self.displays = {}, True, [(0.0, 0.0, 1920.0, 1080.0)]
        self.windows, self.pressed, self.pointer, self.context = [], None, (0.0, 0.0), None
        self.session, self.picture_size, self.refuses_login_item = {"kCGSSessionOnConsoleKey": True}, 600, False
        files = [path for path in bundle.rglob("*") if path.is_file()]
        self.files = {f"{BUNDLE}/{path.relative_to(bundle).as_posix()}": path.read_bytes() for path in files}
        self.files[f"{CONTAINERS}/group.example.quillon.Quorvane/ipc-secret"] = secret
        super().__init__(bundle / "Contents" / "MacOS" / bundle.stem, EFFECTS, QUIET)
        self.main_queue = self.new("OS_dispatch_queue", [], "main", True, self.imports["__dispatch_main_q"])
        self.global_queue = self.new("OS_dispatch_queue", [], "global", True)
        self.queues += [self.main_queue, self.global_queue]
        self.copies = []
        self.add_copy(PID, 100.0)
        self.shared("NSApplication").fields["userInterfaceLayoutDirection"] = 0
        self.shared("NSWorkspace").fields["accessibilityDisplayShouldReduceMotion"] = False
        self.shared("SMAppService").fields["status"] = 0

    def start(self, scenario):
        """The process from its start to its end; the scenario is what happens while the application runs."""
        self.scenario = scenario
        words = [f"{BUNDLE}/Contents/MacOS/Quorvane Lock Screen", *self.options]
        places = [self.place(word.encode() + b"\0") for word in words]
        with self.pool():
            status = self.call(self.entry(), len(words), self.place(struct.pack(f"<{len(words) + 1}Q", *places, 0)), 0, 0)
        if status != 0:
            raise Fault(f"the program returned {status}")

    def imported_data(self, name):
        short = name[1:]
        if name.startswith(DATA):
            return bytes(0x1000 if "Rune" in name else 16)
        if short not in self.declared.constants:
            return None
        if short in WEIGHTS or short == "CATransform3DIdentity":
            return doubles(*([WEIGHTS[short]] if short in WEIGHTS else IDENTITY))
        return struct.pack("<Q", 0 if short == "kSecRandomDefault" else self.new("NSString", short, is_immortal=True).address)

    def shared(self, class_name, name=""):
        if (class_name, name) not in self.singletons:
            self.singletons[class_name, name] = self.new(class_name, name=name, is_immortal=True)
        return self.singletons[class_name, name]

    def add_copy(self, pid, launched, is_terminated=False):
        fields = {"processIdentifier": pid, "launchDate": self.new("NSDate", launched, is_immortal=True), "terminated": is_terminated}
        self.copies.append(self.new("NSRunningApplication", name=f"<copy {pid}>", is_immortal=True, **fields))
        return self.copies[-1]

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
        """Runs what waits in queues, until nothing does."""
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
        """Fires the timers and ends the fades that fall due, each at its time."""
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
        for source in [each for each in self.sources if each.fields.get("signal") == number]:
            self.fire(source)

    # Notices and messages

    def observe(self, center, name, observer, deliver):
        self.observers.append((center, name.value, observer, deliver))

    def post(self, name):
        """A notice of the system, which every observer of that name gets."""
        found = [deliver for _, each, _, deliver in self.observers if each == name]
        if not found:
            raise Fault(f"nothing observes {name}")
        for deliver in found:
            with self.pool():
                deliver()
        self.settle()

    def end_main_application(self):
        self.has_main_application = False
        for port in list(self.ports.values()):
            self.invalidate_port(port)

    # Windows

    def views(self, window):
        def below(view):
            yield view
            for child in view.fields["subviews"]:
                yield from below(child)

        content = window.fields.get("contentView")
        return list(below(content)) if content else []

    def view(self, window, class_name):
        return next(view for view in self.views(window) if view.cls.name == class_name)

    def frame_in_window(self, view):
        x, y, width, height = view.fields["frame"]
        while view := view.fields["above"]:
            x, y = x + view.fields["frame"][0], y + view.fields["frame"][1]
        return x, y, width, height

    def point_in(self, view, point):
        left, bottom, _, height = self.frame_in_window(view)
        is_flipped = self.implements(view, "isFlipped") and self.send(view, "isFlipped") & 1
        return point[0] - left, height - (point[1] - bottom) if is_flipped else point[1] - bottom

    def mouse(self, window, kind, x, y):
        """A window that ignores the mouse gets neither movements nor presses. It gets what follows a press that it got."""
        self.pointer = (window.fields["frame"][0] + x, window.fields["frame"][1] + y)
        if kind in (MOVED, DOWN):
            self.gets_mouse = not window.fields["ignoresMouseEvents"]
        if self.gets_mouse and kind in (MOVED, DOWN):
            self.send(window.fields["contentView"], "mouseMoved:", 0)
        if self.gets_mouse and kind != MOVED:
            self.send(window, "sendEvent:", self.new("NSEvent", is_immortal=True, type=kind, locationInWindow=(x, y)))
        self.settle()

    def text(self):
        return "\n".join(self.transcript)

    def draw(self, view):
        self.context = self.new("NSGraphicsContext", is_immortal=True, CGContext=self.new("CGContext", name="context", is_immortal=True))
        self.send(view, "drawRect:", *view.fields["bounds"])
        self.context = None

    def exists(self, path):
        return any(each == path or each.startswith(path + "/") for each in self.files)

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
            raise Fault("memory is freed that holds the secret")

    def reallocated(self, old, size):
        address = self.allocate(size, content=self.read(old, min(size, self.blocks[old])) if old else b"")
        self.free(old)
        return address

    def printed(self, buffer, size, text):
        """The variable arguments are words on the stack."""
        words = iter(self.read_words(self.stack(), 8))

        def argument(match):
            word, kind = struct.pack("<Q", next(words)), match[2][-1]
            code = "<d" if kind in "fg" else {"d": "<i", "i": "<i"}.get(match[2], "<q" if kind in "di" else "<Q")
            (value,) = struct.unpack_from(code, word)
            return (match[1] + kind.replace("u", "d")) % (self.text_at(value) if kind == "s" else value)

        data = re.sub(r"(%[-+ 0#]*\d*(?:\.\d+)?)((?:ll|l|z)?[diuxsfg])", argument, self.text_at(text)).encode()
        self.write(buffer, data[: max(size - 1, 0)] + b"\0" if size else b"")
        return len(data)

    def parsed_real(self, text, end, *_):
        number = re.match(r"[-+]?[\d.]+([eE][-+]?\d+)?", self.text_at(text))[0]
        if end:
            self.write_words(end, text + len(number))
        return float(number)

    def errno_place(self):
        self.errno = self.errno or self.place(bytes(8))
        return self.errno

    def looked_up(self, library, name):
        name = self.text_at(name)
        if name not in self.imports:
            self.imports[name] = self.add_exit(name, lambda: self.window_server(name))
        return self.imports[name]

    def window_server(self, name):
        count, result = WINDOW_SERVER[name]
        words = [self.word(index) for index in range(count)]
        self.note(f"{name}({', '.join(shown(self.thing(word)) if word >= 2**32 else str(word) for word in words)})")
        self.set_word(0, result)

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

    # Queues and sources

    def make_queue(self, label, attributes):
        self.queues.append(self.new("OS_dispatch_queue", [], self.text_at(label)))
        return self.retain(self.queues[-1])

    def make_source(self, kind, handle, mask, queue):
        name = next(name for name, place in self.imports.items() if place == kind)
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
            raise Fault("a source is released that was never activated")
        self.sources.remove(source)

    def cancel_source(self, source):
        source = self.thing(source)
        source.fields["is_active"] = False
        self.set_field(source, "handler", None)

    def run_now(self, queue, block):
        self.drain(self.thing(queue))
        self.run_on(self.thing(queue), self.thing(block))

    # Foundation

    def make_string(self, thing, data, length, encoding):
        try:
            thing.value = self.read(data, length).decode()
            return thing
        except UnicodeDecodeError:
            return self.release(thing)

    def enumerate_items(self, thing, state, room, count):
        items = [key for key, _ in thing.value.values()] if isinstance(thing.value, dict) else thing.value
        start = self.read_word(state)
        items = items[start : start + count]
        self.write_words(room, *(item.address for item in items))
        self.write_words(state, start + len(items), room, state + 24, 0)
        return len(items)

    def make_dictionary(self, cls, objects, keys, count):
        made = self.new("NSDictionary", {})
        for key, value in zip(self.read_words(keys, count), self.read_words(objects, count)):
            self.set_item(made, self.thing(key), self.thing(value))
        return made

    def make_url(self, path):
        return self.new("NSURL", path, path)

    def make_attributed(self, thing, text, attributes):
        font = attributes.value["kCTFontAttributeName"][1]
        self.set_field(thing, "font", font)
        thing.fields["text"], thing.name = text.value, f"{shown(text)} in {font.name}"
        return thing

    def failed(self, place, domain, code, text):
        error = self.new("NSError", code=code)
        self.set_field(error, "domain", self.box(domain))
        self.set_field(error, "localizedDescription", self.box(text))
        self.write_words(place, self.autorelease(self.retain(error)).address)
        return False

    def register(self, service, place):
        if self.refuses_login_item:
            return self.failed(place, "NSPOSIXErrorDomain", 1, "Operation not permitted")
        service.fields["status"] = 1
        return True

    def remove_item(self, manager, url, place):
        if not self.exists(url.value):
            return self.failed(place, "NSCocoaErrorDomain", 4, "No such file")
        self.files = {path: data for path, data in self.files.items() if not path.startswith(url.value + "/")}
        return True

    def domain(self, defaults):
        return self.domains.setdefault(defaults.name, {})

    def translated(self, bundle, key, value, table):
        strings = self.files[f"{BUNDLE}/Contents/Resources/en.lproj/Localizable.strings"].decode()
        return re.search(rf'^"{re.escape(key.value)}" = "(.*)";', strings, re.M).group(1)

    def name_suite(self, defaults, name):
        defaults.name = f"<defaults {name.value}>"
        return defaults

    def begin_activity(self, process, options, reason):
        self.note(f"activity {options:#x} {shown(reason)}")
        return self.new("NSObject", name="<activity>")

    def observe_distributed(self, center, observer, selector, name, sender, behaviour):
        def deliver():
            notice = self.autorelease(self.retain(self.new("NSNotification")))
            self.send(observer, selector, notice)

        self.observe(center, name, observer, deliver)

    def observe_with_block(self, center, name, sender, queue, block):
        token = self.new("NSObject", name=f"<observer of {name.value}>")
        self.set_field(token, "block", block)
        self.observe(center, name, self.retain(token), lambda: self.run_on(self.main_queue, token.fields["block"], 0))
        self.note(f"observer of {name.value} on {shown(queue)}")
        return token

    def stop_observing(self, center, observer):
        gone = [each for each in self.observers if each[0] is center and each[2] is observer]
        self.observers = [each for each in self.observers if each not in gone]
        if observer.cls.name == "NSObject":
            self.release(observer)

    def observe_darwin(self, center, observer, callback, name, sender, behaviour):
        self.observe(center, name, int(observer), lambda: self.call(callback, center.address, observer, name.address, 0, 0))

    def stop_observing_darwin(self, center, observer, name, sender):
        self.observers = [each for each in self.observers if each[:3] != (center, name.value, observer)]

    def make_remote_port(self, allocator, name):
        """The same object again while it is valid."""
        if name.value not in self.ports and self.has_main_application:
            self.note(f"port {name.value}")
            self.ports[name.value] = self.new("CFMessagePort", name=name.value)
        return self.ports.get(name.value)

    def invalidate_port(self, port):
        port.fields["is_invalid"] = True
        if self.ports.get(port.name) is port:
            del self.ports[port.name]

    def send_request(self, port, number, body, send_timeout, reply_timeout, mode, place):
        if port.fields.get("is_invalid"):
            return -3
        secret, rest = bytes(body.value[:32]), bytes(body.value[32:])
        if secret != self.secret:
            raise Fault(f"request {number} does not begin with the secret")
        self.note(f"request {number} to {port.name.removeprefix(PORT)}: {rest}, {send_timeout:g} s, {reply_timeout:g} s, {shown(mode)}")
        if mode and self.current in (None, self.main_queue):
            self.drain(self.main_queue)  # while the call waits, the thread's run loop runs
        if mode:
            self.write_words(place, self.retain(self.box(self.answers[number])).address)
        return 0

    # AppKit

    def run_application(self, application):
        self.send(application.fields["delegate"], "applicationDidFinishLaunching:", 0)
        self.settle()
        self.scenario(self)
        self.send(application.fields["delegate"], "applicationWillTerminate:", 0)
        self.settle()

    def end_application(self, application, sender):
        self.send(application.fields["delegate"], "applicationWillTerminate:", 0)
        raise Ended

    def make_window(self, window, frame, style, backing, is_deferred):
        self.windows.append(window)
        window.fields.update(frame=frame, windowNumber=40 + self.numbers[window.cls.name], ignoresMouseEvents=False)
        return window

    def order_front(self, window):
        window.fields.update(visible=True, occlusionState=2)
        for view in self.views(window):
            if self.implements(view, "layout"):
                self.send(view, "layout")

    def close_window(self, window):
        window.fields["visible"] = False
        if window.fields.get("releasedWhenClosed", True):
            self.release(window)

    def animator(self, window):
        self.note(f"-[{window.name.strip('<>')} animator]")
        return window

    def send_event(self, window, event):
        """The topmost view under the pointer that takes the first click gets the press and what follows."""
        if event.fields["type"] == DOWN:
            x, y = event.fields["locationInWindow"]
            self.pressed = None
            for view in self.views(window):
                left, bottom, width, height = self.frame_in_window(view)
                if self.implements(view, "mouseDown:") and left <= x < left + width and bottom <= y < bottom + height:
                    self.pressed = view if self.send(view, "acceptsFirstMouse:", event) & 1 else None
        if self.pressed:
            self.send(self.pressed, MOUSE[event.fields["type"]], event)

    def animate(self, cls, changes, completion):
        context = self.retain(self.new("NSAnimationContext"))
        self.run_block(changes, context.address)
        if completion:
            self.fades.append((self.now + round(context.fields["duration"] * SECOND), self.retain(self.copied(completion))))
        self.release(context)

    def make_view(self, view, frame):
        view.fields.update(frame=frame, bounds=(0.0, 0.0, *frame[2:]), subviews=[], above=None)
        return view

    def add_subview(self, view, child):
        view.fields["subviews"].append(child)
        view.parts.append(self.retain(child))
        child.fields["above"] = view

    def layer_of(self, view):
        if view.fields.get("wantsLayer") and "layer" not in view.fields:
            self.set_field(view, "layer", self.new("CALayer"))
        return view.fields.get("layer")

    def set_glass_content(self, glass, view):
        self.set_field(glass, "contentView", view)
        self.add_subview(glass, view)

    def screens(self, cls):
        return [self.new("NSScreen", frame=frame, backingScaleFactor=2.0) for frame in self.displays]

    def make_font(self, cls, size, weight):
        return self.new("NSFont", size, f"{size:g} points, weight {weight:g}", ascender=0.95 * size, descender=-0.25 * size)

    def line_width(self, line, *_):
        """A letter is half as wide as the font is high."""
        text = line.parts[0]
        return 0.5 * text.fields["font"].value * len(text.fields["text"]) if "text" in text.fields else 100.0

    def joined_transforms(self, rows, columns):
        return doubles(*(sum(rows[4 * i + k] * columns[4 * k + j] for k in range(4)) for i in range(4) for j in range(4)))

    def gradient(self, space, components, places, count):
        stops = (self.read(place, 8 * size) for place, size in ((components, 4 * count), (places, count)))
        colors, positions = (struct.unpack(f"<{len(data) // 8}d", data) for data in stops)
        return self.new("CGGradient", name=f"gradient of {shown(positions)[1:-1]}: {', '.join(map(shown, colors))}")


EFFECTS = {
    "malloc": lambda s, size: s.allocate(size),
    "realloc": System.reallocated,
    "free": System.free_wiped,
    "memcpy": lambda s, to, source, size: s.write(to, s.read(source, size)),
    "memmove": lambda s, to, source, size: s.write(to, s.read(source, size)),
    "memset": lambda s, to, byte, size: s.write(to, bytes([byte & 255]) * size),
    "bzero": lambda s, to, size: s.write(to, bytes(size)),
    "memcmp": lambda s, one, other, size: compared(s.read(one, size), s.read(other, size)),
    "memchr": lambda s, at, byte, size: (s.read(at, size).find(bytes([byte & 255])) + 1 or 1 - at) + at - 1,
    "strlen": lambda s, text: len(s.text_at(text).encode()),
    "strtod_l": System.parsed_real,
    "snprintf": System.printed,
    "__toupper": lambda s, letter: letter - 32 if 97 <= letter <= 122 else letter,
    "fmod": lambda s: math.fmod(s.real(0), s.real(1)),
    "__error": System.errno_place,
    "getpid": lambda s: PID,
    "signal": lambda s, number, action: s.note(f"signal({number}, {('SIG_DFL', 'SIG_IGN')[action]})"),
    "kill": System.kill,
    "clock_gettime": lambda s, clock, place: s.write_words(place, *divmod(s.now + (0 if clock else START * SECOND), SECOND)) or 0,
    "lstat": lambda s, path, place: s.write(place, struct.pack("<iH", 0, 0o40755)) or 0 if s.exists(s.text_at(path)) else -1,
    "dlopen": lambda s, path, mode: s.note(f"dlopen({s.text_at(path)}, {mode})") or 1,
    "dlsym": System.looked_up,
    "os_log_create": lambda s, subsystem, category: s.new("OS_os_log", name=f"{subsystem.split('.')[-1]}:{category}"),
    "os_log_type_enabled": lambda s, log, level: True,
    "_os_log_impl": System.logged,
    "notify_register_check": lambda s, name, token: s.write(token, struct.pack("<i", 3)),
    "notify_get_state": lambda s, token, place: s.write_words(place, 1),
    "notify_cancel": lambda s, token: s.note(f"notify_cancel({token})"),
    # Queues and sources
    "dispatch_queue_create": System.make_queue,
    "dispatch_queue_set_specific": lambda s, queue, key, value: s.thing(queue).fields.update({key: value}),
    "dispatch_get_specific": lambda s, key: s.current.fields.get(key, 0) if s.current else 0,
    "dispatch_get_global_queue": lambda s: s.global_queue,
    "dispatch_async": lambda s, queue, block: s.thing(queue).value.append(s.retain(s.copied(s.thing(block)))),
    "dispatch_sync": System.run_now,
    "dispatch_time": lambda s, base, delta: s.now + delta,
    "dispatch_source_create": System.make_source,
    "dispatch_source_set_timer": System.set_timer,
    "dispatch_source_set_event_handler": lambda s, source, block: s.set_field(s.thing(source), "handler", s.thing(block)),
    "dispatch_activate": lambda s, source: s.thing(source).fields.update(is_active=True),
    "dispatch_source_cancel": System.cancel_source,
    "OS_dispatch_source dealloc": System.end_source,
    "OS_dispatch_queue dealloc": lambda s, queue: s.queues.remove(queue),
    # Values
    "NSString initWithBytes:length:encoding:": System.make_string,
    "NSString UTF8String": lambda s, text: s.buffer(text, text.value.encode() + b"\0"),
    "NSString isEqualToString:": lambda s, text, other: other is not None and text.value == other.value,
    "NSString lengthOfBytesUsingEncoding:": lambda s, text, encoding: len(text.value.encode()),
    "CFGetTypeID": lambda s, thing: isinstance(thing.value, bool),
    "CFBooleanGetTypeID": lambda s: True,
    "CFNumberIsFloatType": lambda s, number: isinstance(number.value, float),
    "CFRetain": lambda s, thing: s.retain(thing),
    "CFRelease": lambda s, thing: s.release(thing),
    "NSArray arrayWithObjects:count:": lambda s, cls, items, count: [s.thing(each) for each in s.read_words(items, count)],
    "NSArray countByEnumeratingWithState:objects:count:": System.enumerate_items,
    "NSArray firstObject": lambda s, array: array.value[0],
    "NSDictionary dictionaryWithObjects:forKeys:count:": System.make_dictionary,
    "NSDictionary objectForKeyedSubscript:": lambda s, dictionary, key: dictionary.value.get(key.value, (0, None))[1],
    "NSDictionary countByEnumeratingWithState:objects:count:": System.enumerate_items,
    "NSMutableDictionary dictionaryWithCapacity:": lambda s, cls, capacity: s.new("NSMutableDictionary", {}),
    "NSMutableDictionary setObject:forKeyedSubscript:": lambda s, dictionary, value, key: s.set_item(dictionary, key, value),
    "NSData dataWithBytes:length:": lambda s, cls, data, length: s.read(data, length),
    "NSData bytes": lambda s, data: s.buffer(data, data.value),
    "NSData length": lambda s, data: len(data.value),
    "NSMutableData dealloc": (
        lambda s, data: s.check_wiped(s.read(data.buffers[0], len(data.value)) if data.buffers else bytes(data.value))
    ),
    "NSMutableData dataWithCapacity:": lambda s, cls, capacity: s.new("NSMutableData", bytearray()),
    "NSMutableData appendBytes:length:": lambda s, data, more, length: data.value.extend(s.read(more, length)),
    "NSMutableData mutableBytes": lambda s, data: s.buffer(data, data.value),
    "NSURL fileURLWithPath:": lambda s, cls, path: s.make_url(path.value),
    "NSUUID UUID": lambda s, cls: s.new("NSUUID", "5D1A7C52-0D3B-4A53-9E0B-1F9A3C6C8E11"),
    "NSAttributedString initWithString:attributes:": System.make_attributed,
    "NSValue valueWithCATransform3D:": lambda s, cls, parts: s.new("NSValue", name=shown(parts)),
    # Process, bundle, files, preferences
    "NSProcessInfo processIdentifier": lambda s, process: PID,
    "NSProcessInfo operatingSystemVersion": lambda s, process: struct.pack("<3q", 26, 1, 2),
    "NSProcessInfo beginActivityWithOptions:reason:": System.begin_activity,
    "NSBundle bundleURL": lambda s, bundle: s.make_url(BUNDLE),
    "NSBundle executableURL": lambda s, bundle: s.make_url(f"{BUNDLE}/Contents/MacOS/Quorvane Lock Screen"),
    "NSBundle bundleIdentifier": lambda s, bundle: plistlib.loads(s.files[f"{BUNDLE}/Contents/Info.plist"])["CFBundleIdentifier"],
    "NSBundle infoDictionary": lambda s, bundle: plistlib.loads(s.files[f"{BUNDLE}/Contents/Info.plist"]),
    "NSBundle localizedStringForKey:value:table:": System.translated,
    "NSFileManager URLsForDirectory:inDomains:": lambda s, manager, *which: [s.make_url(SUPPORT)] if which == (14, 1) else [],
    "NSFileManager containerURLForSecurityApplicationGroupIdentifier:": (
        lambda s, manager, group: s.make_url(f"{CONTAINERS}/{group.value}")
    ),
    "NSFileManager createDirectoryAtURL:withIntermediateDirectories:attributes:error:": lambda s, *_: True,
    "NSFileManager fileExistsAtPath:": lambda s, manager, path: s.exists(path.value),
    "NSFileManager removeItemAtURL:error:": System.remove_item,
    "NSData dataWithContentsOfURL:options:error:": lambda s, cls, url, options, error: s.files.get(url.value),
    "NSPropertyListSerialization propertyListWithData:options:format:error:": (
        lambda s, cls, data, *_: plistlib.loads(bytes(data.value))
    ),
    "NSUserDefaults initWithSuiteName:": System.name_suite,
    "NSUserDefaults objectForKey:": lambda s, defaults, key: s.domain(defaults).get(key.value),
    "NSUserDefaults setObject:forKey:": lambda s, defaults, value, key: s.domain(defaults).update({key.value: value.value}),
    "NSUserDefaults removeObjectForKey:": lambda s, defaults, key: s.domain(defaults).pop(key.value, None),
    "NSUserDefaults removePersistentDomainForName:": lambda s, defaults, domain: s.domain(defaults).clear(),
    "CFPreferencesAppSynchronize": lambda s, domain: s.note(f"synchronise {domain.value}") or True,
    "SMAppService registerAndReturnError:": System.register,
    "SMAppService unregisterAndReturnError:": lambda s, service, error: service.fields.update(status=0) or True,
    "NSRunningApplication currentApplication": lambda s, cls: s.copies[0],
    "NSRunningApplication runningApplicationsWithBundleIdentifier:": lambda s, cls, identifier: list(s.copies),
    "NSRunningApplication runningApplicationWithProcessIdentifier:": (
        lambda s, cls, pid: next(each for each in s.copies if each.fields["processIdentifier"] == pid)
    ),
    "NSRunningApplication terminate": lambda s, copy: True,
    # Notices and ports
    "NSDistributedNotificationCenter addObserver:selector:name:object:suspensionBehavior:": System.observe_distributed,
    "NSNotificationCenter addObserverForName:object:queue:usingBlock:": System.observe_with_block,
    "NSNotificationCenter removeObserver:": System.stop_observing,
    "CFNotificationCenterGetDarwinNotifyCenter": lambda s: s.shared("CFNotificationCenter"),
    "CFNotificationCenterAddObserver": System.observe_darwin,
    "CFNotificationCenterRemoveObserver": System.stop_observing_darwin,
    "CFMessagePortCreateRemote": System.make_remote_port,
    "CFMessagePortSendRequest": System.send_request,
    "CFMessagePortInvalidate": System.invalidate_port,
    "CFMessagePort dealloc": System.invalidate_port,
    "CGSessionCopyCurrentDictionary": lambda s: s.session,
    # Application and windows
    "NSApplication setActivationPolicy:": lambda s, application, policy: True,
    "NSApplication run": System.run_application,
    "NSApplication terminate:": System.end_application,
    "NSWorkspace notificationCenter": lambda s, workspace: s.shared("NSNotificationCenter", "<workspace's center>"),
    "NSScreen screens": System.screens,
    "NSEvent mouseLocation": lambda s, cls: s.pointer,
    "NSWindow initWithContentRect:styleMask:backing:defer:": System.make_window,
    "NSWindow orderFrontRegardless": System.order_front,
    "NSWindow orderOut:": lambda s, window, sender: window.fields.update(visible=False),
    "NSWindow close": System.close_window,
    "NSWindow dealloc": lambda s, window: s.windows.remove(window),
    "NSWindow animator": System.animator,
    "NSWindow sendEvent:": System.send_event,
    "NSAnimationContext runAnimationGroup:completionHandler:": System.animate,
    "NSAppearance appearanceNamed:": lambda s, cls, name: s.new("NSAppearance", name=name.value),
    "NSView initWithFrame:": System.make_view,
    "NSView addSubview:": System.add_subview,
    "NSView layer": System.layer_of,
    "NSView convertPoint:fromView:": lambda s, view, point, other: s.point_in(view, point),
    "NSView window": lambda s, view: next((each for each in s.windows if view in s.views(each)), None),
    "NSWindow convertPointFromScreen:": lambda s, window, point: tuple(each - at for each, at in zip(point, window.fields["frame"])),
    "NSAccessibilityFrameInView": lambda s, view, frame: frame,
    "NSMutableArray arrayWithCapacity:": lambda s, cls, capacity: s.new("NSMutableArray", []),
    "NSMutableArray addObject:": lambda s, array, item: array.value.append(s.retain(item)),
    "NSGlassEffectView setContentView:": System.set_glass_content,
    "NSTrackingArea initWithRect:options:owner:userInfo:": lambda s, area, *_: area,
    "NSLayoutAnchor constraintEqualToAnchor:": lambda s, one, other: s.new("NSLayoutConstraint", name=f"{one.name} = {other.name}"),
    "CALayer layer": lambda s, cls: s.new(cls.name),
    "CASpringAnimation initWithPerceptualDuration:bounce:": lambda s, animation, *_: animation,
    "CASpringAnimation settlingDuration": lambda s, animation: 1.5,
    "CATransform3DMakeTranslation": lambda s, x, y, z: doubles(*IDENTITY[:12], x, y, z, 1),
    "CATransform3DMakeScale": lambda s, x, y, z: doubles(x, *IDENTITY[1:5], y, *IDENTITY[1:5], z, *IDENTITY[11:]),
    "CATransform3DConcat": System.joined_transforms,
    # Drawing
    "NSGraphicsContext currentContext": lambda s, cls: s.context,
    "NSFont systemFontOfSize:weight:": System.make_font,
    "NSFont monospacedDigitSystemFontOfSize:weight:": System.make_font,
    "NSColor colorWithSRGBRed:green:blue:alpha:": lambda s, cls, *parts: s.new("NSColor", name=f"colour {shown(list(parts))}"),
    "NSImageSymbolConfiguration configurationWithPointSize:weight:": (
        lambda s, cls, size, weight: s.new("NSImageSymbolConfiguration", name=f"{size:g} points, weight {weight:g}")
    ),
    "NSImageSymbolConfiguration configurationWithPaletteColors:": (
        lambda s, cls, colors: s.new("NSImageSymbolConfiguration", name=shown(colors))
    ),
    "NSImageSymbolConfiguration configurationByApplyingConfiguration:": (
        lambda s, one, other: s.new("NSImageSymbolConfiguration", name=f"{one.name}, {other.name}")
    ),
    "NSImage imageWithSystemSymbolName:accessibilityDescription:": lambda s, cls, name, _: s.new("NSImage", name=name.value),
    "NSImage imageWithSymbolConfiguration:": lambda s, image, look: s.new("NSImage", name=f"{image.name} ({look.name})"),
    "NSImage size": lambda s, image: (20.0, 16.0),
    "CTLineGetTypographicBounds": System.line_width,
    "CGGradientCreateWithColorComponents": System.gradient,
    "CGImageSourceCopyPropertiesAtIndex": (
        lambda s, *_: dict.fromkeys(("kCGImagePropertyPixelWidth", "kCGImagePropertyPixelHeight"), s.picture_size)
    ),
    "CGImageGetWidth": lambda s, image: 256,
    "CGImageGetHeight": lambda s, image: 256,
    "CGAffineTransformMakeScale": lambda s, x, y: doubles(x, 0, 0, y, 0, 0),
}
# What only has a note, what gives the only object of its class, what gives an object's value, what makes an object of a value.
NOTED = [
    "NSProcessInfo endActivity:", "NSDistributedNotificationCenter postNotificationName:object:userInfo:deliverImmediately:",
    "NSNotification userInfo", "NSView layout", "NSView addTrackingArea:", "NSView setNeedsDisplayInRect:",
    "NSLayoutConstraint activateConstraints:", "NSAccessibilityPostNotification", "CALayer addSublayer:",
    "CALayer addAnimation:forKey:", "CALayer removeAllAnimations", "CATransaction begin", "CATransaction commit",
    "CATransaction setDisableActions:", "NSImage drawInRect:fromRect:operation:fraction:respectFlipped:hints:",
    *(f"CGContext{what}" for what in """SaveGState RestoreGState TranslateCTM ScaleCTM AddPath EOFillPath Clip ClipToRect
    SetFillColorWithColor SetAlpha SetBlendMode SetInterpolationQuality BeginTransparencyLayer EndTransparencyLayer SetTextMatrix
    SetTextPosition DrawImage DrawLinearGradient""".split()), "CTLineDraw", "CGPathAddRect", "CGPathAddRoundedRect",
]  # fmt: skip
SHARED = [
    "NSProcessInfo processInfo", "NSBundle mainBundle", "NSFileManager defaultManager", "NSUserDefaults standardUserDefaults",
    "SMAppService mainAppService", "NSDistributedNotificationCenter defaultCenter", "NSNotificationCenter defaultCenter",
    "NSOperationQueue mainQueue", "NSApplication sharedApplication", "NSWorkspace sharedWorkspace", "NSColor clearColor",
]  # fmt: skip
VALUES = ["NSNumber doubleValue", "NSNumber longLongValue", "NSNumber boolValue", "NSDate timeIntervalSince1970", "NSURL path", "NSUUID UUIDString"]
BOXED = [f"NSNumber numberWith{kind}:" for kind in ("LongLong", "UnsignedLongLong", "Double", "Bool")]
EFFECTS |= dict.fromkeys(NOTED, lambda s, *_: None) | dict.fromkeys(SHARED, lambda s, cls: s.shared(cls.name))
EFFECTS |= dict.fromkeys(VALUES, lambda s, thing: thing.value) | dict.fromkeys(BOXED, lambda s, cls, value: value)
EFFECTS |= {f"pthread_{what}": lambda s: 0 for what in ("mutex_lock", "mutex_unlock", "mutex_destroy", "cond_broadcast")}
EFFECTS |= dict.fromkeys(("pthread_self", "pthread_mach_thread_np"), lambda s: 1)
# What changes nothing that can be seen, or is asked for again and again.
QUIET = {"_os_log_impl", "NSString", "NSMutableArray", "NSMutableDictionary", "NSMutableData", "NSAttributedString", "NSObject",
         "CFRelease", "NSFileManager createDirectoryAtURL:withIntermediateDirectories:attributes:error:", "NSFileManager fileExistsAtPath:"}  # fmt: skip
