"""Foundation and Core Foundation for the emulated add-on: values, the process and its bundle, files, preferences, notices, ports."""

import plistlib
import re
import struct

from library import PID, Library
from objects import shown
from program import Fault

SUPPORT = "/Users/u/Library/Application Support"
BUNDLE = f"{SUPPORT}/example.quillon.Quorvane.LockScreenAddOn/Quorvane Lock Screen.app"
CONTAINERS = "/Users/u/Library/Group Containers"
PORT = "group.example.quillon.Quorvane.messageport"


class Foundation(Library):
    def __init__(self, bundle, effects, documented, secret, answers, program):
        """`answers` holds the main application's answers, by message."""
        self.answers, self.ports, self.has_main_application = answers, {}, True
        self.while_waiting = lambda: None  # what happens while a request waits for its answer
        self.domains, self.observers, self.copies = {}, [], []
        self.session, self.refuses_login_item = {"kCGSSessionOnConsoleKey": True}, False
        files = [path for path in bundle.rglob("*") if path.is_file()]
        self.files = {f"{BUNDLE}/{path.relative_to(bundle).as_posix()}": path.read_bytes() for path in files}
        self.files[f"{CONTAINERS}/group.example.quillon.Quorvane/ipc-secret"] = secret
        super().__init__(program or bundle / "Contents" / "MacOS" / bundle.stem, EFFECTS | effects, documented, secret)
        self.add_copy(PID, 100.0)
        self.shared("SMAppService").fields["status"] = 0

    # Values

    def make_string(self, thing, data, length, encoding):
        try:
            thing.value = self.read(data, length).decode()
            return thing
        except UnicodeDecodeError:
            return self.release(thing)

    def end_data(self, data):
        """Data that outgrows its capacity is copied, and the first copy is not wiped."""
        self.check_wiped(self.read(data.buffers[0], len(data.value)) if data.buffers else bytes(data.value))
        if data.fields["capacity"] != len(data.value):
            raise Fault(f"{len(data.value)} bytes of data with room for {data.fields['capacity']}")

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

    def failed(self, place, domain, code, text):
        if not place:
            return False
        error = self.new("NSError", code=code)
        self.set_field(error, "domain", self.box(domain))
        self.set_field(error, "localizedDescription", self.box(text))
        self.write_words(place, self.autorelease(self.retain(error)).address)
        return False

    # Process, bundle, files, preferences

    def add_copy(self, pid, launched, is_terminated=False):
        fields = {"processIdentifier": pid, "launchDate": self.new("NSDate", launched, is_immortal=True), "terminated": is_terminated}
        self.copies.append(self.new("NSRunningApplication", name=f"<copy {pid}>", is_immortal=True, **fields))
        return self.copies[-1]

    def register(self, service, place):
        if self.refuses_login_item:
            return self.failed(place, "NSPOSIXErrorDomain", 1, "Operation not permitted")
        service.fields["status"] = 1
        return True

    def exists(self, path):
        return any(each == path or each.startswith(path + "/") for each in self.files)

    def remove_item(self, manager, url, place):
        if not self.exists(url.value):
            return self.failed(place, "NSCocoaErrorDomain", 4, "No such file")
        self.files = {path: data for path, data in self.files.items() if not path.startswith(url.value + "/")}
        return True

    def domain(self, defaults):
        return self.domains.setdefault(defaults.name, {})

    def set_preference(self, defaults, value, key):
        value.is_immortal = True
        self.domain(defaults)[key.value] = value

    def translated(self, bundle, key, value, table):
        strings = self.files[f"{BUNDLE}/Contents/Resources/en.lproj/Localizable.strings"].decode()
        return re.search(rf'^"{re.escape(key.value)}" = "(.*)";', strings, re.M).group(1)

    def name_suite(self, defaults, name):
        defaults.name = f"<defaults {name.value}>"
        return defaults

    def begin_activity(self, process, options, reason):
        self.note(f"activity {options:#x} {shown(reason)}")
        return self.new("NSObject", name="<activity>")

    # Notices

    def observe(self, center, name, observer, deliver):
        self.observers.append((center, name.value, observer, deliver))

    def post(self, name, user_info=None):
        """Posts a notice of the system to every observer of that name."""
        found = [deliver for _, each, _, deliver in self.observers if each == name]
        if not found:
            raise Fault(f"nothing observes {name}")
        for deliver in found:
            with self.pool():
                deliver(user_info)
        self.settle()

    def observe_distributed(self, center, observer, selector, name, sender, behaviour):
        def deliver(user_info):
            notice = self.autorelease(self.retain(self.new("NSNotification")))
            self.set_field(notice, "userInfo", self.box(user_info))
            self.send(observer, selector, notice)

        self.observe(center, name, observer, deliver)

    def observe_with_block(self, center, name, sender, queue, block):
        token = self.new("NSObject", name=f"<observer of {name.value}>")
        self.set_field(token, "block", block)
        self.observe(center, name, self.retain(token), lambda _: self.run_on(self.main_queue, token.fields["block"], 0))
        self.note(f"observer of {name.value} on {shown(queue)}")
        return token

    def stop_observing(self, center, observer):
        gone = [each for each in self.observers if each[0] is center and each[2] is observer]
        self.observers = [each for each in self.observers if each not in gone]
        if observer.cls.name == "NSObject":
            self.release(observer)

    def observe_darwin(self, center, observer, callback, name, sender, behaviour):
        self.observe(center, name, int(observer), lambda _: self.call(callback, center.address, observer, name.address, 0, 0))

    def stop_observing_darwin(self, center, observer, name, sender):
        self.observers = [each for each in self.observers if each[:3] != (center, name.value, observer)]

    # Ports

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
            self.while_waiting()
        if mode:
            self.write_words(place, self.retain(self.box(self.answers[number])).address)
        return 0

    def end_main_application(self):
        self.has_main_application = False
        for port in list(self.ports.values()):
            self.invalidate_port(port)


EFFECTS = {
    "NSDistributedNotificationCenter defaultCenter": lambda s, cls: s.shared(cls.name),
    "NSString initWithBytes:length:encoding:": Foundation.make_string,
    "NSString UTF8String": lambda s, text: s.buffer(text, text.value.encode() + b"\0"),
    "NSString isEqualToString:": lambda s, text, other: other is not None and text.value == other.value,
    "NSString lengthOfBytesUsingEncoding:": lambda s, text, encoding: len(text.value.encode()),
    "CFGetTypeID": lambda s, thing: isinstance(thing.value, bool),
    "CFBooleanGetTypeID": lambda s: True,
    "CFNumberIsFloatType": lambda s, number: isinstance(number.value, float),
    "CFRetain": lambda s, thing: s.retain(thing),
    "CFRelease": lambda s, thing: s.release(thing),
    "NSArray arrayWithObjects:count:": lambda s, cls, items, count: [s.thing(each) for each in s.read_words(items, count)],
    "NSArray countByEnumeratingWithState:objects:count:": Foundation.enumerate_items,
    "NSArray firstObject": lambda s, array: next(iter(array.value), None),
    "NSDictionary dictionaryWithObjects:forKeys:count:": Foundation.make_dictionary,
    "NSDictionary objectForKeyedSubscript:": lambda s, dictionary, key: dictionary.value.get(key.value, (0, None))[1],
    "NSDictionary countByEnumeratingWithState:objects:count:": Foundation.enumerate_items,
    "NSMutableDictionary dictionaryWithCapacity:": lambda s, cls, capacity: s.new("NSMutableDictionary", {}),
    "NSMutableDictionary setObject:forKeyedSubscript:": lambda s, dictionary, value, key: s.set_item(dictionary, key, value),
    "NSData dataWithBytes:length:": lambda s, cls, data, length: s.read(data, length),
    "NSData bytes": lambda s, data: s.buffer(data, data.value),
    "NSData length": lambda s, data: len(data.value),
    "NSMutableData dealloc": Foundation.end_data,
    "NSMutableData dataWithCapacity:": lambda s, cls, capacity: s.new("NSMutableData", bytearray(), capacity=capacity),
    "NSMutableData appendBytes:length:": lambda s, data, more, length: data.value.extend(s.read(more, length)),
    "NSMutableData mutableBytes": lambda s, data: s.buffer(data, data.value),
    "NSURL fileURLWithFileSystemRepresentation:isDirectory:relativeToURL:": (
        lambda s, cls, path, is_directory, base: s.make_url(path + "/" * is_directory)
    ),
    "NSURL fileSystemRepresentation": lambda s, url: s.buffer(url, url.value.encode() + b"\0"),
    "NSUUID UUID": lambda s, cls: s.new("NSUUID", "5D1A7C52-0D3B-4A53-9E0B-1F9A3C6C8E11"),
    "NSProcessInfo processIdentifier": lambda s, process: PID,
    "NSProcessInfo operatingSystemVersion": lambda s, process: struct.pack("<3q", 26, 1, 2),
    "NSProcessInfo beginActivityWithOptions:reason:": Foundation.begin_activity,
    "NSBundle bundleURL": lambda s, bundle: s.make_url(BUNDLE),
    "NSBundle executableURL": lambda s, bundle: s.make_url(f"{BUNDLE}/Contents/MacOS/Quorvane Lock Screen"),
    "NSBundle bundleIdentifier": lambda s, bundle: plistlib.loads(s.files[f"{BUNDLE}/Contents/Info.plist"])["CFBundleIdentifier"],
    "NSBundle infoDictionary": lambda s, bundle: plistlib.loads(s.files[f"{BUNDLE}/Contents/Info.plist"]),
    "NSBundle localizedStringForKey:value:table:": Foundation.translated,
    "NSFileManager URLsForDirectory:inDomains:": lambda s, manager, *which: [s.make_url(SUPPORT)] if which == (14, 1) else [],
    "NSFileManager containerURLForSecurityApplicationGroupIdentifier:": (
        lambda s, manager, group: s.make_url(f"{CONTAINERS}/{group.value}")
    ),
    "NSFileManager createDirectoryAtURL:withIntermediateDirectories:attributes:error:": lambda s, manager, url, is_deep, *_: is_deep,
    "NSFileManager fileExistsAtPath:": lambda s, manager, path: s.exists(path.value),
    "NSFileManager removeItemAtURL:error:": Foundation.remove_item,
    "NSData dataWithContentsOfURL:options:error:": lambda s, cls, url, options, error: None if options else s.files.get(url.value),
    "NSPropertyListSerialization propertyListWithData:options:format:error:": (
        lambda s, cls, data, *_: plistlib.loads(bytes(data.value))
    ),
    "NSUserDefaults initWithSuiteName:": Foundation.name_suite,
    "NSUserDefaults objectForKey:": lambda s, defaults, key: s.domain(defaults).get(key.value),
    "NSUserDefaults setObject:forKey:": Foundation.set_preference,
    "NSUserDefaults removeObjectForKey:": lambda s, defaults, key: s.domain(defaults).pop(key.value, None),
    "NSUserDefaults dictionaryRepresentation": lambda s, defaults: dict(s.domain(defaults)),
    "NSUserDefaults removePersistentDomainForName:": lambda s, defaults, domain: s.domain(defaults).clear(),
    "CFPreferencesAppSynchronize": lambda s, domain: s.note(f"synchronise {domain.value}") or True,
    "SMAppService registerAndReturnError:": Foundation.register,
    "SMAppService unregisterAndReturnError:": lambda s, service, error: service.fields.update(status=0) or True,
    "NSRunningApplication currentApplication": lambda s, cls: s.copies[0],
    "NSRunningApplication runningApplicationsWithBundleIdentifier:": lambda s, cls, identifier: list(s.copies),
    "NSRunningApplication runningApplicationWithProcessIdentifier:": (
        lambda s, cls, pid: next(each for each in s.copies if each.fields["processIdentifier"] == pid)
    ),
    "NSRunningApplication terminate": lambda s, copy: True,
    "NSDistributedNotificationCenter addObserver:selector:name:object:suspensionBehavior:": Foundation.observe_distributed,
    "NSNotificationCenter addObserverForName:object:queue:usingBlock:": Foundation.observe_with_block,
    "NSNotificationCenter removeObserver:": Foundation.stop_observing,
    "CFNotificationCenterGetDarwinNotifyCenter": lambda s: s.shared("CFNotificationCenter"),
    "CFNotificationCenterAddObserver": Foundation.observe_darwin,
    "CFNotificationCenterRemoveObserver": Foundation.stop_observing_darwin,
    "CFMessagePortCreateRemote": Foundation.make_remote_port,
    "CFMessagePortSendRequest": Foundation.send_request,
    "CFMessagePortInvalidate": Foundation.invalidate_port,
    "CFMessagePort dealloc": Foundation.invalidate_port,
    "CGSessionCopyCurrentDictionary": lambda s: s.session,
}
